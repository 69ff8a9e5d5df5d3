// MessageMaker: what a caller makes of each message where it is imported.
#pragma once

#include <optional>
#include <string>

#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// Works in the workers, or in this process where there are none, on one message after the other.
/// Each worker has a copy of what the maker was when the workers were made; nothing that it learns
/// there comes back but what make() answers.
class MessageMaker {
 public:
  virtual ~MessageMaker() = default;

  /// Called before a message is read.
  ///
  /// contents  the path of the file that is about to be imported: the message or a copy of it
  virtual void begin(const std::string& contents) = 0;
  /// What is handed over in the place of the attributes of the message that was begun last. Absent
  /// with an error, which is then what became of the message.
  virtual std::optional<std::string> make(NSDictionary* attributes, Ref<NSError>* error) = 0;
};

}  // namespace kbx
