// TextPattern: a text with wildcards, and what it matches.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/objects/NSString.h"

namespace kbx {

/// How texts are compared.
struct PatternOptions {
  bool ignoresCase = false;   // by Unicode's full folding
  bool ignoresMarks = false;  // diacritics
  bool isByWord = false;      // as words anywhere in the text; otherwise as the whole text
};

/// `*` stands for any characters or none, `?` for one; a backslash makes the next character plain.
/// Canonically equivalent texts are the same. Words are letters and digits between others, and
/// begin anew where a capital letter follows a small one; those of a pattern must follow each
/// other. Never changes after it is made.
class TextPattern {
 public:
  TextPattern(std::string_view pattern, PatternOptions options);

  bool matches(NSString* text) const;
  bool matches(std::string_view utf8) const;

 private:
  enum class Kind : unsigned char { Character, AnyOne, AnyRun };
  struct Element {
    Kind kind;
    char32_t character = 0;
  };
  using Elements = std::vector<Element>;
  using Word = std::u32string;

  static Elements elementsOf(std::u32string_view pattern);
  static bool matches(const Elements& elements, std::u32string_view text);
  std::u32string folded(std::u32string_view text) const;
  Elements folded(const Elements& elements) const;
  std::vector<Word> wordsOf(std::u32string_view text) const;
  void splitIntoWords(const Elements& elements);
  bool matchesWords(std::u32string_view text) const;

  const PatternOptions _options;
  Elements _elements;            // of the whole text
  std::vector<Elements> _words;  // of each word, where they count
};

}  // namespace kbx
