// NSString: immutable text, measured in UTF-16 code units.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/objects/NSObject.h"
#include "platform/objects/NSRange.h"

namespace kbx {

class NSArray;
class NSCharacterSet;
class NSData;
enum NSStringCompareOptions : std::uint64_t;
enum NSStringEncoding : std::uint64_t;

enum NSComparisonResult : std::int8_t {
  NSOrderedAscending = -1,
  NSOrderedSame = 0,
  NSOrderedDescending = 1,
};

/// Text whose length and indices count UTF-16 code units.
///
/// ASCII text is kept as bytes: one byte is one unit, and the bytes are its UTF-8 form as well.
/// Any other text is kept as UTF-16, lone surrogates included. Only long text that came as UTF-8
/// stays in it, checked, until somebody asks for its length or its units; then it has both. No
/// result depends on the form. Every instance is immutable and may be shared between threads.
class KBX_PLATFORM NSString : public NSObject {
  KBX_OBJECT(NSString, NSObject)
 public:
  static Ref<NSString> string();
  /// The text of UTF-8 bytes; absent when they are not valid UTF-8.
  static Ref<NSString> stringWithUTF8(std::string_view bytes);
  /// The same text without a copy where the bytes are ASCII or long: the string keeps the buffer.
  static Ref<NSString> stringWithUTF8(NSData* bytes);
  /// The same text, keeping the bytes that are moved in where they are ASCII.
  static Ref<NSString> stringByTakingUTF8(std::string bytes);
  /// The text of UTF-8 bytes in which every malformed sequence becomes U+FFFD.
  static Ref<NSString> stringWithLossyUTF8(std::string_view bytes);
  /// Any units are accepted; a lone surrogate stays as it is.
  static Ref<NSString> stringWithUTF16(std::u16string_view units);
  /// The same text, keeping the units that are moved in where one of them is not ASCII.
  static Ref<NSString> stringByTakingUTF16(std::u16string units);
  /// The text of a C string; absent when it is null or not valid UTF-8. (stringWithUTF8String:)
  static Ref<NSString> stringWithUTF8String(const char* text);
  /// The one object that stands for a literal's text, process-wide. Behind operator""_ns.
  static NSString* constant(std::string_view ascii);

  std::size_t length() const {
    static_cast<void>(units());
    return _length;
  }
  bool isASCII() const noexcept { return !_wide; }
  /// Raises NSRangeException when index >= length().
  char16_t characterAtIndex(std::size_t index) const;
  /// The UTF-8 form; absent when the text holds a lone surrogate.
  std::optional<std::string> UTF8String() const;
  /// The UTF-8 form in which a lone surrogate becomes U+FFFD: for display, never for keys.
  std::string lossyUTF8() const;
  /// The bytes of the UTF-8 form; absent when the text holds a lone surrogate. Shares the buffer
  /// with a string that was made from one.
  Ref<NSData> UTF8Data() const;
  /// The UTF-8 form where the text is kept in it, for writers, who need no units. Absent otherwise,
  /// never for ASCII text. Valid as long as the text.
  std::optional<std::string_view> keptUTF8() const;

  /// Calls visitor with a std::span<const char> (ASCII) or a std::span<const char16_t>, so that
  /// one generic lambda runs without a test per unit on both forms.
  template <class Visitor>
  decltype(auto) visitUnits(Visitor&& visitor) const {
    const void* const first = units();
    return _wide ? visitor(std::span(static_cast<const char16_t*>(first), _length))
                 : visitor(std::span(static_cast<const char*>(first), _length));
  }

  /// Order of the code units; an absent argument comes first. (compare:)
  NSComparisonResult compare(NSString* other) const;
  /// False for an absent argument and for an empty one. (hasPrefix:)
  bool hasPrefix(NSString* prefix) const;
  /// False for an absent argument and for an empty one. (hasSuffix:)
  bool hasSuffix(NSString* suffix) const;
  /// The first place of the text, unit by unit; not found for an absent or empty text.
  NSRange rangeOfString(NSString* text) const;
  /// Raises NSRangeException when the range reaches past the end. (substringWithRange:)
  Ref<NSString> substringWithRange(NSRange range) const;
  Ref<NSString> substringFromIndex(std::size_t index) const;
  Ref<NSString> substringToIndex(std::size_t index) const;
  /// This text followed by the other; an absent one raises. (stringByAppendingString:)
  Ref<NSString> stringByAppendingString(NSString* other) const;
  /// Every occurrence replaced, from left to right. (stringByReplacingOccurrencesOfString:…)
  Ref<NSString> stringByReplacingOccurrences(NSString* target, NSString* replacement) const;
  /// The pieces between the separators: one more than there are separators. An empty separator
  /// separates nothing. (componentsSeparatedByString:)
  Ref<NSArray> componentsSeparatedByString(NSString* separator) const;
  /// The text behind the last slash, trailing slashes left out; "/" for the root.
  Ref<NSString> lastPathComponent() const;

  /// Leading blanks skipped, an optional sign, the leading digits; 0 without digits, the nearest
  /// limit where the number is out of range. (integerValue, intValue)
  std::int64_t integerValue() const;
  std::int32_t intValue() const;
  /// True when the text begins, after leading blanks, with Y, y, T, t or a digit 1 to 9; so neither
  /// a sign nor a zero may stand in front. (boolValue)
  bool boolValue() const;
  /// The leading decimal number, after leading blanks and an optional sign; 0 without one, infinity
  /// where it is too large. (doubleValue)
  double doubleValue() const;

