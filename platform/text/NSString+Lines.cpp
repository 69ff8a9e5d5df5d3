// NSString: the lines of a text.
#include <cstddef>

#include "platform/objects/NSException.h"
#include "platform/objects/NSString.h"

namespace kbx {
namespace {

bool isTerminator(char16_t unit) {
  return unit == u'\n' || unit == u'\r' || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

/// A text's units, whatever their width, with the rule that a CR LF is one terminator.
template <class Units>
struct Text {
  Units units;

  char16_t at(std::size_t i) const { return static_cast<char16_t>(units[i]); }
  bool isInsidePair(std::size_t i) const {
    return i > 0 && i < units.size() && at(i - 1) == u'\r' && at(i) == u'\n';
  }
  bool isLineStart(std::size_t i) const {
    return i == 0 || (isTerminator(at(i - 1)) && !isInsidePair(i));
  }

  std::size_t startOfLine(std::size_t i) const {
    while (!isLineStart(i)) --i;
    return i;
  }
  /// Where the first terminator that ends behind `i` begins; the length without one.
  std::size_t contentsEnd(std::size_t i) const {
    if (isInsidePair(i)) return i - 1;
    while (i < units.size() && !isTerminator(at(i))) ++i;
    return i;
  }
  std::size_t behindTerminator(std::size_t i) const {
    if (i == units.size()) return i;
    return isInsidePair(i + 1) ? i + 2 : i + 1;
  }
};

}  // namespace

void NSString::getLineStart(std::size_t* start, std::size_t* end, std::size_t* contentsEnd,
                            NSRange range) const {
  if (range.location > length() || range.length > length() - range.location)
    raiseRange("-[NSString getLineStart:end:contentsEnd:forRange:]: Range out of bounds");
  visitUnits([&](auto units) {
    const Text<decltype(units)> text{units};
    const std::size_t last = range.location + (range.length > 0 ? range.length - 1 : 0);
    const std::size_t contents = text.contentsEnd(last);
    if (start) *start = text.startOfLine(range.location);
    if (contentsEnd) *contentsEnd = contents;
    if (end) *end = text.behindTerminator(contents);
  });
}

}  // namespace kbx
