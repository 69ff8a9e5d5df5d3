#include "platform/text/Charsets.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace kbx {
namespace {

constexpr std::uint64_t external(std::uint64_t number) { return kExternalEncoding | number; }

// The names are those that the conversion library opens. Mail and the web come first, because the
// first entry of several with one converter is the one found by name.
constexpr Charset kCharsets[] = {
    {"US-ASCII", NSASCIIStringEncoding, true},
    {"UTF-8", NSUTF8StringEncoding, true},
    {"ISO-8859-1", NSISOLatin1StringEncoding, true},
    {"ISO-8859-2", NSISOLatin2StringEncoding, true},
    {"UTF-16", NSUnicodeStringEncoding, false},
    {"windows-1250", NSWindowsCP1250StringEncoding, true},
    {"windows-1251", NSWindowsCP1251StringEncoding, true},
    {"windows-1252", NSWindowsCP1252StringEncoding, true},
    {"windows-1253", NSWindowsCP1253StringEncoding, true},
    {"windows-1254", NSWindowsCP1254StringEncoding, true},
    {"macintosh", NSMacOSRomanStringEncoding, true},
    {"Shift_JIS", NSShiftJISStringEncoding, false},
    {"EUC-JP", NSJapaneseEUCStringEncoding, true},
    {"ISO-2022-JP", NSISO2022JPStringEncoding, false},
    {"UTF-16BE", NSUTF16BigEndianStringEncoding, false},
    {"UTF-16LE", NSUTF16LittleEndianStringEncoding, false},
    {"UTF-32", NSUTF32StringEncoding, false},
    {"UTF-32BE", NSUTF32BigEndianStringEncoding, false},
    {"UTF-32LE", NSUTF32LittleEndianStringEncoding, false},
    {"UTF-7", external(0x04000100), false},
    {"x-mac-greek", external(0x06), true},
    {"x-mac-cyrillic", external(0x07), true},
    {"x-mac-centraleurroman", external(0x1D), true},
    {"x-mac-turkish", external(0x23), true},
    {"ISO-8859-3", external(0x0203), true},
    {"ISO-8859-4", external(0x0204), true},
    {"ISO-8859-5", external(0x0205), true},
    {"ISO-8859-6", external(0x0206), true},
    {"ISO-8859-7", external(0x0207), true},
    {"ISO-8859-8", external(0x0208), true},
    {"ISO-8859-9", external(0x0209), true},
    {"ISO-8859-10", external(0x020A), true},
    {"ISO-8859-11", external(0x020B), true},
    {"ISO-8859-13", external(0x020D), true},
    {"ISO-8859-14", external(0x020E), true},
    {"ISO-8859-15", external(0x020F), true},
    {"IBM437", external(0x0400), false},
    {"IBM737", external(0x0405), false},
    {"IBM775", external(0x0406), false},
    {"IBM850", external(0x0410), false},
    {"IBM851", external(0x0411), false},
    {"IBM852", external(0x0412), false},
    {"IBM855", external(0x0413), false},
    {"IBM857", external(0x0414), false},
    {"IBM860", external(0x0415), false},
    {"IBM861", external(0x0416), false},
    {"IBM862", external(0x0417), false},
    {"IBM863", external(0x0418), false},
    {"IBM864", external(0x0419), false},
    {"IBM865", external(0x041A), false},
    {"IBM866", external(0x041B), false},
    {"IBM869", external(0x041C), false},
    {"windows-874", external(0x041D), true},
    {"windows-949", external(0x0422), true},
    {"windows-1255", external(0x0505), true},
    {"windows-1256", external(0x0506), true},
    {"windows-1257", external(0x0507), true},
    {"windows-1258", external(0x0508), true},
    {"GBK", external(0x0631), true},
    {"GB18030", external(0x0632), true},
    {"ISO-2022-JP-2", external(0x0821), false},
    {"ISO-2022-JP-1", external(0x0822), false},
    {"ISO-2022-CN", external(0x0830), false},
    {"ISO-2022-CN-EXT", external(0x0831), false},
    {"ISO-2022-KR", external(0x0840), false},
    {"GB2312", external(0x0930), true},
    {"EUC-TW", external(0x0931), true},
    {"EUC-KR", external(0x0940), true},
    {"KOI8-R", external(0x0A02), true},
    {"Big5", external(0x0A03), true},
    {"HZ-GB-2312", external(0x0A05), false},
    {"Big5-HKSCS", external(0x0A06), true},
    {"KOI8-U", external(0x0A08), true},
    {"IBM037", external(0x0C02), false},
};

// The name of the converter behind a charset's name; nullptr when there is none.
const char* converterName(const char* charset) {
  UErrorCode status = U_ZERO_ERROR;
  const char* name = ucnv_getAlias(charset, 0, &status);
  return U_SUCCESS(status) ? name : nullptr;
}

bool isPlainName(std::string_view name) {
  return std::ranges::all_of(name, [](char c) { return c > ' ' && c < 0x7F; });
}

}  // namespace

std::span<const Charset> charsets() { return kCharsets; }

const Charset* charsetOf(NSStringEncoding encoding) {
  auto found = std::ranges::find(kCharsets, std::uint64_t{encoding}, &Charset::encoding);
  return found == std::end(kCharsets) ? nullptr : found;
}

NSStringEncoding encodingOfCharset(std::string_view charset) {
  if (!isPlainName(charset)) return NSUnknownStringEncoding;
  const std::string name(charset);
  for (const Charset& known : kCharsets)
    if (ucnv_compareNames(known.name, name.c_str()) == 0)
      return static_cast<NSStringEncoding>(known.encoding);
  const char* wanted = converterName(name.c_str());
  if (!wanted) return NSUnknownStringEncoding;
  for (const Charset& known : kCharsets)
    if (const char* converter = converterName(known.name);
        converter && std::strcmp(converter, wanted) == 0)
      return static_cast<NSStringEncoding>(known.encoding);
  return NSUnknownStringEncoding;
}

}  // namespace kbx
