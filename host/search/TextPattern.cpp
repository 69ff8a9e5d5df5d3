#include "host/search/TextPattern.h"

#include <unicode/uchar.h>

#include <algorithm>

#include "platform/text/CaseFolding.h"
#include "platform/text/UTF8.h"

namespace kbx {
namespace {

constexpr char32_t kNoCharacter = 0xFFFD;

std::u32string charactersOf(std::u16string_view units) {
  std::u32string characters;
  characters.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char16_t unit = units[i];
    const bool isPair =
        (unit & 0xFC00) == 0xD800 && i + 1 < units.size() && (units[i + 1] & 0xFC00) == 0xDC00;
    if (isPair)
      characters += 0x10000 + ((unit & char32_t{0x3FF}) << 10) + (units[++i] & char32_t{0x3FF});
    else
      characters += (unit & 0xF800) == 0xD800 ? kNoCharacter : char32_t{unit};
  }
  return characters;
}

std::u32string charactersOf(std::string_view utf8) {
  return charactersOf(std::u16string_view(utf16FromLossyUTF8(utf8)));
}

std::u32string charactersOf(NSString* text) {
  std::u32string characters;
  text->visitUnits([&](auto units) {
    if constexpr (sizeof(units[0]) == 1)
      characters.assign(units.begin(), units.end());
    else
      characters = charactersOf(std::u16string_view(units.data(), units.size()));
  });
  return characters;
}

bool isWordCharacter(char32_t character) {
  const auto c = static_cast<UChar32>(character);
  return u_isalnum(c) || (U_GET_GC_MASK(c) & U_GC_M_MASK) != 0;
}

bool beginsWord(char32_t before, char32_t character) {
  return u_islower(static_cast<UChar32>(before)) && u_isupper(static_cast<UChar32>(character));
}

}  // namespace

TextPattern::TextPattern(std::string_view pattern, PatternOptions options) : _options(options) {
  const Elements elements = elementsOf(charactersOf(pattern));
  if (_options.isByWord)
    splitIntoWords(elements);
  else
    _elements = folded(elements);
}

TextPattern::Elements TextPattern::elementsOf(std::u32string_view pattern) {
  Elements elements;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] == '*') {
      if (elements.empty() || elements.back().kind != Kind::AnyRun)
        elements.push_back({Kind::AnyRun});
    } else if (pattern[i] == '?') {
      elements.push_back({Kind::AnyOne});
    } else {
      if (pattern[i] == '\\' && i + 1 < pattern.size()) ++i;
      elements.push_back({Kind::Character, pattern[i]});
    }
  }
  return elements;
}

std::u32string TextPattern::folded(std::u32string_view text) const {
  const bool isASCII = std::ranges::all_of(text, [](char32_t c) { return c < 0x80; });
  std::u32string result(text);
  if (isASCII) {
    if (_options.ignoresCase)
      for (char32_t& c : result)
        if (c >= 'A' && c <= 'Z') c += 32;
    return result;
  }
  auto options = NSStringCompareOptions{};
  if (_options.ignoresCase) options = options | NSCaseInsensitiveSearch;
  if (_options.ignoresMarks) options = options | NSDiacriticInsensitiveSearch;
  return charactersOf(std::u16string_view(foldedKey(result, options)));
}

TextPattern::Elements TextPattern::folded(const Elements& elements) const {
  Elements result;
  std::u32string run;
  const auto endRun = [&] {
    for (const char32_t character : folded(run)) result.push_back({Kind::Character, character});
    run.clear();
  };
  for (const Element& element : elements) {
    if (element.kind == Kind::Character) {
      run += element.character;
      continue;
    }
    endRun();
    result.push_back(element);
  }
  endRun();
  return result;
}

void TextPattern::splitIntoWords(const Elements& elements) {
  Elements word;
  const auto endWord = [&] {
    if (!word.empty()) _words.push_back(folded(word));
    word.clear();
  };
  for (const Element& element : elements) {
    const bool isPlain = element.kind == Kind::Character;
    if (isPlain && !isWordCharacter(element.character)) {
      endWord();
      continue;
    }
    if (isPlain && !word.empty() && word.back().kind == Kind::Character &&
        beginsWord(word.back().character, element.character))
      endWord();
    word.push_back(element);
  }
  endWord();
}

std::vector<TextPattern::Word> TextPattern::wordsOf(std::u32string_view text) const {
  std::vector<Word> words;
  std::size_t begin = 0;
  for (std::size_t i = 0; i <= text.size(); ++i) {
    const bool isInside = i < text.size() && isWordCharacter(text[i]);
    if (isInside && (i == begin || !beginsWord(text[i - 1], text[i]))) continue;
    if (i > begin) words.push_back(folded(text.substr(begin, i - begin)));
    begin = isInside ? i : i + 1;
  }
  return words;
}

/// Goes back to the last run of any length when the text goes another way, so the time is bounded
/// by the product of both lengths.
bool TextPattern::matches(const Elements& elements, std::u32string_view text) {
  constexpr std::size_t kNone = SIZE_MAX;
  std::size_t at = 0, i = 0, runAt = kNone, runEnd = 0;
  while (i < text.size()) {
    if (at < elements.size() && elements[at].kind == Kind::AnyRun) {
      runAt = ++at;
      runEnd = i;
    } else if (at < elements.size() &&
               (elements[at].kind == Kind::AnyOne || elements[at].character == text[i])) {
      ++at;
      ++i;
    } else if (runAt != kNone) {
      at = runAt;
      i = ++runEnd;
    } else {
      return false;
    }
  }
  while (at < elements.size() && elements[at].kind == Kind::AnyRun) ++at;
  return at == elements.size();
}

bool TextPattern::matchesWords(std::u32string_view text) const {
  const std::vector<Word> words = wordsOf(text);
  if (_words.empty() || words.size() < _words.size()) return false;
  for (std::size_t first = 0; first + _words.size() <= words.size(); ++first) {
    std::size_t count = 0;
    while (count < _words.size() && matches(_words[count], words[first + count])) ++count;
    if (count == _words.size()) return true;
  }
  return false;
}

bool TextPattern::matches(NSString* text) const {
  const std::u32string characters = charactersOf(text);
  return _options.isByWord ? matchesWords(characters) : matches(_elements, folded(characters));
}

bool TextPattern::matches(std::string_view utf8) const {
  const std::u32string characters = charactersOf(utf8);
  return _options.isByWord ? matchesWords(characters) : matches(_elements, folded(characters));
}

}  // namespace kbx
