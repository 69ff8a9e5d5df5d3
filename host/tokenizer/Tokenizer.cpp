#include "host/tokenizer/Tokenizer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "host/tokenizer/Characters.h"
#include "host/tokenizer/TokenBuffer.h"

namespace kbx {
namespace {

/// A syllable of a script without blanks, or an ideograph.
constexpr std::size_t kLongestSyllable = 48;

/// What each byte of ASCII is within a word: the small letter or digit, or 0.
constexpr std::array<char, 256> kWordBytes = [] {
  std::array<char, 256> bytes = {};
  for (int digit = '0'; digit <= '9'; ++digit) bytes[digit] = static_cast<char>(digit);
  for (int letter = 'a'; letter <= 'z'; ++letter) {
    bytes[letter] = static_cast<char>(letter);
    bytes[letter - 'a' + 'A'] = static_cast<char>(letter);
  }
  return bytes;
}();

char wordByte(char byte) { return kWordBytes[static_cast<unsigned char>(byte)]; }
bool isASCII(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

/// Eight bytes at once.
using PlainWord = std::uint64_t;

constexpr PlainWord eightTimes(unsigned char byte) { return byte * 0x0101010101010101u; }

/// The high bit of each byte that lies between two others; all must be ASCII.
constexpr PlainWord areBetween(PlainWord bytes, unsigned char low, unsigned char high) {
  return (bytes + eightTimes(static_cast<unsigned char>(0x80 - low))) &
         ~(bytes + eightTimes(static_cast<unsigned char>(0x7F - high))) & eightTimes(0x80);
}

/// Copies eight bytes in small letters and answers how many of them, from the first, are letters
/// and digits of ASCII. The others come out as anything.
std::size_t lowerWord(const char* from, char* to) {
  PlainWord bytes;
  std::memcpy(&bytes, from, sizeof bytes);
  // Digits and small letters have this bit already.
  const PlainWord small = bytes | eightTimes(0x20);
  std::memcpy(to, &small, sizeof small);
  const PlainWord plain = small & eightTimes(0x7F);
  const PlainWord isWord =
      areBetween(plain, 'a', 'z') | areBetween(bytes & eightTimes(0x7F), '0', '9');
  const PlainWord isOther = (~isWord | bytes) & eightTimes(0x80);
  if (isOther == 0) return sizeof bytes;
  return static_cast<std::size_t>(std::endian::native == std::endian::little
                                      ? std::countr_zero(isOther)
                                      : std::countl_zero(isOther)) /
         8;
}

struct Place {
  std::size_t start = 0, end = 0;
};

struct Character {
  char32_t value;
  std::size_t length;
};

/// The character at a place; a malformed byte is U+FFFD, which separates.
Character characterAt(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
  };
  const std::uint32_t first = byte(at);
  const auto rest = [&](std::size_t i) { return (byte(at + i) & 0xC0) == 0x80; };
  const auto bits = [&](std::size_t i) { return byte(at + i) & 0x3Fu; };
  if (first < 0x80) return {first, 1};
  if (first >= 0xC2 && first < 0xE0 && rest(1)) return {(first & 0x1F) << 6 | bits(1), 2};
  if (first >= 0xE0 && first < 0xF0 && rest(1) && rest(2)) {
    const char32_t value = (first & 0x0F) << 12 | bits(1) << 6 | bits(2);
    if (value >= 0x800 && (value < 0xD800 || value > 0xDFFF)) return {value, 3};
  }
  if (first >= 0xF0 && first < 0xF5 && rest(1) && rest(2) && rest(3)) {
    const char32_t value = (first & 0x07) << 18 | bits(1) << 12 | bits(2) << 6 | bits(3);
    if (value >= 0x10000 && value <= 0x10FFFF) return {value, 4};
  }
  return {0xFFFD, 1};
}

/// Walks through one text. Words of scripts with blanks gather in _word; syllables of the others
/// in _syllable, with the one before them in _previous.
class Walk {
 public:
  Walk(std::string_view text, TokenPurpose purpose, TokenSink sink)
      : _text(text), _purpose(purpose), _sink(sink) {}

  int run() {
    while (_result == 0 && _at < _text.size()) {
      const char byte = _text[_at];
      const bool isBetween = isASCII(byte) && !_word.isOpen() && !_syllable.isOpen();
      if (isBetween && wordByte(byte)) {
        plainWord();
      } else if (isBetween && _chainedWords == 0) {
        ++_at;
      } else if (_word.isOpen() && wordByte(byte)) {
        plainRest();
      } else {
        const Character character = characterAt(_text, _at);
        const Place place{_at, _at + character.length};
        _at = place.end;
        take(character.value, place);
      }
    }
    _isAtEnd = true;
    separate();
    return _result;
  }

