#include "platform/text/UTF8.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace kbx {
namespace {

constexpr char16_t kReplacement = 0xFFFD;
constexpr std::size_t kBlock = 64;

/// Whether the block's bytes are all ASCII. A loop without an exit, which compilers vectorise.
bool isASCIIBlock(const char* bytes) noexcept {
  unsigned char high = 0;
  for (std::size_t i = 0; i < kBlock; ++i) high |= static_cast<unsigned char>(bytes[i]);
  return high < 0x80;
}

bool isASCIIWord(const char* bytes) noexcept {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return (word & 0x8080808080808080u) == 0;
}

char16_t* copyASCII(const char* bytes, std::size_t count, char16_t* to) noexcept {
  for (std::size_t i = 0; i < count; ++i) to[i] = static_cast<unsigned char>(bytes[i]);
  return to + count;
}

/// Converts into `to`, which has room for one unit a byte. `isLossy` says what a malformed sequence
/// is: a replacement character or the end. Answers the end of the units, or nullptr.
char16_t* convert(std::string_view bytes, char16_t* to, bool isLossy) noexcept {
  const auto* source = reinterpret_cast<const std::uint8_t*>(bytes.data());
  std::size_t i = 0;
  while (i < bytes.size()) {
    while (i + 8 <= bytes.size() && isASCIIWord(bytes.data() + i))
      to = copyASCII(bytes.data() + i, 8, to), i += 8;
    // A run of other characters is seldom a single one: stay here while it lasts.
    for (const std::size_t stop = std::min(i + 24, bytes.size()); i < stop;) {
      UChar32 c = source[i];
      if (c < 0x80) {
        *to++ = static_cast<char16_t>(c), ++i;
        continue;
      }
      U8_NEXT(source, i, bytes.size(), c);
      if (c < 0) {
        if (!isLossy) return nullptr;
        c = kReplacement;
      }
      if (c > 0xFFFF) *to++ = static_cast<char16_t>(U16_LEAD(c));
      *to++ = static_cast<char16_t>(c > 0xFFFF ? U16_TRAIL(c) : c);
    }
  }
  return to;
}

/// Appends the UTF-8 of the units. False at a lone surrogate, unless it may be replaced.
bool append(std::string& bytes, std::u16string_view units, bool isLossy) {
  for (std::size_t i = 0; i < units.size();) {
    UChar32 c = units[i++];
    if (U16_IS_SURROGATE(c)) {
      if (U16_IS_SURROGATE_LEAD(c) && i < units.size() && U16_IS_TRAIL(units[i]))
        c = U16_GET_SUPPLEMENTARY(c, units[i++]);
      else if (isLossy)
        c = kReplacement;
      else
        return false;
    }
    char encoded[U8_MAX_LENGTH];
    std::size_t size = 0;
    U8_APPEND_UNSAFE(encoded, size, c);
    bytes.append(encoded, size);
  }
  return true;
}

}  // namespace

std::size_t asciiPrefixLength(std::string_view bytes) noexcept {
  std::size_t i = 0;
  while (i + kBlock <= bytes.size() && isASCIIBlock(bytes.data() + i)) i += kBlock;
  while (i + 8 <= bytes.size() && isASCIIWord(bytes.data() + i)) i += 8;
  while (i < bytes.size() && static_cast<unsigned char>(bytes[i]) < 0x80) ++i;
  return i;
}

std::optional<std::u16string> utf16FromUTF8(std::string_view bytes) {
  std::u16string units(bytes.size(), u'\0');
  char16_t* end = convert(bytes, units.data(), false);
  if (!end) return std::nullopt;
  units.resize(static_cast<std::size_t>(end - units.data()));
  return units;
}

std::u16string utf16FromLossyUTF8(std::string_view bytes) {
  std::u16string units(bytes.size(), u'\0');
  units.resize(static_cast<std::size_t>(convert(bytes, units.data(), true) - units.data()));
  return units;
}

std::optional<std::string> utf8FromUTF16(std::u16string_view units) {
  std::string bytes;
  bytes.reserve(units.size() + units.size() / 2);
  if (!append(bytes, units, false)) return std::nullopt;
  return bytes;
}

std::string lossyUTF8FromUTF16(std::u16string_view units) {
  std::string bytes;
  append(bytes, units, true);
  return bytes;
}

}  // namespace kbx
