#include "platform/propertylists/PlainXMLPropertyList.h"

#include <unicode/utf8.h>

#include <charconv>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "platform/propertylists/XMLPropertyListHead.h"
#include "platform/propertylists/XMLPropertyListTree.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kbx {
namespace {

constexpr std::size_t kLongestTag = 10;        // "</integer>"
constexpr std::size_t kLongestReference = 10;  // "&#x10FFFF;"

struct Entity {
  std::string_view name;
  char32_t character;
};

constexpr Entity kEntities[] = {
    {"lt", U'<'}, {"gt", U'>'}, {"amp", U'&'}, {"quot", U'"'}, {"apos", U'\''}};

bool isXMLCharacter(std::uint32_t c) {
  if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
  return c < 0xD800 || (c >= 0xE000 && c < 0xFFFE) || (c >= 0x10000 && c <= 0x10FFFF);
}

/// The character of a reference without its "&" and ";".
std::optional<char32_t> characterOf(std::string_view name) {
  for (const Entity& entity : kEntities)
    if (entity.name == name) return entity.character;
  if (!name.starts_with('#')) return std::nullopt;
  const bool isHexadecimal = name.starts_with("#x");
  name.remove_prefix(isHexadecimal ? 2 : 1);
  std::uint32_t value = 0;
  const char* const end = name.data() + name.size();
  const auto [stop, fault] = std::from_chars(name.data(), end, value, isHexadecimal ? 16 : 10);
  if (fault != std::errc() || stop != end || !isXMLCharacter(value)) return std::nullopt;
  return static_cast<char32_t>(value);
}

/// What a text holds, found without a look at each letter.
class Letters {
 public:
  explicit Letters(std::string_view text) {
    std::size_t at = 0;
    for (; at + kBlock <= text.size(); at += kBlock) add(text.data() + at);
    if (text.size() >= kBlock) {
      add(text.data() + text.size() - kBlock);  // some letters once more
    } else {
      char block[kBlock];
      std::memset(block, ' ', kBlock);
      std::memcpy(block, text.data(), text.size());
      add(block);
    }
  }

  bool hasControl() const { return any(_controls); }  // but TAB and LF
  bool hasBracket() const { return any(_brackets); }
  bool isASCII() const { return !any(_all); }

 private:
  static constexpr std::size_t kBlock = 16;

#if defined(__SSE2__)
  using Block = __m128i;
  static bool any(Block signs) { return _mm_movemask_epi8(signs) != 0; }
  void add(const char* letters) {
    const Block block = _mm_loadu_si128(reinterpret_cast<const Block*>(letters));
    const auto is = [&](char letter) { return _mm_cmpeq_epi8(block, _mm_set1_epi8(letter)); };
    const Block control = _mm_cmpeq_epi8(_mm_min_epu8(block, _mm_set1_epi8(0x1F)), block);
    const Block allowed = _mm_or_si128(is('\t'), is('\n'));
    _controls = _mm_or_si128(_controls, _mm_andnot_si128(allowed, control));
    _brackets = _mm_or_si128(_brackets, is(']'));
    _all = _mm_or_si128(_all, block);
  }
  Block _controls = _mm_setzero_si128(), _brackets = _mm_setzero_si128(),
        _all = _mm_setzero_si128();
#else
  using Block = std::uint8_t;  // its high bit is the sign
  static bool any(Block signs) { return signs >= 0x80; }
  void add(const char* letters) {
    for (std::size_t i = 0; i < kBlock; ++i) {
      const auto letter = static_cast<std::uint8_t>(letters[i]);
      if (letter < 0x20 && letter != '\t' && letter != '\n') _controls = 0x80;
      if (letter == ']') _brackets = 0x80;
      _all |= letter;
    }
  }
  Block _controls = 0, _brackets = 0, _all = 0;
#endif
};

/// Whether the text between two tags or references means what it says. Whether it is UTF-8 shows
/// when it becomes a string.
bool isPlain(std::string_view text) {
  const Letters letters(text);
  if (letters.hasControl()) return false;
  if (letters.hasBracket() && text.find("]]>") != text.npos) return false;
  return letters.isASCII() ||
         (text.find("\xEF\xBF\xBE") == text.npos && text.find("\xEF\xBF\xBF") == text.npos);
}

class PlainReader {
 public:
  PlainReader(std::string_view text, bool isMutable) : _rest(text), _tree(isMutable) {}
  Ref<NSObject> read();

