#include "platform/markup/XMLNames.h"

#include <initializer_list>
#include <utility>

#include "platform/markup/Characters.h"
#include "platform/markup/UTF8Decoder.h"

namespace kbx {
namespace {

constexpr bool isWithin(char32_t c, std::initializer_list<std::pair<char32_t, char32_t>> ranges) {
  for (const auto& [first, last] : ranges)
    if (c >= first && c <= last) return true;
  return false;
}

bool isNameStart(char32_t c) {
  return isWithin(c, {{0xC0, 0xD6},
                      {0xD8, 0xF6},
                      {0xF8, 0x2FF},
                      {0x370, 0x37D},
                      {0x37F, 0x1FFF},
                      {0x200C, 0x200D},
                      {0x2070, 0x218F},
                      {0x2C00, 0x2FEF},
                      {0x3001, 0xD7FF},
                      {0xF900, 0xFDCF},
                      {0xFDF0, 0xFFFD},
                      {0x10000, 0xEFFFF}});
}

bool isNameCharacter(char32_t c) {
  return isNameStart(c) || c == 0xB7 || isWithin(c, {{0x300, 0x36F}, {0x203F, 0x2040}});
}

constexpr bool isASCIINameStart(char c) { return isASCIILetter(c) || c == '_' || c == ':'; }
constexpr bool isASCIINameCharacter(char c) {
  return isASCIINameStart(c) || isASCIIDigit(c) || c == '-' || c == '.';
}

}  // namespace

const char* endOfXMLName(const char* p, const char* end) {
  for (const char* const start = p; p != end;) {
    if (static_cast<std::uint8_t>(*p) < 0x80) {
      if (p == start ? !isASCIINameStart(*p) : !isASCIINameCharacter(*p)) return p;
      ++p;
      continue;
    }
    const DecodedCharacter next = decodeUTF8(p, end);
    if (p == start ? !isNameStart(next.value) : !isNameCharacter(next.value)) return p;
    p += next.length;
  }
  return p;
}

bool isQualifiedXMLName(std::string_view name) {
  const std::size_t colon = name.find(':');
  if (colon == name.npos) return true;
  const auto local = name.substr(colon + 1);
  return colon > 0 && !local.empty() && local.find(':') == local.npos &&
         endOfXMLName(local.data(), local.data() + local.size()) != local.data();
}

XMLName splitXMLName(std::string_view qualified) {
  const std::size_t colon = qualified.find(':');
  return {qualified, {}, colon == qualified.npos ? 0 : static_cast<std::uint32_t>(colon)};
}

std::string_view referenceName(std::string_view text) {
  const char* const start = text.data() + 1;
  const char* const end = text.data() + text.size();
  const char* const stop = endOfXMLName(start, end);
  if (stop == end || *stop != ';') return {};
  return {start, static_cast<std::size_t>(stop - start)};
}

std::string_view predefinedCharacter(std::string_view name) {
  if (name == "amp") return "&";
  if (name == "lt") return "<";
  if (name == "gt") return ">";
  if (name == "quot") return "\"";
  if (name == "apos") return "'";
  return {};
}

}  // namespace kbx
