#include "platform/system/UUID.h"

namespace kbx {

RandomSource::~RandomSource() = default;

bool fillWithRandomBytes(std::span<std::uint8_t> bytes) {
  return RandomSource::current().fill(bytes);
}

UUIDBytes randomUUID() {
  UUIDBytes bytes{};
  if (!fillWithRandomBytes(bytes)) return {};
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);  // version 4: random
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);  // the standard's variant
  return bytes;
}

std::string uuidString(const UUIDBytes& bytes) {
  constexpr char digits[] = "0123456789ABCDEF";
  std::string text;
  text.reserve(36);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += digits[bytes[i] >> 4];
    text += digits[bytes[i] & 15];
  }
  return text;
}

}  // namespace kbx
