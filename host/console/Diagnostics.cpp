#include "host/console/Diagnostics.h"

#include "host/console/Escaping.h"

namespace kbx {
namespace {

constexpr SpecialCharacters kSpecialInLog("");

}  // namespace

void Diagnostics::failure(std::string_view path, NSString* reason) {
  std::lock_guard held(_lock);
  _output.write("ferncase: ");
  if (path.empty())
    _output.write("''");
  else
    writePath(_output, path);
  _output.write(": ");
  writeOnOneLine(_output, reason);
  _output.write('\n');
  _output.flush();
}

void Diagnostics::message(std::string_view utf8) {
  std::lock_guard held(_lock);
  _output.write("ferncase: ");
  writePath(_output, utf8);
  _output.write('\n');
  _output.flush();
}

void Diagnostics::text(std::string_view ours) {
  std::lock_guard held(_lock);
  _output.write(ours);
  _output.flush();
}

void Diagnostics::log(NSString* text) {
  std::lock_guard held(_lock);
  _output.write("log: ");
  writeUTF8(_output, text, kSpecialInLog, [this](char16_t unit, char16_t) {
    if (unit == '\n')
      _output.write("\n    ");
    else
      writeUnitEscape(_output, unit);
  });
  _output.write('\n');
  _output.flush();
}

}  // namespace kbx
