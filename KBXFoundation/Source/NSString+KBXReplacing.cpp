#include "NSString+KBXReplacing.h"

#include <csignal>
#include <cstdlib>

#include "NSString+KBXCharacters.h"
#include "StringCopy.h"
#include "platform/objects/NSException.h"
#include "platform/text/StringBuilder.h"

namespace kbx {
namespace {

void requireTexts(NSString* target, NSString* replacement, const char* selector) {
  if (!target || !replacement) raiseInvalidArgument(std::string(selector) + ": nil argument");
}

/// The value as a text; a message for texts to any other object is not understood.
NSString* textOf(NSObject* object) {
  if (auto* string = cast<NSString>(object)) return string;
  raiseUnrecognizedSelector(object, "length");
}

/// What dividing by zero does where processors do not let it pass.
[[noreturn]] void faultAsDivisionByZero() {
  std::raise(SIGFPE);
  std::abort();
}

}  // namespace

Ref<NSString> kbxJoin(NSString* separator, NSArray* array) {
  return separator && array ? array->componentsJoinedByString(separator) : nullptr;
}

Ref<NSString> kbxStringByEnsuringSuffix(NSString* string, NSString* suffix) {
  if (!string) return nullptr;
  return string->hasSuffix(suffix) ? newCopy(string) : string->stringByAppendingString(suffix);
}

Ref<NSString> kbxStringByReplacingString(NSString* string, NSString* target,
                                         NSString* replacement) {
  if (!string) return nullptr;
  requireTexts(target, replacement, "kbxStringByReplacingString:withString:");
  return string->stringByReplacingOccurrences(target, replacement);
}

Ref<NSString> kbxStringByReplacingFirstOccurrenceOfString(NSString* string, NSString* target,
                                                          NSString* replacement) {
  if (!string) return nullptr;
  requireTexts(target, replacement, "kbxStringByReplacingFirstOccurrenceOfString:withString:");
  const NSRange found = string->rangeOfString(target);
  if (found.location == NSNotFound) return newCopy(string);
  return StringBuilder()
      .append(string->substringToIndex(found.location))
      .append(replacement)
      .append(string->substringFromIndex(found.location + found.length))
      .take();
}

Ref<NSString> kbxStringByExpandingKeysInDictionary(NSString* string, NSDictionary* dictionary) {
  if (!string || !dictionary) return string;
  Ref<NSString> result = string;
  for (const auto& [key, value] : *dictionary)
    result = kbxStringByReplacingString(result, textOf(key), textOf(value));
  return result;
}

Ref<NSString> kbxStringByChunking(NSString* string, std::size_t chunkSize, NSString* with) {
  if (!string) return nullptr;
  if (chunkSize == 0 && string->length() > 1) faultAsDivisionByZero();
  StringBuilder builder;
  string->visitUnits([&](auto units) {
    for (std::size_t i = 0; i < units.size(); ++i) {
      if (i > 0 && i % chunkSize == 0) builder.append(with);
      builder.appendUnit(static_cast<char16_t>(units[i]));
    }
  });
  return builder.take();
}

Ref<NSString> kbxStringByTrimmingNulls(NSString* string) {
  if (!string) return nullptr;
  if (!kbxContainsCharacter(string, 0)) return newCopy(string);
  StringBuilder builder;
  string->visitUnits([&](auto units) {
    for (auto unit : units)
      if (unit != 0) builder.appendUnit(static_cast<char16_t>(unit));
  });
  return builder.take();
}

}  // namespace kbx
