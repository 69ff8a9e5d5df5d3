// Texts of strangers, cut into words: a query with a text's own words finds it, places lie between
// characters, and no token is longer than it may be.
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string_view>
#include <vector>

#include "host/tokenizer/Tokenizer.h"
#include "platform/text/UTF8.h"

namespace {

using kbx::Token;
using kbx::TokenPurpose;

void require(bool isTrue) {
  if (!isTrue) std::abort();
}

bool isBorder(std::string_view text, std::size_t at) {
  return at == text.size() || (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
}

/// Tokens in the order of their places, those of one position beside each other.
std::vector<Token> checkedTokens(std::string_view text, TokenPurpose purpose) {
  std::vector<Token> tokens = kbx::tokensOf(text, purpose);
  const bool isText = kbx::isUTF8(text);
  for (const Token& token : tokens) {
    require(!token.text.empty() && token.text.size() <= kbx::kLongestToken);
    require(kbx::isUTF8(token.text));
    require(token.start <= token.end && token.end <= text.size());
    if (isText) require(isBorder(text, token.start) && isBorder(text, token.end));
  }
  return tokens;
}

/// Each token of the query stands at its position in the index.
void requireAtItsPlace(const std::vector<Token>& query, const std::vector<Token>& index) {
  std::multimap<std::size_t, std::string_view> at;
  for (const Token& token : index) at.emplace(token.position, token.text);
  for (const Token& token : query) {
    bool isThere = false;
    for (auto [first, last] = at.equal_range(token.position); first != last; ++first)
      isThere |= first->second == token.text;
    require(isThere);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  const auto index = checkedTokens(text, TokenPurpose::Index);
  requireAtItsPlace(checkedTokens(text, TokenPurpose::Query), index);
  requireAtItsPlace(checkedTokens(text, TokenPurpose::PrefixQuery), index);
  const auto places = checkedTokens(text, TokenPurpose::Offsets);
  requireAtItsPlace(places, index);
  for (std::size_t i = 0; i < places.size(); ++i) {
    require(places[i].position == i);
    require(i == 0 || places[i].start >= places[i - 1].end);
  }
  require(index.empty() == places.empty());
  if (!index.empty()) require(index.back().position + 1 == places.size());
  return 0;
}
