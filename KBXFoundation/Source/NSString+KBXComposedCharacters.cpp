#include "NSString+KBXComposedCharacters.h"

#include "Assertions.h"
#include "NSString+KBXPunctuation.h"
#include "StringCopy.h"
#include "platform/objects/NSException.h"
#include "platform/text/ComposedCharacters.h"
#include "platform/text/Decomposition.h"
#include "platform/text/StringBuilder.h"

namespace kbx {
namespace {

[[noreturn]] void raiseInvalidRange(NSRange range) {
  raiseRange(stringWithFormat("Invalid range %@."_ns, NSStringFromRange(range))->lossyUTF8());
}

/// How long the units from `start` to `end` are in canonical decomposition.
std::size_t decomposedLengthOfPart(const NSString* string, std::size_t start, std::size_t end) {
  return string->visitUnits([=](auto units) -> std::size_t {
    if constexpr (sizeof(units[0]) == 1)
      return end - start;
    else
      return decomposedLength(std::u16string_view(units.data() + start, end - start));
  });
}

/// Where to cut the end off, by whole composed characters, so that what is left is no longer than
/// `longest` in canonical decomposition. Walks forwards: backwards, every step in a long run of
/// flags looks at the whole run.
std::size_t endOfStem(const NSString* string, std::size_t longest) {
  ComposedCharacters characters(string);
  for (std::size_t start = 0, length = 0; start < string->length();) {
    const std::size_t end = characters.endOfSequenceAt(start);
    length += decomposedLengthOfPart(string, start, end);
    if (length > longest) return start;
    start = end;
  }
  return string->length();
}

}  // namespace

NSRange kbxRangeOfComposedCharacterSequencesInRange(NSString* string, NSRange range) {
  if (!string) return {};
  const std::size_t length = string->length();
  if (range.location >= length || range.length > length - range.location) raiseInvalidRange(range);
  if (range.location + range.length == 0) raiseInvalidRange(range);  // there is no unit before it
  ComposedCharacters characters(string);
  const std::size_t start = characters.startOfSequenceAt(range.location);
  const std::size_t end = characters.endOfSequenceAt(range.location + range.length - 1);
  return {start, end - start};
}

Ref<NSString> kbxSubstringToComposedIndex(NSString* string, std::size_t index) {
  if (!string) return nullptr;
  if (index >= string->length()) return newCopy(string);
  return string->substringToIndex(ComposedCharacters(string).startOfSequenceAt(index));
}

Ref<NSString> kbxStringByChoppingComposedCharacter(NSString* string) {
  if (!string) return nullptr;
  if (string->length() < 2) return ""_ns;
  return kbxSubstringToComposedIndex(string, string->length() - 1);
}

Ref<NSString> kbxStringByTruncatingMiddleAfterComposedLength(NSString* string, std::size_t length) {
  if (!string) return nullptr;
  const std::size_t whole = string->length();
  if (length >= whole - whole / 2) return newCopy(string);  // twice the length would overflow
  const NSRange middle =
      kbxRangeOfComposedCharacterSequencesInRange(string, {length, whole - 2 * length});
  return StringBuilder()
      .append(string->substringToIndex(middle.location))
      .append(kbxEllipsis())
      .append(string->substringFromIndex(middle.location + middle.length))
      .take();
}

Ref<NSString> kbxStringByAddingSuffix(NSString* string, NSString* suffix,
                                      std::size_t trimmingStemToTotal) {
  if (!string) return nullptr;
  const std::size_t total = trimmingStemToTotal;
  // Plain length here, decomposed lengths below: both are wanted.
  KBX_ASSERT_MESSAGE((suffix ? suffix->length() : 0) <= total, "[suffix length] <= length",
                     (Site("KBXFoundation/Source/NSString+KBXBasics", 150, string,
                           "kbxStringByAddingSuffix:trimmingStemToTotal:")),
                     "suffix: '%@' length: %llu"_ns, suffix, total);
  const std::size_t suffixLength = suffix ? decomposedLength(suffix) : 0;
  const std::size_t end = endOfStem(string, suffixLength < total ? total - suffixLength : 0);
  return string->substringToIndex(end)->stringByAppendingString(suffix);
}

}  // namespace kbx
