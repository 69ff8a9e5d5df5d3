// Entities: what stands for the characters that are markup wherever they are.
#pragma once

#include <string_view>

namespace kbx {

/// The reference to `<`, `>` or `&`; empty for every other character.
constexpr std::string_view entityFor(char16_t character) {
  switch (character) {
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '&':
      return "&amp;";
    default:
      return {};
  }
}

}  // namespace kbx
