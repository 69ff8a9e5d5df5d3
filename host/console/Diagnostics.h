// Diagnostics: what standard error says, a line at a time.
#pragma once

#include <mutex>
#include <string>
#include <string_view>

#include "host/console/Output.h"
#include "platform/objects/NSString.h"

namespace kbx {

class NSError;

/// Writes whole lines. Whatever a path or a reason holds, it stays on its line and cannot drive a
/// terminal. Safe from any thread.
class Diagnostics {
 public:
  explicit Diagnostics(Output& output) : _output(output) {}

  /// "ferncase: PATH: reason"; the path in bytes. An empty one shows as ''.
  void failure(std::string_view path, NSString* reason);
  /// "ferncase: DESCRIPTION" of what went wrong with no input in particular.
  void failure(NSError* error);
  /// "ferncase: text".
  void message(std::string_view utf8);
  /// Several lines as they are: our own words alone.
  void text(std::string_view ours);
  /// "log: text"; further lines of the text are indented by four blanks.
  void log(NSString* text);
  /// Keeps a line of our own words below all others, on a terminal alone; empty for none. It goes
  /// away while another line is written.
  void status(std::string_view ours);

 private:
  class Lines;

  std::mutex _lock;
  Output& _output;
  std::string _status;
};

}  // namespace kbx
