#include "platform/desktop/MessageCatalog.h"

#include <cstdint>
#include <cstring>

namespace kbx {
namespace {

constexpr std::uint32_t kMagic = 0x950412DE;
constexpr std::size_t kHeaderSize = 20;
constexpr std::size_t kEntrySize = 8;  // a length and an offset

/// Numbers and texts of a file; none when they would lie outside.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : _bytes(bytes) {}

  std::optional<std::uint32_t> number(std::uint64_t offset) const {
    if (offset + 4 > _bytes.size()) return std::nullopt;
    std::uint32_t value;
    std::memcpy(&value, _bytes.data() + offset, sizeof value);
    return _isSwapped ? swapped(value) : value;
  }
  /// The text that the entry at the offset tells of.
  std::optional<std::string_view> text(std::uint64_t entry) const {
    const auto length = number(entry), offset = number(entry + 4);
    if (!length || !offset || std::uint64_t{*offset} + *length > _bytes.size()) return std::nullopt;
    return _bytes.substr(*offset, *length);
  }
  bool readMagic() {
    const auto magic = number(0);
    _isSwapped = magic && *magic == swapped(kMagic);
    return magic && (*magic == kMagic || _isSwapped);
  }

 private:
  static std::uint32_t swapped(std::uint32_t value) {
    return (value >> 24) | ((value >> 8) & 0xFF00) | ((value << 8) & 0xFF0000) | (value << 24);
  }

  std::string_view _bytes;
  bool _isSwapped = false;
};

}  // namespace

std::optional<std::string_view> translationInCatalog(std::string_view catalog,
                                                     std::string_view message) {
  Reader reader(catalog);
  if (catalog.size() < kHeaderSize || !reader.readMagic()) return std::nullopt;
  const std::uint64_t count = *reader.number(8), originals = *reader.number(12),
                      translations = *reader.number(16);
  if (count > catalog.size() / kEntrySize) return std::nullopt;
  // The entries are sorted, but a file that says so may lie; there are a few dozen.
  for (std::uint64_t i = 0; i < count; ++i) {
    if (reader.text(originals + i * kEntrySize) != message) continue;
    const auto translation = reader.text(translations + i * kEntrySize);
    return translation && !translation->empty() ? translation : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace kbx
