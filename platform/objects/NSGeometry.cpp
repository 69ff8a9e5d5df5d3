#include "platform/objects/NSGeometry.h"

#include <charconv>
#include <string>
#include <string_view>

#include "platform/objects/NSString.h"
#include "platform/objects/RealText.h"

namespace kbx {
namespace {

std::string pair(double first, double second) {
  return "{" + realText(first) + ", " + realText(second) + "}";
}

/// Reads a text from left to right; once something is missing, nothing more is found.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : _rest(text) {}

  void skip(char wanted) {
    skipBlanks();
    _isGood = _isGood && _rest.starts_with(wanted);
    if (_isGood) _rest.remove_prefix(1);
  }

  double number() {
    skipBlanks();
    double value = 0;
    const auto [end, failure] = std::from_chars(_rest.data(), _rest.data() + _rest.size(), value);
    _isGood = _isGood && failure == std::errc();
    _rest.remove_prefix(static_cast<std::size_t>(end - _rest.data()));
    return value;
  }

  bool isComplete() {
    skipBlanks();
    return _isGood && _rest.empty();
  }

 private:
  void skipBlanks() {
    const std::size_t blanks = _rest.find_first_not_of(" \t\r\n");
    _rest.remove_prefix(blanks == std::string_view::npos ? _rest.size() : blanks);
  }

  std::string_view _rest;
  bool _isGood = true;
};

}  // namespace

Ref<NSString> NSStringFromPoint(NSPoint point) {
  return NSString::stringWithUTF8(pair(point.x, point.y));
}

Ref<NSString> NSStringFromSize(NSSize size) {
  return NSString::stringWithUTF8(pair(size.width, size.height));
}

Ref<NSString> NSStringFromRect(NSRect rect) {
  return NSString::stringWithUTF8("{" + pair(rect.origin.x, rect.origin.y) + ", " +
                                  pair(rect.size.width, rect.size.height) + "}");
}

NSSize NSSizeFromString(NSString* text) {
  if (!text) return {};
  const std::string utf8 = text->lossyUTF8();
  Scanner scanner(utf8);
  NSSize size;
  scanner.skip('{');
  size.width = scanner.number();
  scanner.skip(',');
  size.height = scanner.number();
  scanner.skip('}');
  return scanner.isComplete() ? size : NSSize{};
}

}  // namespace kbx
