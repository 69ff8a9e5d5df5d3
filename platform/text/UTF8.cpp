#include "platform/text/UTF8.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace kbx {
namespace {

using Byte = std::uint8_t;

constexpr char16_t kReplacement = 0xFFFD;

// Characters go by eight and by thirty-two, in the compiler's vectors: both compilers make one or
// two instructions of such a copy at every level of optimisation, and of a loop only at some.
constexpr std::size_t kStep = 8;
constexpr std::size_t kBlock = 32;
using Bytes8 = Byte __attribute__((vector_size(8)));
using Bytes16 = Byte __attribute__((vector_size(16)));
using SignedBytes16 = std::int8_t __attribute__((vector_size(16)));
using Units8 = std::uint16_t __attribute__((vector_size(16)));
using Units16 = std::uint16_t __attribute__((vector_size(32)));
using Words2 = std::uint64_t __attribute__((vector_size(16)));

template <class From, class To>
void copyVector(const void* from, void* to) noexcept {
  From characters;
  std::memcpy(&characters, from, sizeof characters);
  const auto converted = __builtin_convertvector(characters, To);
  std::memcpy(to, &converted, sizeof converted);
}

void copyStep(const Byte* from, char16_t* to) noexcept { copyVector<Bytes8, Units8>(from, to); }
void copyStep(const char16_t* from, char* to) noexcept { copyVector<Units8, Bytes8>(from, to); }

void copyBlock(const Byte* from, char16_t* to) noexcept {
  for (std::size_t i = 0; i < kBlock; i += 16) copyVector<Bytes16, Units16>(from + i, to + i);
}
void copyBlock(const char16_t* from, char* to) noexcept {
  for (std::size_t i = 0; i < kBlock; i += 16) copyVector<Units16, Bytes16>(from + i, to + i);
}

/// The bits of a word of characters that no ASCII character has.
template <class Character>
constexpr std::uint64_t kBeyondASCII = sizeof(Character) == 1 ? 0x8080808080808080
                                                              : 0xFF80FF80FF80FF80;

template <class Character>
std::uint64_t wordAt(const Character* from) noexcept {
  std::uint64_t word;
  std::memcpy(&word, from, sizeof word);
  return word;
}

/// How many characters at the start of a word have none of these bits; all when it is zero.
template <class Character>
std::size_t charactersBefore(std::uint64_t bits) noexcept {
  const int zeros =
      std::endian::native == std::endian::little ? std::countr_zero(bits) : std::countl_zero(bits);
  return static_cast<std::size_t>(zeros) / (8 * sizeof(Character));
}

/// How many of the next eight characters are ASCII before the first that is not.
std::size_t asciiInStep(const Byte* from) noexcept {
  return charactersBefore<Byte>(wordAt(from) & kBeyondASCII<Byte>);
}
std::size_t asciiInStep(const char16_t* from) noexcept {
  const std::uint64_t first = wordAt(from) & kBeyondASCII<char16_t>;
  if (first) return charactersBefore<char16_t>(first);
  return 4 + charactersBefore<char16_t>(wordAt(from + 4) & kBeyondASCII<char16_t>);
}

template <class Character>
bool isASCIIBlock(const Character* from) noexcept {
  Words2 words[kBlock * sizeof(Character) / sizeof(Words2)], bits{};
  std::memcpy(words, from, sizeof words);
  for (const Words2& word : words) bits |= word;
  return ((bits[0] | bits[1]) & kBeyondASCII<Character>) == 0;
}

template <class Character>
std::size_t asciiLength(const Character* from, std::size_t length) noexcept {
  std::size_t i = 0;
  while (i + kBlock <= length && isASCIIBlock(from + i)) i += kBlock;
  while (i + kStep <= length) {
    const std::size_t count = asciiInStep(from + i);
    i += count;
    if (count < kStep) return i;
  }
  while (i < length && from[i] < 0x80) ++i;
  return i;
}

/// Reads characters of one encoding form and writes those of the other.
template <class From, class To>
struct Converter {
  const From* from;
  const From* end;
  To* to;
  To* limit;  // behind the room there is

  std::size_t left() const noexcept { return static_cast<std::size_t>(end - from); }
  std::size_t room() const noexcept { return static_cast<std::size_t>(limit - to); }

  /// Eight characters, of which those that are ASCII count. The others are written too, and written
  /// over by what comes next: that costs less than to look first.
  [[gnu::always_inline]] bool copyASCIIStep() noexcept {
    if (left() < kStep || room() < kStep) return false;
    copyStep(from, to);
    const std::size_t count = asciiInStep(from);
    from += count, to += count;
    return count == kStep;
  }

