#include "NSString+KBXCutting.h"

#include <algorithm>

#include "StringCopy.h"
#include "platform/text/NSCharacterSet.h"

namespace kbx {
namespace {

/// How many units stand before the first blank, or in the whole text.
std::size_t firstBlank(const NSString* string) {
  return string->visitUnits([](auto units) {
    return static_cast<std::size_t>(std::ranges::find(units, ' ') - units.begin());
  });
}

/// Where the part behind the last blank begins.
std::size_t behindLastBlank(const NSString* string) {
  return string->visitUnits([](auto units) {
    std::size_t i = units.size();
    while (i > 0 && units[i - 1] != ' ') --i;
    return i;
  });
}

bool isASCIISpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

Ref<NSString> strippedASCII(const NSString* string, std::span<const char> units) {
  std::size_t start = 0, end = units.size();
  while (start < end && isASCIISpace(units[start])) ++start;
  while (end > start && isASCIISpace(units[end - 1])) --end;
  return string->substringWithRange({start, end - start});
}

}  // namespace

Ref<NSString> kbxSubstringToString(NSString* string, NSString* end) {
  if (!string) return nullptr;
  const NSRange found = string->rangeOfString(end);
  return found.location == NSNotFound ? NSString::string()
                                      : string->substringToIndex(found.location);
}

Ref<NSString> kbxSubstringFromString(NSString* string, NSString* start) {
  if (!string) return nullptr;
  const NSRange found = string->rangeOfString(start);
  if (found.location == NSNotFound) return ""_ns;
  return string->substringFromIndex(found.location + found.length);
}

Ref<NSString> kbxSubstringToIndex(NSString* string, std::size_t index) {
  if (!string) return nullptr;
  return index < string->length() ? string->substringToIndex(index) : newCopy(string);
}

Ref<NSString> kbxSubstringFromIndex(NSString* string, std::size_t index) {
  if (!string) return nullptr;
  return index < string->length() ? string->substringFromIndex(index) : NSString::string();
}

Ref<NSString> kbxStringByChopping(NSString* string) {
  if (!string) return nullptr;
  return string->length() == 0 ? NSString::string()
                               : string->substringToIndex(string->length() - 1);
}

Ref<NSString> kbxFirstSpaceComponent(NSString* string) {
  return string ? string->substringToIndex(firstBlank(string)) : nullptr;
}

Ref<NSString> kbxLastSpaceComponent(NSString* string) {
  return string ? string->substringFromIndex(behindLastBlank(string)) : nullptr;
}

Ref<NSString> kbxStringByStripping(NSString* string) {
  if (!string) return nullptr;
  return string->visitUnits([string](auto units) {
    if constexpr (sizeof(units[0]) == 1) {
      return strippedASCII(string, units);
    } else {
      static auto* const blanks = NSCharacterSet::whitespaceAndNewlineCharacterSet().leak();
      return string->stringByTrimmingCharactersInSet(blanks);
    }
  });
}

}  // namespace kbx
