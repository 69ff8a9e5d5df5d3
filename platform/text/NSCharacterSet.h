// NSCharacterSet: a set of Unicode characters.
#pragma once

#include <cstdint>

#include "platform/objects/NSObject.h"
#include "platform/objects/NSRange.h"

struct USet;

namespace kbx {

class NSData;

/// An immutable set of code points. May be shared between threads.
class KBX_PLATFORM NSCharacterSet final : public NSObject {
  KBX_OBJECT(NSCharacterSet, NSObject)
 public:
  /// The code points from range.location on, as many as the range is long; what lies beyond
  /// U+10FFFF is left out. (characterSetWithRange:)
  static Ref<NSCharacterSet> characterSetWithRange(NSRange range);
  /// The code points of a text; an absent or empty one gives the empty set.
  /// (characterSetWithCharactersInString:)
  static Ref<NSCharacterSet> characterSetWithCharactersInString(NSString* text);
  /// Blanks and tabs: general category Zs and U+0009. (whitespaceCharacterSet)
  static Ref<NSCharacterSet> whitespaceCharacterSet();
  /// LF to CR, U+0085, U+2028 and U+2029. (newlineCharacterSet)
  static Ref<NSCharacterSet> newlineCharacterSet();
  /// Both. (whitespaceAndNewlineCharacterSet)
  static Ref<NSCharacterSet> whitespaceAndNewlineCharacterSet();
  /// General category Nd. (decimalDigitCharacterSet)
  static Ref<NSCharacterSet> decimalDigitCharacterSet();
  /// General categories L*, M* and N*. (alphanumericCharacterSet)
  static Ref<NSCharacterSet> alphanumericCharacterSet();

  /// Every other code point. (invertedSet)
  Ref<NSCharacterSet> invertedSet() const;

  /// Whether the code point is in the set; false beyond U+10FFFF. (longCharacterIsMember:)
  bool longCharacterIsMember(std::uint32_t codePoint) const;
  /// 8192 bytes: bit n % 8 of byte n / 8 says whether code point n of the basic plane is in the
  /// set. Planes beyond it are not told. (bitmapRepresentation)
  Ref<NSData> bitmapRepresentation() const;

  bool isEqual(NSObject* other) const override;
  std::size_t hash() const override;

 private:
  explicit NSCharacterSet(USet* set);
  ~NSCharacterSet() override;
  static Ref<NSCharacterSet> withPattern(const char* pattern);

  USet* const _set;  // owned, frozen
};

}  // namespace kbx
