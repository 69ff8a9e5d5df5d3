#include "host/search/MatchText.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <array>
#include <string_view>

#include "platform/text/UTF8.h"

namespace kbx {
namespace {

constexpr std::array<std::string_view, 10> kColumns{
    "", "subject", "sender", "recipient", "cc", "bcc", "body", "attachment", "file", "list"};

}  // namespace

bool hasWords(const TextTest& test) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(test.words.data());
  for (std::size_t i = 0; i < test.words.size();) {
    UChar32 character = 0;
    U8_NEXT_OR_FFFD(bytes, i, test.words.size(), character);
    if (u_isalnum(character)) return true;
  }
  return false;
}

std::string matchText(const TextTest& test) {
  const std::string words = lossyUTF8FromUTF16(utf16FromLossyUTF8(test.words));
  std::string text(kColumns[static_cast<std::size_t>(test.field)]);
  if (!text.empty()) text += " : ";
  text += '"';
  for (const char byte : words) {
    if (byte == '"') text += '"';
    text += byte == 0 ? ' ' : byte;
  }
  return text + (test.isPrefix ? "\" *" : "\"");
}

}  // namespace kbx
