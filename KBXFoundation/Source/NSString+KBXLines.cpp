#include "NSString+KBXLines.h"

#include "NSString+KBXCharacters.h"
#include "StringCopy.h"
#include "platform/text/StringBuilder.h"

namespace kbx {

Ref<NSArray> kbxComponentsSeparatedByLineSeparators(NSString* string) {
  if (!string) return nullptr;
  NSArray::Elements lines;
  for (std::size_t at = 0; at < string->length();) {
    std::size_t end = 0, contentsEnd = 0;
    string->getLineStart(nullptr, &end, &contentsEnd, {at, 0});
    lines.push_back(string->substringWithRange({at, contentsEnd - at}));
    at = end;
  }
  return NSArray::arrayWithElements(std::move(lines));
}

Ref<NSString> kbxStringByNormalizingLineBreaks(NSString* string) {
  if (!string) return nullptr;
  if (!kbxContainsCharacter(string, u'\r')) return newCopy(string);
  StringBuilder builder;
  string->visitUnits([&](auto units) {
    for (std::size_t i = 0; i < units.size(); ++i) {
      const bool isReturn = units[i] == '\r';
      builder.appendUnit(isReturn ? u'\n' : static_cast<char16_t>(units[i]));
      if (isReturn && i + 1 < units.size() && units[i + 1] == '\n') ++i;
    }
  });
  return builder.take();
}

}  // namespace kbx
