#include "platform/text/Base64.h"

#include <array>
#include <cstdint>

namespace kbx {
namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t kForeign = 0xFF;
constexpr std::uint8_t kBlank = 0xFE;
constexpr std::uint8_t kPadding = 0xFD;

constexpr std::array<std::uint8_t, 256> kMeanings = [] {
  std::array<std::uint8_t, 256> meanings{};
  meanings.fill(kForeign);
  for (std::uint8_t i = 0; i < 64; ++i) meanings[static_cast<std::uint8_t>(kAlphabet[i])] = i;
  for (char blank : {' ', '\t', '\n', '\r', '\f', '\v'})
    meanings[static_cast<std::uint8_t>(blank)] = kBlank;
  meanings['='] = kPadding;
  return meanings;
}();

std::uint32_t byteAt(std::string_view bytes, std::size_t index) {
  return index < bytes.size() ? static_cast<std::uint8_t>(bytes[index]) : 0;
}

void appendGroup(std::string& text, std::string_view bytes) {
  const std::uint32_t group = byteAt(bytes, 0) << 16 | byteAt(bytes, 1) << 8 | byteAt(bytes, 2);
  text += kAlphabet[group >> 18];
  text += kAlphabet[group >> 12 & 63];
  text += bytes.size() > 1 ? kAlphabet[group >> 6 & 63] : '=';
  text += bytes.size() > 2 ? kAlphabet[group & 63] : '=';
}

/// Collects six bits a time and hands out whole bytes.
class Decoder {
 public:
  /// False when the character cannot stand here.
  bool take(std::uint8_t meaning) {
    if (meaning == kBlank) return true;
    if (meaning == kPadding) return ++_padding <= 2 && (_digits % 4) + _padding >= 3;
    if (meaning == kForeign || _padding) return false;
    _bits = _bits << 6 | meaning;
    if (++_digits % 4 != 1)
      _bytes += static_cast<char>(_bits >> (6 - 2 * ((_digits - 1) % 4)) & 0xFF);
    return true;
  }
  bool isComplete() const { return (_digits + _padding) % 4 == 0; }
  std::string& bytes() { return _bytes; }

 private:
  std::uint32_t _bits = 0;
  std::size_t _digits = 0;
  std::size_t _padding = 0;
  std::string _bytes;
};

}  // namespace

std::string base64FromBytes(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < bytes.size(); at += 3) appendGroup(text, bytes.substr(at, 3));
  return text;
}

std::optional<std::string> bytesFromBase64(std::string_view text) {
  Decoder decoder;
  decoder.bytes().reserve(text.size() / 4 * 3);
  for (char letter : text)
    if (!decoder.take(kMeanings[static_cast<std::uint8_t>(letter)])) return std::nullopt;
  if (!decoder.isComplete()) return std::nullopt;
  return std::move(decoder.bytes());
}

}  // namespace kbx