  // ---- Comparing with options (platform/text/CompareOptions.h) ----

  /// The first place of the text; not found for an absent or empty one. (rangeOfString:options:)
  ///
  /// Texts are the same when their canonical decompositions are, as far as the options say: case
  /// by Unicode's full folding, marks by leaving them out, widths by the common form. What is
  /// found never ends between a character and its marks. Numeric and localized do not count.
  NSRange rangeOfString(NSString* text, NSStringCompareOptions options) const;
  /// Order by what the options say; an absent argument comes first. (compare:options:)
  ///
  /// With kCFCompareLocalized the order of the user's language (DisplayOrder), else that of the
  /// code units of what rangeOfString compares; numeric counts in the former only.
  NSComparisonResult compare(NSString* other, NSStringCompareOptions options) const;
  /// compare() with NSCaseInsensitiveSearch. (caseInsensitiveCompare:)
  NSComparisonResult caseInsensitiveCompare(NSString* other) const;

  // ---- Lines and ends ----

  /// Where the line around a place begins, where it ends and where its terminator begins.
  /// (getLineStart:end:contentsEnd:forRange:)
  ///
  /// start, end, contentsEnd  where to store them, each nullptr when it is not wanted
  /// range  one or several lines, or the place where the length is 0; raises NSRangeException when
  ///        it reaches past the end
  ///
  /// LF, CR, CR LF, U+0085, U+2028 and U+2029 end a line.
  void getLineStart(std::size_t* start, std::size_t* end, std::size_t* contentsEnd,
                    NSRange range) const;
  /// The text in small letters of no language. (lowercaseString)
  Ref<NSString> lowercaseString() const;
  /// The text without the set's units at both ends; an absent set has none.
  /// (stringByTrimmingCharactersInSet:)
  Ref<NSString> stringByTrimmingCharactersInSet(NSCharacterSet* set) const;

  // ---- Composed characters ----

  /// The place of the composed character sequence that holds the unit at `index`; raises
  /// NSRangeException when index >= length(). A sequence is a grapheme cluster; a carriage return
  /// and a line feed are two. (rangeOfComposedCharacterSequenceAtIndex:)
  NSRange rangeOfComposedCharacterSequenceAtIndex(std::size_t index) const;
  /// The text in Unicode's form D: composed characters taken apart, marks in their canonical
  /// order. (decomposedStringWithCanonicalMapping)
  Ref<NSString> decomposedStringWithCanonicalMapping() const;

  // ---- Encodings (platform/text/StringEncoding.h) ----

  /// The text of bytes in an encoding; absent for absent or malformed bytes and for an encoding
  /// that is not known here. (initWithData:encoding:)
  ///
  /// UTF-16 and UTF-32 without a fixed order take it from a byte-order mark, which is not part of
  /// the text, and are in this machine's order without one. Lone surrogates are malformed
  /// everywhere but in UTF-16. In UTF-8 ASCII text and long text share the buffer.
  static Ref<NSString> initWithData(NSData* data, NSStringEncoding encoding);

  /// The bytes of the text in an encoding. (dataUsingEncoding:allowLossyConversion:)
  ///
  /// allowLossyConversion  a character without a form there becomes its plain ASCII letter or "?"
  ///                       (U+FFFD in the Unicode forms); without it such text gives an absent
  ///                       result
  ///
  /// Absent as well for an encoding that is not known here.
  Ref<NSData> dataUsingEncoding(NSStringEncoding encoding, bool allowLossyConversion = false) const;

  Ref<NSString> description() const override;
  bool isEqual(NSObject* other) const override;
  std::size_t hash() const override;

 protected:
  NSString() = default;
  ~NSString() override;
  void setUnits(std::string_view ascii);
  void setUnits(std::u16string_view units);
  /// Says that the text is not ASCII and has its units when makeUnits() was called.
  void deferUnits();
  /// Makes and sets the units of a text that deferred them. Called by any thread, also by several
  /// at once; they are there when it returns.
  virtual void makeUnits() const {}
  /// To be called once, by makeUnits().
  void setDeferredUnits(std::u16string_view units) const;

 private:
  const void* units() const {
    if (const void* units = _units.load(std::memory_order_acquire)) return units;
    makeUnits();
    return _units.load(std::memory_order_acquire);
  }
  /// The units as they lie in memory.
  std::string_view unitBytes() const;
  /// The buffer of the UTF-8 form of a text that was made from one; absent otherwise.
  virtual NSData* sharedBytes() const noexcept { return nullptr; }

  // The length counts from the moment on that there are units.
  mutable std::atomic<const void*> _units = "";
  mutable std::size_t _length = 0;
  bool _wide = false;
};

namespace detail {
template <std::size_t N>
struct Literal {
  char text[N];
  consteval Literal(const char (&source)[N]) {
    for (std::size_t i = 0; i < N; ++i) text[i] = source[i];
  }
};
}  // namespace detail

/// A constant: "KBXStackFrames"_ns. One object per spelling in the process, made at first use,
/// never freed. The literal is UTF-8.
template <detail::Literal literal>
NSString* operator""_ns() {
  static NSString* const string = NSString::constant({literal.text, sizeof(literal.text) - 1});
  return string;
}

}  // namespace kbx