 private:
  // Each takes something off the rest; false when it is not plain.
  void takeHead();
  bool takeTag();
  bool takeText();
  bool takeReference();

  void skip(std::string_view prefix) {
    if (_rest.starts_with(prefix)) _rest.remove_prefix(prefix.size());
  }
  std::size_t untilTag();
  bool start(std::string_view name);
  bool end(std::string_view name);

  std::string_view _rest;
  const char* _nextTag = nullptr;
  std::vector<std::string_view> _open;  // names of elements
  bool _hasBegun = false;
  XMLPropertyListTree _tree;
};

void PlainReader::takeHead() {
  skip(kXMLDeclaration);
  skip("\n");
  skip(kXMLDocumentType);
}

bool PlainReader::start(std::string_view name) {
  if (_open.empty() && _hasBegun) return false;  // a second outermost element
  _hasBegun = true;
  _open.push_back(name);
  return !_tree.start(name);
}

bool PlainReader::end(std::string_view name) {
  if (_open.empty() || _open.back() != name) return false;
  _open.pop_back();
  return !_tree.end();
}

bool PlainReader::takeTag() {
  if (_rest.starts_with(kXMLPlistTag)) {
    _rest.remove_prefix(kXMLPlistTag.size());
    return start("plist");
  }
  const std::size_t close = _rest.substr(0, kLongestTag).find('>');
  if (close == _rest.npos) return false;
  std::string_view name = _rest.substr(1, close - 1);
  _rest.remove_prefix(close + 1);
  if (name.starts_with('/')) return end(name.substr(1));
  if (!name.ends_with('/')) return start(name);
  name.remove_suffix(1);
  return start(name) && end(name);
}

bool PlainReader::takeReference() {
  if (_open.empty()) return false;
  const std::size_t close = _rest.substr(0, kLongestReference).find(';');
  if (close == _rest.npos) return false;
  const auto character = characterOf(_rest.substr(1, close - 1));
  if (!character) return false;
  _rest.remove_prefix(close + 1);
  char bytes[U8_MAX_LENGTH];
  std::size_t size = 0;
  U8_APPEND_UNSAFE(bytes, size, *character);
  return !_tree.text({bytes, size});
}

/// How far it is to the next tag, or to the end. Looked for once, however many references stand in
/// front of it.
std::size_t PlainReader::untilTag() {
  const char* const begin = _rest.data();
  if (!_nextTag || _nextTag < begin) {
    const void* found = std::memchr(begin, '<', _rest.size());
    _nextTag = found ? static_cast<const char*>(found) : begin + _rest.size();
    _tree.expectText(static_cast<std::size_t>(_nextTag - begin));
  }
  return static_cast<std::size_t>(_nextTag - begin);
}

bool PlainReader::takeText() {
  const std::string_view text = _rest.substr(0, untilTag());
  const std::string_view piece = text.substr(0, text.find('&'));
  _rest.remove_prefix(piece.size());
  return isPlain(piece) && !_tree.text(piece);
}

Ref<NSObject> PlainReader::read() {
  takeHead();
  while (!_rest.empty()) {
    const char next = _rest.front();
    if (!(next == '<' ? takeTag() : next == '&' ? takeReference() : takeText())) return nullptr;
  }
  return _open.empty() ? _tree.root() : nullptr;
}

}  // namespace

Ref<NSObject> propertyListFromPlainXML(std::string_view text, bool isMutable) {
  return PlainReader(text, isMutable).read();
}

}  // namespace kbx
