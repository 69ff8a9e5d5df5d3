#include "platform/text/StringEncoding.h"

#include <unicode/ucnv.h>

#include <memory>
#include <string>

namespace kbx {
namespace {

struct NamedEncoding {
  const char* charset;
  NSStringEncoding encoding;
};

constexpr NamedEncoding kNamedEncodings[] = {
    {"US-ASCII", NSASCIIStringEncoding},
    {"ASCII", NSASCIIStringEncoding},
    {"UTF-8", NSUTF8StringEncoding},
    {"ISO-8859-1", NSISOLatin1StringEncoding},
    {"Shift_JIS", NSShiftJISStringEncoding},
    {"ISO-8859-2", NSISOLatin2StringEncoding},
    {"UTF-16", NSUnicodeStringEncoding},
    {"windows-1250", NSWindowsCP1250StringEncoding},
    {"windows-1251", NSWindowsCP1251StringEncoding},
    {"windows-1252", NSWindowsCP1252StringEncoding},
    {"windows-1253", NSWindowsCP1253StringEncoding},
    {"windows-1254", NSWindowsCP1254StringEncoding},
    {"ISO-2022-JP", NSISO2022JPStringEncoding},
    {"UTF-16BE", NSUTF16BigEndianStringEncoding},
    {"UTF-16LE", NSUTF16LittleEndianStringEncoding},
    {"UTF-32BE", NSUTF32BigEndianStringEncoding},
    {"UTF-32LE", NSUTF32LittleEndianStringEncoding},
};

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

Converter openConverter(const char* charset) {
  UErrorCode status = U_ZERO_ERROR;
  UConverter* converter = ucnv_open(charset, &status);
  return {U_SUCCESS(status) ? converter : nullptr, &ucnv_close};
}

}  // namespace

Ref<NSString> stringWithCharset(std::string_view bytes, const char* charset) {
  Converter converter = openConverter(charset);
  if (!converter) return nullptr;
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
  return U_SUCCESS(status) ? NSString::stringWithUTF16(units) : nullptr;
}

NSStringEncoding encodingOfCharset(std::string_view charset) {
  const std::string name(charset);
  for (const auto& known : kNamedEncodings)
    if (ucnv_compareNames(known.charset, name.c_str()) == 0) return known.encoding;
  return NSUnknownStringEncoding;
}

}  // namespace kbx
