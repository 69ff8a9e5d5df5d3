#include "host/search/MatchText.h"

#include <array>
#include <span>
#include <string_view>

#include "host/tokenizer/Tokenizer.h"
#include "platform/text/UTF8.h"

namespace kbx {
namespace {

constexpr std::array<std::string_view, 10> kColumns{
    "", "subject", "sender", "recipient", "cc", "bcc", "body", "attachment", "file", "list"};

}  // namespace

bool hasWords(const TextTest& test) {
  const auto isEnough = [](void*, int, const char*, int, int, int) { return 1; };
  const auto purpose = test.isPrefix ? TokenPurpose::PrefixQuery : TokenPurpose::Query;
  return tokenize(test.words, purpose, {isEnough, nullptr}) != 0;
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

std::string columnsOf(TextField field) {
  if (field != TextField::Any) return std::string(kColumns[static_cast<std::size_t>(field)]);
  std::string all;
  for (const std::string_view column : std::span(kColumns).subspan(1))
    all.append(all.empty() ? "" : ", ").append(column);
  return all;
}

}  // namespace kbx
