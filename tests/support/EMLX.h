// EMLX: files in the .emlx layout.
#pragma once

#include <string>
#include <string_view>

namespace kbx {

inline constexpr std::string_view kEmptyList = "<plist version=\"1.0\"><dict/></plist>\n";

/// The bytes of an .emlx file.
inline std::string emlx(std::string_view message, std::string_view list = kEmptyList) {
  return std::to_string(message.size()) + "\n" + std::string(message) + std::string(list);
}

}  // namespace kbx
