// NSString: text from the bytes of an encoding and back.
#include <unicode/utf16.h>

#include <algorithm>
#include <bit>
#include <optional>
#include <string>

#include "platform/objects/NSData.h"
#include "platform/objects/NSString.h"
#include "platform/text/CharsetConverter.h"
#include "platform/text/Charsets.h"
#include "platform/text/UTF8.h"
#include "platform/text/UnicodeForms.h"

namespace kbx {
namespace {

using Units = std::optional<std::u16string>;
using Bytes = std::optional<std::string>;

Units decodeLatin1(std::string_view bytes) {
  std::u16string units(bytes.size(), u'\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) units[i] = static_cast<unsigned char>(bytes[i]);
  return units;
}

/// The form without a fixed order: a byte-order mark tells it and is not text; without one the
/// units are in the order of this machine.
template <auto decode>
Units decodeMarked(std::string_view bytes, std::size_t unitSize) {
  const std::optional<std::endian> order = byteOrderMark(bytes, unitSize);
  if (order) bytes.remove_prefix(unitSize);
  return decode(bytes, order.value_or(std::endian::native));
}

Units decode(std::string_view bytes, NSStringEncoding encoding) {
  switch (encoding) {
    case NSASCIIStringEncoding:
      return std::nullopt;  // plain ASCII never comes here
    case NSISOLatin1StringEncoding:
      return decodeLatin1(bytes);
    case NSNonLossyASCIIStringEncoding:
      return decodeNonLossyASCII(bytes);
    case NSUnicodeStringEncoding:
      return decodeMarked<decodeUTF16>(bytes, 2);
    case NSUTF16BigEndianStringEncoding:
      return decodeUTF16(bytes, std::endian::big);
    case NSUTF16LittleEndianStringEncoding:
      return decodeUTF16(bytes, std::endian::little);
    case NSUTF32StringEncoding:
      return decodeMarked<decodeUTF32>(bytes, 4);
    case NSUTF32BigEndianStringEncoding:
      return decodeUTF32(bytes, std::endian::big);
    case NSUTF32LittleEndianStringEncoding:
      return decodeUTF32(bytes, std::endian::little);
    default: {
      const Charset* charset = charsetOf(encoding);
      return charset ? decodeCharset(bytes, charset->name, false) : std::nullopt;
    }
  }
}

/// One byte for each unit up to `last`.
Bytes encodeSingleBytes(std::u16string_view units, char16_t last, bool isLossy) {
  std::string bytes;
  bytes.reserve(units.size());
  for (std::size_t i = 0; i < units.size();) {
    UChar32 c;
    U16_NEXT(units, i, units.size(), c);
    if (c <= last)
      bytes += static_cast<char>(c);
    else if (isLossy)
      bytes += asciiApproximation(static_cast<char32_t>(c));
    else
      return std::nullopt;
  }
  return bytes;
}

Bytes encodeUTF8(std::u16string_view units, bool isLossy) {
  return isLossy ? lossyUTF8FromUTF16(units) : utf8FromUTF16(units);
}

bool hasPrivateUse(std::u16string_view units) {
  // In the basic plane, or as the first half of a pair beyond it.
  return std::ranges::any_of(units, [](char16_t unit) {
    return (unit >= 0xE000 && unit <= 0xF8FF) || (unit >= 0xDB80 && unit <= 0xDBFF);
  });
}

Bytes encodeInCharset(std::u16string_view units, const char* charset, bool isLossy) {
  Bytes bytes = encodeCharset(units, charset, isLossy);
  // ICU gives private-use characters bytes that are read as others, whatever it is told.
  if (bytes && !isLossy && hasPrivateUse(units) && decodeCharset(*bytes, charset, false) != units)
    return std::nullopt;
  return bytes;
}

Bytes encode(std::u16string_view units, NSStringEncoding encoding, bool isLossy) {
  // The forms without a fixed order begin with a mark that tells this machine's.
  switch (encoding) {
    case NSASCIIStringEncoding:
      return encodeSingleBytes(units, 0x7F, isLossy);
    case NSUTF8StringEncoding:
      return encodeUTF8(units, isLossy);
    case NSISOLatin1StringEncoding:
      return encodeSingleBytes(units, 0xFF, isLossy);
    case NSNonLossyASCIIStringEncoding:
      return encodeNonLossyASCII(units);
    case NSUnicodeStringEncoding:
      return encodeUTF16(u"\uFEFF", std::endian::native) + encodeUTF16(units, std::endian::native);
    case NSUTF16BigEndianStringEncoding:
      return encodeUTF16(units, std::endian::big);
    case NSUTF16LittleEndianStringEncoding:
      return encodeUTF16(units, std::endian::little);
    case NSUTF32StringEncoding:
      return encodeUTF32(std::u16string(u"\uFEFF").append(units), std::endian::native, isLossy);
    case NSUTF32BigEndianStringEncoding:
      return encodeUTF32(units, std::endian::big, isLossy);
    case NSUTF32LittleEndianStringEncoding:
      return encodeUTF32(units, std::endian::little, isLossy);
    default: {
      const Charset* charset = charsetOf(encoding);
      return charset ? encodeInCharset(units, charset->name, isLossy) : std::nullopt;
    }
  }
}

bool keepsASCII(NSStringEncoding encoding) {
  const Charset* charset = charsetOf(encoding);
  return charset && charset->keepsASCII;
}

}  // namespace

Ref<NSString> NSString::initWithData(NSData* data, NSStringEncoding encoding) {
  if (!data) return nullptr;
  if (encoding == NSUTF8StringEncoding) return stringWithUTF8(data);
  if (keepsASCII(encoding) && asciiPrefixLength(data->view()) == data->length())
    return stringWithUTF8(data);
  auto units = decode(data->view(), encoding);
  return units ? stringWithUTF16(*units) : nullptr;
}

Ref<NSData> NSString::dataUsingEncoding(NSStringEncoding encoding,
                                        bool allowLossyConversion) const {
  const bool isKept = keptUTF8() && encoding == NSUTF8StringEncoding;
  if (isKept || (isASCII() && keepsASCII(encoding))) return UTF8Data();
  const auto bytes = visitUnits([=](auto units) {
    if constexpr (sizeof(units[0]) == 1)
      return encode(std::u16string(units.begin(), units.end()), encoding, allowLossyConversion);
    else
      return encode({units.data(), units.size()}, encoding, allowLossyConversion);
  });
  return bytes ? NSData::dataWithBytes(*bytes) : nullptr;
}

}  // namespace kbx
