#include "tests/generators/Encodings.h"

#include <iconv.h>

#include <algorithm>
#include <memory>

#include "platform/text/Base64.h"

namespace kbx {
namespace {

constexpr std::size_t kLineLength = 76;
constexpr char kHexadecimal[] = "0123456789ABCDEF";

void appendEscaped(std::string& text, char mark, char byte) {
  const auto value = static_cast<unsigned char>(byte);
  ((text += mark) += kHexadecimal[value >> 4]) += kHexadecimal[value & 15];
}

bool isPlainInQuotedPrintable(char byte) { return byte >= ' ' && byte <= '~' && byte != '='; }

bool isAlphanumeric(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9');
}

/// The start of `text` of at most so many bytes that ends with a character.
std::string_view firstCharacters(std::string_view text, std::size_t most) {
  if (text.size() <= most) return text;
  while (most > 1 && (static_cast<unsigned char>(text[most]) & 0xC0) == 0x80) --most;
  return text.substr(0, most);
}

std::string encodedWord(std::string_view bytes, std::string_view charset, bool isBase64) {
  std::string word = "=?" + std::string(charset) + (isBase64 ? "?B?" : "?Q?");
  if (isBase64) {
    word += base64FromBytes(bytes);
  } else {
    for (const char byte : bytes) {
      if (isAlphanumeric(byte))
        word += byte;
      else if (byte == ' ')
        word += '_';
      else
        appendEscaped(word, '=', byte);
    }
  }
  return word += "?=";
}

}  // namespace

bool isASCII(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char byte) { return static_cast<unsigned char>(byte) < 128; });
}

std::optional<std::string> inCharset(std::string_view text, std::string_view charset) {
  if (charset == "utf-8") return std::string(text);
  const iconv_t converter = ::iconv_open(std::string(charset).c_str(), "utf-8");
  if (converter == reinterpret_cast<iconv_t>(-1)) return std::nullopt;
  std::string result(text.size() * 2 + 64, '\0');
  char* in = const_cast<char*>(text.data());  // the function's signature is older than const
  char* out = result.data();
  std::size_t inLeft = text.size(), outLeft = result.size();
  bool isWhole = ::iconv(converter, &in, &inLeft, &out, &outLeft) == 0;
  isWhole = isWhole && ::iconv(converter, nullptr, nullptr, &out, &outLeft) == 0;
  ::iconv_close(converter);
  if (!isWhole) return std::nullopt;
  result.resize(result.size() - outLeft);
  return result;
}

std::string base64Lines(std::string_view bytes) {
  constexpr std::size_t kLineBytes = kLineLength / 4 * 3;
  std::string text;
  text.reserve(base64Length(bytes.size()) / kLineLength * (kLineLength + 1) + kLineLength + 2);
  for (std::size_t at = 0; at < bytes.size(); at += kLineBytes) {
    const std::string_view line = bytes.substr(at, kLineBytes);
    const std::size_t end = text.size();
    text.resize(end + base64Length(line.size()));
    writeBase64(text.data() + end, line);
    text += '\n';
  }
  return text;
}

std::string quotedPrintable(std::string_view bytes) {
  std::string text;
  std::size_t column = 0;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    const char byte = bytes[at];
    if (byte == '\n') {
      text += '\n';
      column = 0;
      continue;
    }
    if (column > kLineLength - 4) {
      text += "=\n";
      column = 0;
    }
    const bool endsLine = at + 1 == bytes.size() || bytes[at + 1] == '\n';
    const bool isPlain = isPlainInQuotedPrintable(byte) && !(byte == ' ' && endsLine);
    if (isPlain)
      text += byte;
    else
      appendEscaped(text, '=', byte);
    column += isPlain ? 1 : 3;
  }
  return text;
}

std::string encodedWords(std::string_view text, std::string_view charset, bool isBase64) {
  if (isASCII(text)) return std::string(text);
  constexpr std::size_t kMostBytes = 24;  // in UTF-8, so that any form of them fits a line
  std::string result;
  while (!text.empty()) {
    const std::string_view piece = firstCharacters(text, kMostBytes);
    text.remove_prefix(piece.size());
    const auto bytes = inCharset(piece, charset);
    if (!result.empty()) result += "\n ";
    result +=
        bytes ? encodedWord(*bytes, charset, isBase64) : encodedWord(piece, "utf-8", isBase64);
  }
  return result;
}

std::string parameter(std::string_view name, std::string_view value) {
  if (isASCII(value)) return std::string(name) + "=\"" + std::string(value) + '"';
  std::string text = std::string(name) + "*=utf-8''";
  for (const char byte : value) {
    if (isAlphanumeric(byte) || byte == '.')
      text += byte;
    else
      appendEscaped(text, '%', byte);
  }
  return text;
}

std::string escapedForHTML(std::string_view text) {
  std::string result;
  for (const char byte : text) {
    if (byte == '<')
      result += "&lt;";
    else if (byte == '&')
      result += "&amp;";
    else
      result += byte;
  }
  return result;
}

std::string withReturns(std::string_view text) {
  std::string result;
  result.reserve(text.size() + text.size() / 40);
  for (const char byte : text) {
    if (byte == '\n') result += '\r';
    result += byte;
  }
  return result;
}

}  // namespace kbx
