#include "mail/TextDecoder.h"

#include <algorithm>
#include <array>
#include <optional>

#include "mail/ASCII.h"
#include "platform/objects/NSData.h"
#include "platform/text/CharsetConverter.h"
#include "platform/text/TextDetection.h"
#include "platform/text/UTF8.h"

namespace kbx {
namespace {

/// A charset whose name means a larger one where people use it.
struct Customary {
  std::string_view name;
  const char* charset;
};
constexpr Customary kCustomary[] = {
    {"gb2312", "gb18030"},
    {"gbk", "gb18030"},
    {"euc-kr", "windows-949"},
    {"ks_c_5601-1987", "windows-949"},
    {"shift_jis", "windows-31j"},
    {"shift-jis", "windows-31j"},
    {"sjis", "windows-31j"},
    {"x-sjis", "windows-31j"},
    {"iso-8859-8-i", "iso-8859-8"},
    {"iso-8859-8-e", "iso-8859-8"},
    {"iso-8859-6-i", "iso-8859-6"},
    {"latin1", "iso-8859-1"},
    {"latin-1", "iso-8859-1"},
    {"l1", "iso-8859-1"},
    {"iso_8859-1", "iso-8859-1"},
    {"iso_8859-1:1987", "iso-8859-1"},
    {"iso8859-1", "iso-8859-1"},
    {"iso88591", "iso-8859-1"},
    {"cp819", "iso-8859-1"},
    {"iso_8859-9", "iso-8859-9"},
    {"iso8859-9", "iso-8859-9"},
    {"latin5", "iso-8859-9"},
    {"x-mac-roman", "macintosh"},
    {"unicode-1-1-utf-7", "utf-7"},
    {"cp-850", "cp850"},
    {"x-gbk", "gb18030"},
    {"iso-2022-jp", "iso-2022-jp-2"},
    {"big5", "big5-hkscs"},
};

/// A name as people write it: in the other kind of quotes, or with something behind it.
std::string_view bareName(std::string_view charset) {
  charset = trimmed(charset);
  if (charset.starts_with('\'')) charset.remove_prefix(1);
  return charset.substr(0, charset.find_first_of(" \t'\";,"));
}

/// The name for the conversion library; empty for what is no name at all. The library takes options
/// and paths in names, which are none of a message's business.
std::string libraryName(std::string_view charset) {
  constexpr std::size_t kLongest = 40;
  charset = bareName(charset);
  if (charset.empty() || charset.size() > kLongest) return {};
  for (char c : charset)
    if (!isASCIIAlphanumeric(c) && std::string_view("-_.:+()").find(c) == std::string_view::npos)
      return {};
  std::string name = lowercase(charset);
  const auto* known = std::ranges::find(kCustomary, std::string_view(name), &Customary::name);
  return known == std::end(kCustomary) ? name : known->charset;
}

bool isPlainUTF8(std::string_view name) {
  return name.empty() || name == "utf-8" || name == "utf8" || name == "us-ascii" || name == "ascii";
}

/// Whether there are bytes that ISO 8859 keeps for control characters. Who writes them means the
/// quotation marks and dashes that the charsets of Windows have there.
bool hasHighControls(std::string_view bytes) {
  return std::ranges::any_of(bytes, [](char c) {
    return static_cast<unsigned char>(c) >= 0x80 && static_cast<unsigned char>(c) < 0xA0;
  });
}

std::optional<std::string> converted(std::string_view bytes, const char* charset, bool isLossy) {
  const auto units = decodeCharset(bytes, charset, isLossy);
  if (!units) return std::nullopt;
  const std::u16string_view text = *units;
  return lossyUTF8FromUTF16(text.starts_with(u'\uFEFF') ? text.substr(1) : text);
}

/// The text where all bytes are valid in a charset, or in the larger one that its name means.
std::optional<std::string> strictText(std::string_view bytes, const std::string& name) {
  const char* const larger = name == "iso-8859-1"   ? "windows-1252"
                             : name == "iso-8859-9" ? "windows-1254"
                                                    : nullptr;
  const bool isMeant = larger && hasHighControls(bytes) && !isUTF8(bytes);
  return converted(bytes, isMeant ? larger : name.c_str(), false);
}

/// The text where at most one character in ten beyond ASCII is malformed.
std::optional<std::string> nearlyAllConverted(std::string_view bytes, const std::string& name) {
  const auto units = decodeCharset(bytes, name.empty() ? "utf-8" : name.c_str(), true);
  if (!units) return std::nullopt;
  const auto beyond = std::ranges::count_if(*units, [](char16_t unit) { return unit >= 0x80; });
  const auto malformed = std::ranges::count(*units, u'\uFFFD');
  if (malformed * 10 > beyond) return std::nullopt;
  return lossyUTF8FromUTF16(*units);
}

/// Readers show nothing for a NUL, and consumers in C would end there.
std::string withoutNULs(std::string text) {
  if (text.find('\0') != std::string::npos) std::erase(text, '\0');
  return text;
}

bool startsWithUTF16Mark(std::string_view bytes) {
  return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
}

}  // namespace

std::string TextDecoder::guessedText(const std::string& bytes) {
  if (_guessesLeft > 0) {
    --_guessesLeft;
    if (auto text = stringByDetectingEncoding(NSData::dataWithBytes(bytes), nullptr))
      return text->lossyUTF8();
  }
  return converted(bytes, "windows-1252", true).value_or(std::string());
}

void TextDecoder::expect(std::string_view charset) {
  _expected = libraryName(charset);
  if (isPlainUTF8(_expected)) _expected.clear();
}

std::string TextDecoder::text(std::string bytes, std::string_view charset) {
  std::string name = libraryName(charset);
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.erase(0, 3);
  if (isPlainUTF8(name) && isUTF8(bytes)) return withoutNULs(std::move(bytes));
  if (charset.empty()) name = _expected;
  if (!isPlainUTF8(name)) {
    if (auto text = strictText(bytes, name)) return withoutNULs(std::move(*text));
    if (isUTF8(bytes)) return withoutNULs(std::move(bytes));
  }
  if (!startsWithUTF16Mark(bytes))
    if (auto text = nearlyAllConverted(bytes, name)) return withoutNULs(std::move(*text));
  return withoutNULs(guessedText(bytes));
}

}  // namespace kbx
