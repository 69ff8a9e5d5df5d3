// Languages: made-up words of many scripts, the frequent ones often and most of them seldom.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tests/generators/Random.h"

namespace kbx {

/// What the words of a language are made of. Each list is words with blanks between them.
struct LanguageTraits {
  std::string_view tag;         // as in Content-Language
  std::string_view charset;     // what its mail was sent in before UTF-8
  std::string_view firstWords;  // the most frequent words, may be empty
  std::string_view starts;      // a syllable is one of each, "_" for nothing
  std::string_view middles;
  std::string_view ends;
  std::string_view space;  // between words
  std::string_view stop;   // behind a sentence
  unsigned share;          // of a hundred messages
};

/// The words of one language by rank. The word of rank n is drawn with a chance in proportion to
/// 1/(n+1), as in natural text. Safe from any thread.
class Language {
 public:
  explicit Language(const LanguageTraits& traits);

  const LanguageTraits& traits() const { return _traits; }
  const std::string& word(Random& random) const;
  /// Some words, without a stop.
  std::string phrase(Random& random, std::size_t words) const;
  /// Sentences with about so many words, on lines of about 72 characters.
  std::string paragraph(Random& random, std::size_t words) const;

 private:
  void addSentence(Random& random, std::size_t words, std::string& text,
                   std::size_t& lineStart) const;

  const LanguageTraits& _traits;
  std::vector<std::string> _words;
  std::vector<std::uint64_t> _sums;  // of the weights up to each word
};

/// All languages, the first one the most frequent.
std::span<const Language> languages();
/// One of them, by their shares.
const Language& anyLanguage(Random& random);

}  // namespace kbx
