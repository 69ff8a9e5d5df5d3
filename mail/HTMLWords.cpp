#include "mail/HTMLWords.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

#include "mail/ASCII.h"
#include "mail/HTMLMarkup.h"

namespace kbx {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::size_t kLongestCompared = 1 << 22;
using Hash = std::uint64_t;

/// What a byte is to a word: its lower-case letter, or 0 between words.
constexpr std::array<unsigned char, 256> kLetters = [] {
  std::array<unsigned char, 256> letters{};
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    if (byte >= 0x80 || isASCIIAlphanumeric(c))
      letters[static_cast<std::size_t>(byte)] = static_cast<unsigned char>(asciiLower(c));
  }
  return letters;
}();

/// Collects the hashes of words from bytes.
class WordHasher {
 public:
  explicit WordHasher(Words& words) : _words(words) {}

  void add(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      const unsigned char letter = kLetters[static_cast<unsigned char>(text[i])];
      const std::size_t separator = letter < 0x80 ? 0 : separatorLength(text.substr(i, 3));
      if (letter == 0 || separator > 0) {
        end();
        i += separator > 0 ? separator - 1 : 0;
      } else {
        _hash = (_hash ^ letter) * 0x100000001B3;
        _isInWord = true;
      }
    }
  }
  void end() {
    if (_isInWord) take(_hash);
    _hash = kStart;
    _isInWord = false;
  }

 private:
  /// Most words of a text are some that it has had a moment ago; these need not be sorted out.
  void take(Hash hash) {
    Hash& recent = _recent[(hash ^ hash >> 32) % kRecent];
    if (recent != hash) _words.push_back(recent = hash);
  }
  /// Of a blank or a punctuation mark beyond ASCII: U+0080 to U+00BF and U+2000 to U+206F.
  static std::size_t separatorLength(std::string_view text) {
    if (text[0] == '\xC2') return 2;
    return text.starts_with("\xE2\x80") || text.starts_with("\xE2\x81") ? 3 : 0;
  }

  static constexpr Hash kStart = 0xCBF29CE484222325;
  static constexpr std::size_t kRecent = 512;
  Words& _words;
  Hash _hash = kStart;
  bool _isInWord = false;
  std::array<Hash, kRecent> _recent{};  // no word has the hash 0 but by chance
};

struct Entity {
  std::string_view name;
  std::string_view text;
};
constexpr Entity kEntities[] = {
    {"amp", "&"},
    {"lt", "<"},
    {"gt", ">"},
    {"quot", "\""},
    {"apos", "'"},
    {"nbsp", " "},
    {"copy", " "},
    {"reg", " "},
    {"rsquo", " "},
    {"lsquo", " "},
    {"rdquo", " "},
    {"ldquo", " "},
    {"ndash", " "},
    {"mdash", " "},
    {"hellip", " "},
    {"bull", " "},
    {"middot", " "},
    {"raquo", " "},
    {"laquo", " "},
    {"zwnj", " "},
    {"shy", " "},
    {"auml", "\xC3\xA4"},
    {"ouml", "\xC3\xB6"},
    {"uuml", "\xC3\xBC"},
    {"Auml", "\xC3\x84"},
    {"Ouml", "\xC3\x96"},
    {"Uuml", "\xC3\x9C"},
    {"szlig", "\xC3\x9F"},
    {"eacute", "\xC3\xA9"},
    {"egrave", "\xC3\xA8"},
    {"agrave", "\xC3\xA0"},
    {"ccedil", "\xC3\xA7"},
    {"ecirc", "\xC3\xAA"},
    {"aacute", "\xC3\xA1"},
    {"oacute", "\xC3\xB3"},
    {"iacute", "\xC3\xAD"},
    {"ntilde", "\xC3\xB1"},
};

void appendUTF8(std::string& text, std::uint32_t c) {
  if (c < 0x80) {
    text += static_cast<char>(c);
  } else if (c < 0x800) {
    text += static_cast<char>(0xC0 | (c >> 6));
    text += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    text += static_cast<char>(0xE0 | (c >> 12));
    text += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    text += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x110000) {
    text += static_cast<char>(0xF0 | (c >> 18));
    text += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    text += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    text += static_cast<char>(0x80 | (c & 0x3F));
  }
}

