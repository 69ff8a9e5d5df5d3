// Tokenizer: the words of a text, in the form in which they are compared. docs/store.md explains
// it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kbx {

/// What tokens are wanted for.
enum class TokenPurpose {
  Index,        // everything that the text may be found by
  Query,        // the shortest row of tokens that finds the text
  PrefixQuery,  // the same, the last token being the beginning of one
  Offsets       // one token at each position, whose places in the text never overlap
};

/// The longest token in bytes. Longer words are cut, so they are found by their beginning.
inline constexpr std::size_t kLongestToken = 128;

/// A token at the position of the one before it, as FTS5 numbers it.
inline constexpr int kColocatedToken = 1;

/// Who takes the tokens, in the form of FTS5: context, flags (0 or kColocatedToken), the token's
/// bytes, and the first byte and the end of its place in the text. Anything but 0 stops.
struct TokenSink {
  int (*take)(void* context, int flags, const char* token, int length, int start, int end);
  void* context;
};

/// Gives the tokens of a text in order, and answers 0 or what stopped the sink.
///
/// text  UTF-8 of less than 2^31 bytes; a malformed byte separates words
///
/// Takes time in proportion to the text and memory that does not depend on it. Safe from any
/// thread. Wherever a text stands within another so that it does not cut a word or a syllable, its
/// tokens for a query stand at consecutive positions of the other's tokens for the index.
int tokenize(std::string_view text, TokenPurpose purpose, TokenSink sink);

struct Token {
  std::string text;
  std::size_t position;    // from 0
  std::size_t start, end;  // in bytes
};

/// The same as a list.
std::vector<Token> tokensOf(std::string_view text, TokenPurpose purpose);

}  // namespace kbx
