#include "NSString+KBXCharacters.h"

#include <algorithm>

#include "platform/text/StringBuilder.h"

namespace kbx {
namespace {

bool isMember(NSCharacterSet* set, char16_t unit) {
  return set && set->longCharacterIsMember(unit);
}

}  // namespace

bool kbxHasCharacter(NSString* string, char16_t character, std::size_t atIndex) {
  return string && atIndex < string->length() && string->characterAtIndex(atIndex) == character;
}

bool kbxContainsCharacter(NSString* string, char16_t character) {
  return string && string->visitUnits([=](auto units) {
    return std::ranges::any_of(units,
                               [=](auto unit) { return static_cast<char16_t>(unit) == character; });
  });
}

std::size_t kbxCountOccurrencesOfCharacter(NSString* string, char16_t character) {
  if (!string) return 0;
  return string->visitUnits([=](auto units) {
    return static_cast<std::size_t>(std::ranges::count_if(
        units, [=](auto unit) { return static_cast<char16_t>(unit) == character; }));
  });
}

bool kbxMatchesCharacterSet(NSString* string, NSCharacterSet* set) {
  return string && string->visitUnits([=](auto units) {
    return std::ranges::all_of(
        units, [=](auto unit) { return isMember(set, static_cast<char16_t>(unit)); });
  });
}

Ref<NSString> kbxStringByKeepingCharactersInSet(NSString* string, NSCharacterSet* set) {
  if (!string) return nullptr;
  StringBuilder builder;
  string->visitUnits([&](auto units) {
    for (auto unit : units)
      if (isMember(set, static_cast<char16_t>(unit)))
        builder.appendUnit(static_cast<char16_t>(unit));
  });
  return builder.take();
}

}  // namespace kbx