  [[gnu::always_inline]] void copyASCII() noexcept {
    // Blocks only behind two whole steps: most runs in a text that is not English are short.
    while (copyASCIIStep() && copyASCIIStep())
      for (; left() >= kBlock && isASCIIBlock(from); from += kBlock, to += kBlock)
        copyBlock(from, to);
    while (from < end && *from < 0x80) *to++ = static_cast<To>(*from++);
  }
};

/// From UTF-8. The room is what unitCount() says, or a unit for each byte.
struct Decoder : Converter<Byte, char16_t> {
  /// Converts up to the end, or up to a malformed sequence. True at the end.
  bool run() noexcept {
    Decoder inRegisters = *this;  // where bytes, which may alias anything, do not
    const bool isDone = inRegisters.runAll();
    *this = inRegisters;
    return isDone;
  }

  /// Puts the replacement in the place of the malformed sequence: of the bytes that might have
  /// begun a character, or of one byte.
  void replace() noexcept {
    const Byte lead = *from++;
    *to++ = kReplacement;
    if (lead < 0xC2 || lead > 0xF4 || from == end || !isSecond(lead, *from)) return;
    const std::size_t longest = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    const Byte* const stop = from + std::min(longest, left());
    while (from < stop && isTrail(*from)) ++from;
  }

 private:
  static bool isTrail(Byte byte) noexcept { return (byte & 0xC0) == 0x80; }

  /// Whether a byte may follow the lead: overlong forms, surrogates and values beyond the last
  /// character are known by it.
  static bool isSecond(Byte lead, Byte byte) noexcept {
    const Byte least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const Byte most = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    return byte >= least && byte <= most;
  }

  [[gnu::always_inline]] bool runAll() noexcept {
    while (from < end) {
      bool isValid = true;
      if (*from < 0x80)
        copyASCII();
      else if (*from < 0xE0)
        isValid = readTwos();
      else if (*from < 0xF0)
        isValid = readThrees();
      else
        isValid = readFour();
      if (!isValid) return false;
    }
    return true;
  }

  /// Four sequences of two bytes at once, of which those up to the first that is none count: no
  /// branch depends on where words end. False where there are fewer, or no room to look.
  [[gnu::always_inline]] bool readFourTwos() noexcept {
    if (std::endian::native != std::endian::little || left() < kStep || room() < 4) return false;
    const std::uint64_t word = wordAt(from);
    constexpr std::uint64_t kEach = 0x0001000100010001;  // the lead is the lower byte of its lane
    const std::uint64_t isOther = (word & 0xC0E0 * kEach) ^ 0x80C0 * kEach;
    const std::uint64_t isOverlong = (0x20 * kEach - (word & 0x1E * kEach)) & 0x20 * kEach;
    const std::uint64_t units = (word & 0x1F * kEach) << 6 | (word >> 8 & 0x3F * kEach);
    const std::size_t count = charactersBefore<char16_t>(isOther | isOverlong);
    std::memcpy(to, &units, sizeof units);
    from += 2 * count, to += count;
    return count == 4;
  }

  /// Sequences of two bytes, while they last.
  [[gnu::always_inline]] bool readTwos() noexcept {
    do {
      if (*from < 0xC2 || left() < 2 || !isTrail(from[1])) return false;
      *to++ = static_cast<char16_t>((*from & 0x1Fu) << 6 | (from[1] & 0x3Fu));
      from += 2;
      if (from == end || (*from & 0xE0) != 0xC0) return true;  // alone, as in most Latin texts
      while (readFourTwos()) {
      }
    } while (from < end && (*from & 0xE0) == 0xC0);
    return true;
  }

  static constexpr unsigned kBadRows = 1u << 0 | 1u << 27;  // below U+0800; surrogates

  /// The unit of the three bytes that are the lowest of a word, the lead first.
  static std::uint32_t unitOfThree(std::uint64_t word) noexcept {
    return static_cast<std::uint32_t>((word & 0xF) << 12 | (word >> 2 & 0xFC0) |
                                      (word >> 16 & 0x3F));
  }

  /// Two sequences of three bytes by one look, while they last.
  [[gnu::always_inline]] void readTwoThrees() noexcept {
    while (std::endian::native == std::endian::little && left() >= sizeof(std::uint64_t)) {
      const std::uint64_t word = wordAt(from);
      if ((word & 0xC0C0F0C0C0F0) != 0x8080E08080E0) return;
      const std::uint32_t first = unitOfThree(word), second = unitOfThree(word >> 24);
      if ((kBadRows >> (first >> 11) | kBadRows >> (second >> 11)) & 1) return;
      const std::uint32_t both = first | second << 16;
      std::memcpy(to, &both, sizeof both);
      from += 6, to += 2;
    }
  }

