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

/// Writes the four letters of three bytes; answers where the next ones go.
char* writeGroup(char* letters, const char (&bytes)[3]) {
  const auto byte = [&](int i) { return std::uint32_t{static_cast<std::uint8_t>(bytes[i])}; };
  const std::uint32_t group = byte(0) << 16 | byte(1) << 8 | byte(2);
  letters[0] = kAlphabet[group >> 18];
  letters[1] = kAlphabet[group >> 12 & 63];
  letters[2] = kAlphabet[group >> 6 & 63];
  letters[3] = kAlphabet[group & 63];
  return letters + 4;
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
  /// Takes as many groups of four digits as stand at the front.
  void takeGroups(std::string_view& text);
  bool isComplete() const { return (_digits + _padding) % 4 == 0; }
  std::string& bytes() { return _bytes; }

 private:
  std::uint32_t _bits = 0;
  std::size_t _digits = 0;
  std::size_t _padding = 0;
  std::string _bytes;
};

void Decoder::takeGroups(std::string_view& text) {
  if (_digits % 4 != 0 || _padding) return;
  std::size_t at = 0;
  for (; at + 4 <= text.size(); at += 4) {
    std::uint32_t group = 0, meanings = 0;
    for (std::size_t i = at; i < at + 4; ++i) {
      const std::uint8_t meaning = kMeanings[static_cast<std::uint8_t>(text[i])];
      group = group << 6 | meaning;
      meanings |= meaning;
    }
    if (meanings >= 64) break;
    const char bytes[] = {static_cast<char>(group >> 16), static_cast<char>(group >> 8),
                          static_cast<char>(group)};
    _bytes.append(bytes, sizeof bytes);
  }
  text.remove_prefix(at);
}

}  // namespace

void writeBase64(char* letters, std::string_view bytes) {
  for (; bytes.size() >= 3; bytes.remove_prefix(3))
    letters = writeGroup(letters, {bytes[0], bytes[1], bytes[2]});
  if (bytes.empty()) return;
  writeGroup(letters, {bytes[0], bytes.size() > 1 ? bytes[1] : '\0', '\0'});
  for (std::size_t i = bytes.size() + 1; i < 4; ++i) letters[i] = '=';
}

std::string base64FromBytes(std::string_view bytes) {
  std::string text(base64Length(bytes.size()), '\0');
  writeBase64(text.data(), bytes);
  return text;
}

std::optional<std::string> bytesFromBase64(std::string_view text) {
  Decoder decoder;
  decoder.bytes().reserve(text.size() / 4 * 3);
  for (decoder.takeGroups(text); !text.empty(); decoder.takeGroups(text)) {
    if (!decoder.take(kMeanings[static_cast<std::uint8_t>(text.front())])) return std::nullopt;
    text.remove_prefix(1);
  }
  if (!decoder.isComplete()) return std::nullopt;
  return std::move(decoder.bytes());
}

}  // namespace kbx
