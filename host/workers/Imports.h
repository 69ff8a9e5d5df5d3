// Imports: a way to import many files.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "host/import/InputFiles.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// What became of an input: one of the three is there.
struct Imported {
  Ref<NSDictionary> attributes;
  std::optional<std::string> made;  // of the attributes, in their place, where there is a maker
  Ref<NSError> error;               // why there is neither
};

/// Belongs to one thread. ImportWorkers chooses one and says what its functions promise.
class Imports {
 public:
  using Next = std::function<std::optional<Input>()>;
  using Take = std::function<void(const Input&, const Imported&)>;

  virtual ~Imports() = default;
  virtual bool load(std::string* path, std::string* reason) = 0;
  virtual void run(const Next& next, const Take& take) = 0;
};

/// The location of an input; absent, with the reason, for what no file can have as path.
Ref<NSURL> locationOf(const Input& input, Ref<NSError>* error);

}  // namespace kbx
