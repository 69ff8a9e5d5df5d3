#include "platform/text/CharsetConverter.h"

#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ucnv_err.h>
#include <unicode/unorm2.h>
#include <unicode/utf16.h>

#include <memory>

namespace kbx {
namespace {

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

Converter openConverter(const char* charset) {
  UErrorCode status = U_ZERO_ERROR;
  UConverter* converter = ucnv_open(charset, &status);
  return {U_SUCCESS(status) ? converter : nullptr, &ucnv_close};
}

// Leaves the error that the library reports. Its own callback of this kind drops characters that
// are ignorable by default, such as a zero-width joiner, and so loses text in silence.
void stopAtMissing(const void*, UConverterFromUnicodeArgs*, const UChar*, std::int32_t, UChar32,
                   UConverterCallbackReason, UErrorCode*) {}

void approximateMissing(const void*, UConverterFromUnicodeArgs* arguments, const UChar*,
                        std::int32_t, UChar32 character, UConverterCallbackReason reason,
                        UErrorCode* status) {
  if (reason > UCNV_IRREGULAR) return;  // the converter is only being reset or closed
  *status = U_ZERO_ERROR;
  const std::string plain = asciiApproximation(static_cast<char32_t>(character));
  const std::u16string units(plain.begin(), plain.end());
  const char16_t* from = units.data();
  ucnv_cbFromUWriteUChars(arguments, &from, from + units.size(), 0, status);
}

// The library's own callback writes a control character where a charset's table says so.
void replaceMalformed(const void*, UConverterToUnicodeArgs* arguments, const char*, std::int32_t,
                      UConverterCallbackReason reason, UErrorCode* status) {
  if (reason > UCNV_IRREGULAR) return;
  *status = U_ZERO_ERROR;
  const char16_t replacement = 0xFFFD;
  ucnv_cbToUWriteUChars(arguments, &replacement, 1, 0, status);
}

bool setUpDecoder(UConverter* converter, bool isLossy) {
  UErrorCode status = U_ZERO_ERROR;
  ucnv_setToUCallBack(converter, isLossy ? &replaceMalformed : &UCNV_TO_U_CALLBACK_STOP, nullptr,
                      nullptr, nullptr, &status);
  return U_SUCCESS(status);
}

bool setUpEncoder(UConverter* converter, bool isLossy) {
  UErrorCode status = U_ZERO_ERROR;
  ucnv_setFromUCallBack(converter, isLossy ? &approximateMissing : &stopAtMissing, nullptr, nullptr,
                        nullptr, &status);
  return U_SUCCESS(status);
}

}  // namespace

std::optional<std::u16string> decodeCharset(std::string_view bytes, const char* charset,
                                            bool isLossy) {
  const Converter converter = openConverter(charset);
  if (!converter || !setUpDecoder(converter.get(), isLossy)) return std::nullopt;
  std::u16string units;
  char16_t piece[4096];
  const char* source = bytes.data();
  const char* const end = source + bytes.size();
  UErrorCode status;
  do {  // in pieces: the converter says when one is full
    status = U_ZERO_ERROR;
    char16_t* target = piece;
    ucnv_toUnicode(converter.get(), &target, std::end(piece), &source, end, nullptr, true, &status);
    units.append(piece, target);
  } while (status == U_BUFFER_OVERFLOW_ERROR);
  if (U_FAILURE(status)) return std::nullopt;
  return units;
}

std::optional<std::string> encodeCharset(std::u16string_view units, const char* charset,
                                         bool isLossy) {
  const Converter converter = openConverter(charset);
  if (!converter || !setUpEncoder(converter.get(), isLossy)) return std::nullopt;
  std::string bytes;
  char piece[4096];
  const char16_t* source = units.data();
  const char16_t* const end = source + units.size();
  UErrorCode status;
  do {
    status = U_ZERO_ERROR;
    char* target = piece;
    ucnv_fromUnicode(converter.get(), &target, std::end(piece), &source, end, nullptr, true,
                     &status);
    bytes.append(piece, target);
  } while (status == U_BUFFER_OVERFLOW_ERROR);
  if (U_FAILURE(status)) return std::nullopt;
  return bytes;
}

std::string asciiApproximation(char32_t character) {
  const auto c = static_cast<UChar32>(character);
  if (U_GET_GC_MASK(c) & U_GC_M_MASK) return {};
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* normalizer = unorm2_getNFKDInstance(&status);
  char16_t parts[32];
  const std::int32_t length = unorm2_getDecomposition(normalizer, c, parts, 32, &status);
  if (U_FAILURE(status) || length <= 0) return "?";
  std::string plain;
  for (std::int32_t i = 0; i < length;) {
    UChar32 part;
    U16_NEXT(parts, i, length, part);
    if (part < 0x80)
      plain += static_cast<char>(part);
    else if (!(U_GET_GC_MASK(part) & U_GC_M_MASK))
      return "?";
  }
  return plain.empty() ? "?" : plain;
}

}  // namespace kbx
