#include "platform/markup/MarkupText.h"

#include <unicode/ucnv.h>
#include <unicode/utf16.h>

#include <iterator>
#include <memory>

#include "platform/markup/CharacterReference.h"
#include "platform/markup/Characters.h"
#include "platform/markup/GrowingBytes.h"
#include "platform/markup/MarkupEncoding.h"
#include "platform/markup/UTF8Decoder.h"

namespace kbx {
namespace {

/// Takes characters one by one and keeps those that may stay.
class Cleaner {
 public:
  explicit Cleaner(std::size_t expectedLength) : _bytes(expectedLength) {}

  void put(char32_t character) {
    const bool isBehindReturn = std::exchange(_isBehindReturn, character == '\r');
    if (character == '\n' && isBehindReturn) return;
    if (character == '\r') character = '\n';
    if (character == '\f') character = ' ';
    if (isDroppedControl(character)) return;
    if (!isCharacter(character)) character = 0xFFFD;
    _bytes.added(encodeUTF8(character, _bytes.room(4)));
  }

  /// Units of UTF-16, of which a surrogate's partner is never missing at the end alone.
  void putUnits(const char16_t* units, std::int32_t length) {
    constexpr std::size_t kLongest = 3;  // bytes of a unit
    for (std::int32_t i = 0; i < length;) {
      char* const start = _bytes.room(kLongest * static_cast<std::size_t>(length - i));
      char* out = start;
      for (; i < length && isPlainUnit(units[i]); ++i) out += encodeUTF8(units[i], out);
      if (out != start) _isBehindReturn = false;
      _bytes.added(static_cast<std::size_t>(out - start));
      if (i == length) return;
      UChar32 character;
      U16_NEXT(units, i, length, character);
      put(static_cast<char32_t>(character));
    }
  }

  void putPlainASCII(std::string_view text) {
    if (text.empty()) return;
    if (_isBehindReturn && text.front() == '\n') text.remove_prefix(1);
    _isBehindReturn = false;
    _bytes.append(text);
  }

  Ref<NSData> take() { return _bytes.take(); }

 private:
  /// Whether a unit is a character by itself that stays as it is, wherever it stands.
  static bool isPlainUnit(char16_t unit) {
    return (unit >= 0x20 && unit < 0x7F) || (unit > 0x9F && unit < 0xD800) ||
           (unit > 0xDFFF && unit < 0xFDD0);
  }

  GrowingBytes _bytes;
  bool _isBehindReturn = false;
};

/// Plain ASCII by runs, everything else through `other`, which answers how many bytes it took.
template <class Other>
void cleanASCIIAnd(std::string_view bytes, Cleaner& cleaner, Other other) {
  const char* p = bytes.data();
  const char* const end = p + bytes.size();
  while (p != end) {
    const char* const run = p;
    p = skipPlainASCII(p, end);
    cleaner.putPlainASCII({run, static_cast<std::size_t>(p - run)});
    if (p != end) p += other(p, end);
  }
}

void cleanUTF8(std::string_view bytes, Cleaner& cleaner) {
  cleanASCIIAnd(bytes, cleaner, [&](const char* p, const char* end) -> std::size_t {
    if (static_cast<std::uint8_t>(*p) < 0x80) {
      cleaner.put(static_cast<char32_t>(*p));
      return 1;
    }
    const DecodedCharacter next = decodeUTF8(p, end);
    cleaner.put(next.value);
    return next.length;
  });
}

void cleanWindows1252(std::string_view bytes, Cleaner& cleaner) {
  cleanASCIIAnd(bytes, cleaner, [&](const char* p, const char*) -> std::size_t {
    const auto byte = static_cast<std::uint8_t>(*p);
    cleaner.put(byte >= 0x80 && byte <= 0x9F ? windows1252(byte) : byte);
    return 1;
  });
}

/// In pieces, so that the text in the converter's own form is never there as a whole. False when
/// the conversion library does not know the charset.
bool cleanCharset(std::string_view bytes, const char* charset, Cleaner& cleaner) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(ucnv_open(charset, &status),
                                                                     &ucnv_close);
  if (U_FAILURE(status)) return false;
  char16_t piece[4096];
  std::int32_t kept = 0;  // a lead surrogate whose partner is in the next piece
  const char* source = bytes.data();
  const char* const end = source + bytes.size();
  do {
    status = U_ZERO_ERROR;
    char16_t* target = piece + kept;
    ucnv_toUnicode(converter.get(), &target, std::end(piece), &source, end, nullptr, true, &status);
    auto length = static_cast<std::int32_t>(target - piece);
    const bool isCut =
        status == U_BUFFER_OVERFLOW_ERROR && length > 0 && U16_IS_LEAD(piece[length - 1]);
    cleaner.putUnits(piece, length - (isCut ? 1 : 0));
    kept = isCut ? 1 : 0;
    if (isCut) piece[0] = piece[length - 1];
  } while (status == U_BUFFER_OVERFLOW_ERROR);
  return true;
}

Ref<NSData> cleaned(std::string_view bytes, const char* charset, const ByteSurvey& survey) {
  // A byte beyond ASCII can become three, a byte of ASCII stays one.
  Cleaner cleaner(bytes.size() + 2 * survey.nonASCIICount);
  if (charset == MarkupEncoding::kUTF8)
    cleanUTF8(bytes, cleaner);
  else if (charset == MarkupEncoding::kWindows1252 || !cleanCharset(bytes, charset, cleaner))
    cleanWindows1252(bytes, cleaner);
  return cleaner.take();
}

}  // namespace

MarkupText markupText(NSData* bytes) {
  std::string_view text = bytes->view();
  const ByteSurvey survey = surveyBytes(text);
  const MarkupEncoding encoding = encodingOfMarkup(text, survey);
  text.remove_prefix(encoding.markLength);
  if (encoding.charset == MarkupEncoding::kUTF8 && survey.isClean) return {text, bytes};
  auto owner = cleaned(text, encoding.charset, survey);
  return {owner->view(), owner};
}

}  // namespace kbx
