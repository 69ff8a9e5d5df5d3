#include "platform/html/CharacterReferences.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

#include "platform/markup/Characters.h"

namespace kbx {
namespace {

struct Entry {
  std::string_view name;  // without "&", with its semicolon where it needs one
  std::string_view text;
};

// Read by the compiler alone: what the library holds is the packed form below.
constexpr Entry kEntries[] = {
#include "platform/html/CharacterReferenceTable.inc"
};

constexpr std::size_t kLongestName = 32;
constexpr std::size_t kLongestUnterminated = 6;  // "&middot", which may lack the semicolon
constexpr std::size_t kSlots = 8192;
constexpr std::uint16_t kEmpty = 0xFFFF;

constexpr std::uint32_t slotOf(std::string_view name) {
  std::uint32_t hash = 2166136261;
  for (const char c : name) hash = (hash ^ static_cast<std::uint8_t>(c)) * 16777619;
  return (hash ^ (hash >> 15)) % kSlots;
}

struct PackedEntry {
  std::uint16_t start;
  std::uint8_t nameLength;
  std::uint8_t textLength;
};

constexpr std::size_t packedLength() {
  std::size_t length = 0;
  for (const Entry& entry : kEntries) length += entry.name.size() + entry.text.size();
  return length;
}

/// Names and texts in one string, found by hash: no pointers that loading would have to adjust.
struct Table {
  std::array<char, packedLength()> characters{};
  std::array<PackedEntry, std::size(kEntries)> entries{};
  std::array<std::uint16_t, kSlots> slots{};
};

consteval Table packed() {
  Table table;
  table.slots.fill(kEmpty);
  std::size_t start = 0;
  for (std::size_t i = 0; i < std::size(kEntries); ++i) {
    const auto [name, text] = kEntries[i];
    table.entries[i] = {static_cast<std::uint16_t>(start), static_cast<std::uint8_t>(name.size()),
                        static_cast<std::uint8_t>(text.size())};
    for (const char c : name) table.characters[start++] = c;
    for (const char c : text) table.characters[start++] = c;
    std::size_t slot = slotOf(name);
    while (table.slots[slot] != kEmpty) slot = (slot + 1) % kSlots;
    table.slots[slot] = static_cast<std::uint16_t>(i);
  }
  return table;
}

static_assert(packedLength() < 0xFFFF);
constexpr Table kTable = packed();

/// What a whole name stands for; empty when there is no such name.
std::string_view textOfName(std::string_view name) {
  for (std::size_t slot = slotOf(name); kTable.slots[slot] != kEmpty; slot = (slot + 1) % kSlots) {
    const PackedEntry& entry = kTable.entries[kTable.slots[slot]];
    const char* const start = kTable.characters.data() + entry.start;
    if (entry.nameLength == name.size() && std::memcmp(start, name.data(), name.size()) == 0)
      return {start + entry.nameLength, entry.textLength};
  }
  return {};
}

CharacterReference reference(std::size_t length, std::string_view text) {
  CharacterReference result;
  result.length = length;
  result.byteCount = static_cast<std::uint8_t>(text.size());
  std::copy(text.begin(), text.end(), result.bytes);
  return result;
}

CharacterReference numericReference(std::string_view text) {
  const ReferencedNumber number = referencedNumber(text);
  if (number.length == 0) return {};
  const bool isTerminated = number.length < text.size() && text[number.length] == ';';
  CharacterReference result;
  result.length = number.length + (isTerminated ? 1 : 0);
  const bool isKnown = number.value != 0 && isCharacter(number.value);
  const char32_t character = isKnown ? number.value : 0xFFFD;
  if (character == '\f')
    result.bytes[result.byteCount++] = ' ';
  else if (!isDroppedControl(character))
    result.byteCount = static_cast<std::uint8_t>(encodeUTF8(character, result.bytes));
  return result;
}

/// By the longest name without a semicolon.
CharacterReference unterminatedReference(std::string_view text, std::size_t nameLength,
                                         bool isInAttribute) {
  for (std::size_t length = std::min(nameLength, kLongestUnterminated); length >= 2; --length) {
    const std::string_view found = textOfName(text.substr(1, length));
    if (found.empty()) continue;
    const char next = length + 1 < text.size() ? text[length + 1] : '\0';
    if (isInAttribute && (next == '=' || isASCIIAlphanumeric(next))) return {};
    return reference(length + 1, found);
  }
  return {};
}

}  // namespace

CharacterReference characterReference(std::string_view text, bool isInAttribute) {
  if (text.size() < 3) return {};
  if (text[1] == '#') return numericReference(text);
  std::size_t length = 0;
  while (length < kLongestName && length + 1 < text.size() && isASCIIAlphanumeric(text[length + 1]))
    ++length;
  if (length == 0) return {};
  if (length + 1 < text.size() && text[length + 1] == ';')
    if (const auto found = textOfName(text.substr(1, length + 1)); !found.empty())
      return reference(length + 2, found);
  return unterminatedReference(text, length, isInAttribute);
}

}  // namespace kbx
