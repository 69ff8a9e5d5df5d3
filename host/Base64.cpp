#include "host/Base64.h"

#include <cstdint>

namespace kbx {
namespace {

/// Writes one to three bytes as four characters.
void writeGroup(Output& output, std::string_view bytes) {
  constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::uint32_t group = 0;
  for (std::size_t i = 0; i < 3; ++i)
    group = group << 8 | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0);
  char text[4];
  for (std::size_t i = 0; i < 4; ++i)
    text[i] = i <= bytes.size() ? kAlphabet[group >> (18 - 6 * i) & 0x3F] : '=';
  output.write({text, sizeof text});
}

}  // namespace

void writeBase64(Output& output, std::string_view bytes) {
  for (std::size_t i = 0; i < bytes.size(); i += 3) writeGroup(output, bytes.substr(i, 3));
}

}  // namespace kbx