  /// Sequences of three bytes, while they last.
  [[gnu::always_inline]] bool readThrees() noexcept {
    readTwoThrees();
    while (from < end && (*from & 0xF0) == 0xE0) {
      if (left() < 3) return false;
      const unsigned second = from[1] ^ 0x80u, third = from[2] ^ 0x80u;
      const unsigned character = (*from & 0x0Fu) << 12 | second << 6 | third;
      if ((second | third) >> 6 | (kBadRows >> (character >> 11) & 1)) return false;
      *to++ = static_cast<char16_t>(character);
      from += 3;
    }
    return true;
  }

  [[gnu::always_inline]] bool readFour() noexcept {
    const Byte lead = *from;
    if (lead > 0xF4 || left() < 4 || !isSecond(lead, from[1]) || !isTrail(from[2]) ||
        !isTrail(from[3]))
      return false;
    const unsigned character =
        (lead & 7u) << 18 | (from[1] & 0x3Fu) << 12 | (from[2] & 0x3Fu) << 6 | (from[3] & 0x3Fu);
    *to++ = static_cast<char16_t>(0xD7C0 + (character >> 10));
    *to++ = static_cast<char16_t>(0xDC00 | (character & 0x3FF));
    from += 4;
    return true;
  }
};

/// To UTF-8. The room is what byteRoom() says.
struct Encoder : Converter<char16_t, char> {
  /// Converts up to the end, or up to a lone surrogate. True at the end.
  bool run() noexcept {
    Encoder inRegisters = *this;
    const bool isDone = inRegisters.runAll();
    *this = inRegisters;
    return isDone;
  }

  /// Puts the replacement in the place of the lone surrogate.
  void replace() noexcept {
    ++from;
    putThree(kReplacement);
  }

 private:
  static bool isSurrogate(char16_t unit) noexcept { return (unit & 0xF800) == 0xD800; }

  [[gnu::always_inline]] bool runAll() noexcept {
    while (from < end) {
      if (*from >= 0x800 && !isSurrogate(*from)) {
        putThree(*from++);
      } else if (*from >= 0x800) {
        if (!putPair()) return false;
      } else if (left() >= kStep && ((wordAt(from) | wordAt(from + 4)) & 0xF800F800F800F800) == 0) {
        putStep();
      } else if (*from < 0x80) {
        copyASCII();
      } else {
        putTwo(*from++);
      }
    }
    return true;
  }

  static unsigned two(unsigned unit) noexcept { return 0x80C0 | unit >> 6 | (unit & 0x3F) << 8; }

  /// Two bytes, the lower one first. Compilers make one store of them.
  void put(unsigned bytes) noexcept {
    to[0] = static_cast<char>(bytes);
    to[1] = static_cast<char>(bytes >> 8);
  }

  /// Eight units of one or two bytes, without a branch for each: words of all lengths defeat the
  /// prediction of branches.
  [[gnu::always_inline]] void putStep() noexcept {
    if (asciiInStep(from) == kStep) return copyASCII();
    for (std::size_t i = 0; i < kStep; ++i) {
      const unsigned unit = *from++;
      const unsigned isTwo = (0x7F - unit) >> 31;
      put(unit ^ ((unit ^ two(unit)) & (0 - isTwo)));
      to += 1 + isTwo;
    }
  }

