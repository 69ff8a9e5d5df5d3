#include "host/console/Diagnostics.h"

#include "host/console/Escaping.h"
#include "platform/objects/NSError.h"

namespace kbx {
namespace {

constexpr SpecialCharacters kSpecialInLog("");

}  // namespace

/// Room for whole lines: the status line is out of the way while it lives.
class Diagnostics::Lines {
 public:
  explicit Lines(Diagnostics& diagnostics) : _held(diagnostics._lock), _diagnostics(diagnostics) {
    if (!_diagnostics._status.empty()) _diagnostics._output.write("\r\x1B[K");
  }
  ~Lines() {
    _diagnostics._output.write(_diagnostics._status);
    _diagnostics._output.flush();
  }
  Lines(const Lines&) = delete;
  Lines& operator=(const Lines&) = delete;

 private:
  const std::lock_guard<std::mutex> _held;
  Diagnostics& _diagnostics;
};

void Diagnostics::failure(std::string_view path, NSString* reason) {
  const Lines lines(*this);
  _output.write("ferncase: ");
  if (path.empty())
    _output.write("''");
  else
    writePath(_output, path);
  _output.write(": ");
  writeOnOneLine(_output, reason);
  _output.write('\n');
}

void Diagnostics::failure(NSError* error) {
  message(error->localizedDescription()->lossyUTF8());
}

void Diagnostics::message(std::string_view utf8) {
  const Lines lines(*this);
  _output.write("ferncase: ");
  writePath(_output, utf8);
  _output.write('\n');
}

void Diagnostics::text(std::string_view ours) {
  const Lines lines(*this);
  _output.write(ours);
}

void Diagnostics::log(NSString* text) {
  const Lines lines(*this);
  _output.write("log: ");
  writeUTF8(_output, text, kSpecialInLog, [this](char16_t unit, char16_t) {
    if (unit == '\n')
      _output.write("\n    ");
    else
      writeUnitEscape(_output, unit);
  });
  _output.write('\n');
}

void Diagnostics::status(std::string_view ours) {
  const Lines lines(*this);
  _status = ours;
}

}  // namespace kbx