 private:
  using Word = TokenBuffer<kLongestToken>;
  using Syllable = TokenBuffer<kLongestSyllable>;

  // ---- ASCII ----

  /// A word from here on, as far as it is ASCII. Whatever is not leaves it open.
  void plainWord() {
    const std::size_t start = _at;
    const std::size_t length = copyPlainWord();
    const char next = _at < _text.size() ? _text[_at] : ' ';
    const bool isJoined = next == '-' || next == '\'';
    if (isASCII(next) && !isJoined && _chainedWords == 0) {
      give(0, {_word.bytes(), length}, {start, _at});
      ++_at;
      return;
    }
    beginWord(start);
    _word.setLength(length);
    _wordPlace.end = _at;
    if (!isASCII(next)) return;
    isJoined ? joiner({_at, _at + 1}) : separate();
    ++_at;
  }

  /// What is ASCII of a word that is not.
  void plainRest() {
    while (_at < _text.size() && wordByte(_text[_at]))
      _word.append(static_cast<char32_t>(wordByte(_text[_at++])));
    _wordPlace.end = _at;
  }

  /// Moves behind the word, copies as much of it as a token holds, and answers how much that is.
  std::size_t copyPlainWord() {
    char* const bytes = _word.bytes();
    const std::size_t start = _at, limit = std::min(_text.size(), start + kLongestToken);
    while (_at + sizeof(PlainWord) <= limit) {
      const std::size_t count = lowerWord(_text.data() + _at, bytes + (_at - start));
      _at += count;
      if (count < sizeof(PlainWord)) return _at - start;
    }
    while (_at < limit && wordByte(_text[_at])) {
      bytes[_at - start] = wordByte(_text[_at]);
      ++_at;
    }
    const std::size_t length = _at - start;
    while (_at < _text.size() && wordByte(_text[_at])) ++_at;  // what is cut
    return length;
  }

  // ---- Any character ----

  void take(char32_t character, Place place) {
    if (character < 0x80 && !wordByte(static_cast<char>(character))) {
      character == '-' || character == '\'' ? joiner(place) : separate();
      return;
    }
    const FoldedCharacter one = folded(character);
    if (one.isSign) joint(place.start);
    if (one.kind == CharacterKind::Several) {
      for (const char32_t part : expansionOf(character)) takeFolded(folded(part), place);
    } else {
      takeFolded(one, place);
    }
    if (one.isSign) joint(place.end);
  }

  void takeFolded(FoldedCharacter one, Place place) {
    switch (one.kind) {
      case CharacterKind::Letter:
        return letter(one.character, place);
      case CharacterKind::Mark:
        return mark(one.character, place);
      case CharacterKind::Stacker:
        mark(one.character, place);
        _isStacking = _syllable.isOpen();
        return;
      case CharacterKind::Ideograph:
        return ideograph(one.character, place);
      case CharacterKind::Apostrophe:
      case CharacterKind::Hyphen:
        return joiner(place);
      case CharacterKind::Ignored:
        return;
      default:
        return separate();
    }
  }

  void letter(char32_t character, Place place) {
    endSyllables();
    if (!_word.isOpen()) beginWord(place.start);
    _word.append(character);
    _wordPlace.end = place.end;
  }

  void mark(char32_t character, Place place) {
    if (_syllable.isOpen()) {
      _syllable.appendMark(character);
      _syllablePlace.end = place.end;
    } else if (_word.isOpen()) {
      _word.appendMark(character);
      _wordPlace.end = place.end;
    } else {
      letter(character, place);
    }
  }

  void ideograph(char32_t character, Place place) {
    if (_syllable.isOpen() && _isStacking) {
      _isStacking = false;
      _syllable.append(character);
      _syllablePlace.end = place.end;
      return;
    }
    if (_syllable.isOpen())
      passSyllable();
    else
      endWordAndChain();
    _syllable.open();
    _syllable.append(character);
    _syllablePlace = place;
  }

  void joiner(Place place) {
    if (!_word.isOpen()) return separate();
    endWord(true);
    _joinerEnd = place.end;
  }

  /// A place where words join although nothing stands between them: "note¹" is found by "note".
  void joint(std::size_t at) {
    if (!_word.isOpen()) return;
    endWord(true);
    _joinerEnd = at;
  }