  [[gnu::always_inline]] void putTwo(unsigned unit) noexcept {
    put(two(unit));
    to += 2;
  }
  [[gnu::always_inline]] void putThree(unsigned unit) noexcept {
    *to++ = static_cast<char>(0xE0 | unit >> 12);
    *to++ = static_cast<char>(0x80 | (unit >> 6 & 0x3F));
    *to++ = static_cast<char>(0x80 | (unit & 0x3F));
  }
  [[gnu::always_inline]] bool putPair() noexcept {
    if (*from >= 0xDC00 || left() < 2 || (from[1] & 0xFC00) != 0xDC00) return false;
    const unsigned character = ((from[0] & 0x3FFu) << 10 | (from[1] & 0x3FFu)) + 0x10000;
    *to++ = static_cast<char>(0xF0 | character >> 18);
    *to++ = static_cast<char>(0x80 | (character >> 12 & 0x3F));
    *to++ = static_cast<char>(0x80 | (character >> 6 & 0x3F));
    *to++ = static_cast<char>(0x80 | (character & 0x3F));
    from += 2;
    return true;
  }
};

/// How many units valid UTF-8 has: one a byte, none for a trailing byte, and a second one for a
/// sequence of four. Of other bytes, at least as many as the valid ones up to the first malformed
/// sequence have.
///
/// ascii  how many at the start are known to be ASCII
std::size_t unitCount(std::string_view bytes, std::size_t ascii) noexcept {
  constexpr std::size_t kRun = 64 * sizeof(Bytes16);  // a byte's lane sums up so many
  std::size_t count = ascii, i = ascii;
  while (i + sizeof(Bytes16) <= bytes.size()) {
    Bytes16 lanes{}, next;
    for (const std::size_t stop = std::min(bytes.size(), i + kRun); i + sizeof next <= stop;
         i += sizeof next) {
      std::memcpy(&next, bytes.data() + i, sizeof next);
      // A comparison that holds is -1. Of signed bytes, trailing ones are the least.
      lanes -= reinterpret_cast<Bytes16>(reinterpret_cast<SignedBytes16>(next) > -65);
      lanes -= reinterpret_cast<Bytes16>((next & 0xF0) == 0xF0);
    }
    for (std::size_t lane = 0; lane < sizeof lanes; ++lane) count += lanes[lane];
  }
  for (; i < bytes.size(); ++i)
    count += std::size_t{(bytes[i] & 0xC0) != 0x80} + std::size_t{(bytes[i] & 0xF0) == 0xF0};
  return count;
}

Decoder decoder(std::string_view bytes, std::u16string& units) {
  const auto* from = reinterpret_cast<const Byte*>(bytes.data());
  return {{from, from + bytes.size(), units.data(), units.data() + units.size()}};
}

Encoder encoder(std::u16string_view units, std::string& bytes) {
  return {{units.data(), units.data() + units.size(), bytes.data(), bytes.data() + bytes.size()}};
}

/// Cuts a text behind its last character. Where much room is left it is given back, because a text
/// may live for long. Measured: that costs a twentieth more time; to count first costs more.
template <class Text>
void cutBehind(Text& text, const typename Text::value_type* end) {
  constexpr std::size_t kMuchRoom = 4096 / sizeof(*end);
  text.resize(static_cast<std::size_t>(end - text.data()));
  if (text.capacity() - text.size() >= kMuchRoom) text.shrink_to_fit();
}

/// How many bytes to make room for: three for each unit, which is quicker than to count, or what
/// long text takes at most, because room for all of it thrice might be more than there is.
std::size_t byteRoom(std::u16string_view units) noexcept {
  constexpr std::size_t kLong = 1 << 16;
  constexpr std::size_t kBehindLast = 16;  // an encoder stores words
  if (units.size() < kLong) return 3 * units.size();
  std::size_t count = units.size() + kBehindLast;
  for (const char16_t unit : units) count += std::size_t{unit >= 0x80} + std::size_t{unit >= 0x800};
  return count;
}

}  // namespace

std::size_t asciiPrefixLength(std::string_view bytes) noexcept {
  return asciiLength(reinterpret_cast<const Byte*>(bytes.data()), bytes.size());
}

std::size_t asciiPrefixLength(std::u16string_view units) noexcept {
  return asciiLength(units.data(), units.size());
}

std::optional<std::u16string> utf16FromUTF8(std::string_view bytes) {
  const std::size_t ascii = asciiPrefixLength(bytes);
  if (ascii == bytes.size()) return std::u16string(bytes.begin(), bytes.end());
  std::u16string units(unitCount(bytes, ascii), u'\0');
  if (!decoder(bytes, units).run()) return std::nullopt;
  return units;
}

std::u16string utf16FromLossyUTF8(std::string_view bytes) {
  constexpr std::size_t kLong = 1 << 16;
  // A unit for each byte is quicker than to count, but of long text it is room that may be missing.
  if (bytes.size() >= kLong)
    if (auto units = utf16FromUTF8(bytes)) return *std::move(units);
  std::u16string units(bytes.size(), u'\0');
  Decoder decoding = decoder(bytes, units);
  while (!decoding.run()) decoding.replace();
  cutBehind(units, decoding.to);
  return units;
}

std::optional<std::string> utf8FromUTF16(std::u16string_view units) {
  std::string bytes(byteRoom(units), '\0');
  Encoder encoding = encoder(units, bytes);
  if (!encoding.run()) return std::nullopt;
  cutBehind(bytes, encoding.to);
  return bytes;
}

std::string lossyUTF8FromUTF16(std::u16string_view units) {
  std::string bytes(byteRoom(units), '\0');
  Encoder encoding = encoder(units, bytes);
  while (!encoding.run()) encoding.replace();
  cutBehind(bytes, encoding.to);
  return bytes;
}

}  // namespace kbx
