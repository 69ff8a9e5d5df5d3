// Catalogs of translated messages, as bytes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kbx {

/// The bytes of an ".mo" file with pairs of a message and its translation.
inline std::string messageCatalog(
    const std::vector<std::pair<std::string_view, std::string_view>>& messages,
    bool isBigEndian = false) {
  const auto count = static_cast<std::uint32_t>(messages.size());
  std::string head, texts;
  auto number = [&](std::uint32_t value) {
    for (int i = 0; i < 4; ++i)
      head += static_cast<char>(value >> 8 * (isBigEndian ? 3 - i : i) & 0xFF);
  };
  auto entry = [&](std::string_view text) {
    number(static_cast<std::uint32_t>(text.size()));
    number(28 + 16 * count + static_cast<std::uint32_t>(texts.size()));
    texts.append(text).push_back('\0');
  };
  for (std::uint32_t value : {0x950412DEu, 0u, count, 28u, 28 + 8 * count, 0u, 0u}) number(value);
  for (const auto& message : messages) entry(message.first);
  for (const auto& message : messages) entry(message.second);
  return head + texts;
}

}  // namespace kbx