  void separate() {
    endSyllables();
    endWordAndChain();
  }

  // ---- Words, and rows of words that hyphens and apostrophes join ----

  void beginWord(std::size_t start) {
    if (_joinerEnd != start) endChain();
    _word.open();
    _wordPlace = {start, start};
  }

  void endWord(bool isJoined) {
    if (!_word.isOpen()) return;
    give(0, _word.text(), _wordPlace);
    if (isJoined || _chainedWords > 0) {
      if (_chainedWords++ == 0) {
        _chain.open();
        _chainPlace = _wordPlace;
      }
      _chain.append(_word.text());
      _chainPlace.end = _wordPlace.end;
    }
    _word.close();
  }

  void endWordAndChain() {
    endWord(false);
    endChain();
  }

  /// The row as one word beside its last one: "e-mail" is found by "email".
  void endChain() {
    if (_chainedWords > 1 && _purpose == TokenPurpose::Index && !_chain.wasCut())
      give(kColocatedToken, _chain.text(), _chainPlace);
    _chainedWords = 0;
    _joinerEnd = kNowhere;
  }

  // ---- Syllables, alone and by twos ----

  /// The syllable is complete, and another one follows at once.
  void passSyllable() {
    if (_previous.isOpen()) givePair();
    _previous = _syllable;
    _previousPlace = _syllablePlace;
    _isStacking = false;
  }

  void endSyllables() {
    if (!_syllable.isOpen()) return;
    if (_previous.isOpen()) givePair();
    // The beginning of a word that goes on: the pair before covers its last syllable.
    const bool isCovered = _purpose == TokenPurpose::PrefixQuery && _previous.isOpen() && _isAtEnd;
    if (!isCovered) give(0, _syllable.text(), _syllablePlace);
    _previous.close();
    _syllable.close();
    _isStacking = false;
  }

  /// Each syllable has a position of its own, at which it is found alone and with the next one.
  void givePair() {
    const bool isQuery = _purpose == TokenPurpose::Query || _purpose == TokenPurpose::PrefixQuery;
    if (!isQuery) give(0, _previous.text(), _previousPlace);
    if (_purpose == TokenPurpose::Offsets) return;
    char pair[2 * kLongestSyllable];
    const std::string_view first = _previous.text(), second = _syllable.text();
    std::memcpy(pair, first.data(), first.size());
    std::memcpy(pair + first.size(), second.data(), second.size());
    give(isQuery ? 0 : kColocatedToken, {pair, first.size() + second.size()},
         {_previousPlace.start, _syllablePlace.end});
  }

  void give(int flags, std::string_view token, Place place) {
    if (_result != 0) return;
    // Characters that stand for several words share their place: the first word has it.
    if (_purpose == TokenPurpose::Offsets) {
      place.start = std::max(place.start, _givenEnd);
      _givenEnd = place.end = std::max(place.end, place.start);
    }
    _result = _sink.take(_sink.context, flags, token.data(), static_cast<int>(token.size()),
                         static_cast<int>(place.start), static_cast<int>(place.end));
  }

  static constexpr std::size_t kNowhere = SIZE_MAX;

  const std::string_view _text;
  const TokenPurpose _purpose;
  const TokenSink _sink;
  std::size_t _at = 0;
  bool _isAtEnd = false;
  std::size_t _givenEnd = 0;  // of the tokens so far
  int _result = 0;

  Word _word, _chain;
  Place _wordPlace, _chainPlace;
  std::size_t _chainedWords = 0;
  std::size_t _joinerEnd = kNowhere;  // behind the joiner or joint that followed the last word

  Syllable _syllable, _previous;
  Place _syllablePlace, _previousPlace;
  bool _isStacking = false;
};

}  // namespace

int tokenize(std::string_view text, TokenPurpose purpose, TokenSink sink) {
  return Walk(text, purpose, sink).run();
}

std::vector<Token> tokensOf(std::string_view text, TokenPurpose purpose) {
  std::vector<Token> tokens;
  const auto take = [](void* context, int flags, const char* token, int length, int start,
                       int end) {
    auto& list = *static_cast<std::vector<Token>*>(context);
    const std::size_t position =
        list.empty() ? 0 : list.back().position + (flags & kColocatedToken ? 0 : 1);
    list.push_back({{token, static_cast<std::size_t>(length)},
                    position,
                    static_cast<std::size_t>(start),
                    static_cast<std::size_t>(end)});
    return 0;
  };
  tokenize(text, purpose, {take, &tokens});
  return tokens;
}

}  // namespace kbx