/// Walks HTML and hands what is shown to a hasher.
class ShownText {
 public:
  ShownText(std::string_view html, WordHasher& words) : _html(html), _words(words) {}

  void walk() {
    while (_at < _html.size()) {
      std::size_t mark = _at;
      while (mark < _html.size() && _html[mark] != '<' && _html[mark] != '&') ++mark;
      _words.add(_html.substr(_at, mark - _at));
      _at = mark;
      if (_at == _html.size()) break;
      if (_html[_at] == '&')
        takeEntity();
      else
        takeTag();
    }
    _words.end();
  }

 private:
  void takeEntity() {
    constexpr std::size_t kLongest = 12;
    const std::string_view rest = _html.substr(_at + 1, kLongest);
    const std::size_t end = rest.find(';');
    if (end == kNone) {
      _words.end();
      ++_at;
      return;
    }
    _words.add(entityText(rest.substr(0, end)));
    _at += end + 2;
  }

  static std::string entityText(std::string_view name) {
    std::string text;
    if (name.starts_with('#')) {
      const bool isHex = name.size() > 1 && asciiLower(name[1]) == 'x';
      const std::string_view digits = name.substr(isHex ? 2 : 1);
      std::uint32_t c = 0;
      std::from_chars(digits.data(), digits.data() + digits.size(), c, isHex ? 16 : 10);
      appendUTF8(text, c);
      return text;
    }
    for (const Entity& entity : kEntities)
      if (entity.name == name) return std::string(entity.text);
    return "\xEE\x80\x80";  // a private letter: no word of plain text has it
  }

  void takeTag() {
    const std::size_t start = _at;
    _at = std::min(markupEnd(_html, start), _html.size());
    if (_at == start) {
      _words.end();  // a mark that begins no tag
      ++_at;
      return;
    }
    if (_html.substr(start, 4) == "<!--") return;
    const bool isEnd = _html[start + 1] == '/';
    const std::size_t name = start + (isEnd ? 2 : 1);
    std::size_t end = name;
    while (end < _at && isASCIIAlphanumeric(_html[end])) ++end;
    const std::string_view tag = _html.substr(name, end - name);
    if (!isInline(tag)) _words.end();
    // In XHTML an empty element hides nothing.
    if (!isEnd && !_html.substr(start, _at - start).ends_with("/>")) skipHidden(tag);
  }

  /// Elements within a word.
  static bool isInline(std::string_view tag) {
    for (std::string_view known : {"b", "i", "u", "em", "strong", "span", "font", "a", "wbr", "s"})
      if (isSameWord(tag, known)) return true;
    return false;
  }

  void skipHidden(std::string_view tag) {
    for (std::string_view hidden : {"script", "style", "title"}) {
      if (!isSameWord(tag, hidden)) continue;
      while (_at < _html.size()) {
        _at = std::min(_html.find("</", _at), _html.size());
        if (startsWithWord(_html.substr(std::min(_at + 2, _html.size())), hidden)) return;
        if (_at < _html.size()) _at += 2;
      }
    }
  }

  const std::string_view _html;
  WordHasher& _words;
  std::size_t _at = 0;
};

Words sorted(Words words) {
  std::ranges::sort(words);
  words.erase(std::unique(words.begin(), words.end()), words.end());
  return words;
}

}  // namespace

std::optional<Words> wordsOfText(std::string_view text) {
  if (text.size() > kLongestCompared) return std::nullopt;
  Words words;
  WordHasher hasher(words);
  hasher.add(text);
  hasher.end();
  return sorted(std::move(words));
}

std::optional<Words> wordsOfHTML(std::string_view html) {
  if (html.size() > kLongestCompared) return std::nullopt;
  Words words;
  WordHasher hasher(words);
  ShownText(html, hasher).walk();
  return sorted(std::move(words));
}

bool hasAllWords(const std::optional<Words>& all, const std::optional<Words>& some) {
  return all && some && std::ranges::includes(*all, *some);
}

}  // namespace kbx
