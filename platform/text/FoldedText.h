// FoldedText: a text in the form in which it is searched and compared, and the way back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/objects/NSString.h"
#include "platform/text/CompareOptions.h"

namespace kbx {

/// The key of a text: equal keys are the same text as far as the options say.
///
/// The key is made element by element. An element is a character with what joins it, and a find
/// begins and ends between elements: "e" is not found in an e with a mark, whether composed or
/// not, unless diacritics do not count. ASCII text stays in bytes.
class FoldedText {
 public:
  /// text    borrowed for the call
  /// enough  stop once the key has this many units; the key may have a few more
  FoldedText(const NSString* text, NSStringCompareOptions options, std::size_t enough = SIZE_MAX);

  bool isEmpty() const noexcept { return _ascii.empty() && _wide.empty(); }
  std::size_t length() const noexcept { return _ascii.size() + _wide.size(); }

  /// The place of the other key, in units of the text; not found for an empty one.
  NSRange find(const FoldedText& wanted) const;
  /// The same at the beginning only.
  NSRange findAtStart(const FoldedText& wanted) const;
  /// Order of the keys' code units.
  NSComparisonResult compare(const FoldedText& other) const;

 private:
  /// An element whose key is not one unit for one unit.
  struct Irregular {
    std::uint32_t key, keyLength, text, textLength;
  };

  template <class Visitor>
  decltype(auto) visit(Visitor&& visitor) const;
  void foldWide(std::u16string_view units, NSStringCompareOptions options, std::size_t enough);
  void appendElement(std::u16string_view units, std::size_t from, std::size_t to,
                     NSStringCompareOptions options);
  std::optional<NSRange> rangeInText(std::size_t key, std::size_t keyLength) const;
  std::optional<std::size_t> startInText(std::size_t key) const;
  std::optional<std::size_t> endInText(std::size_t key) const;

  std::string _ascii;    // the key of an ASCII text
  std::u16string _wide;  // the key of any other text; it may be ASCII
  std::vector<Irregular> _irregular;
};

}  // namespace kbx
