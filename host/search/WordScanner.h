// WordScanner: the bytes of a query, a word or a quoted phrase at a time.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kbx {

/// Blanks are those of ASCII, the no-break and the ideographic space; quotes are the straight
/// double one and those of typography, which all open and close alike.
class WordScanner {
 public:
  explicit WordScanner(std::string_view text) : _text(text) {}

  std::string_view text() const { return _text; }
  std::size_t place() const { return _place; }
  void moveTo(std::size_t place) { _place = place; }

  void skipBlanks();
  bool isAtEnd() const { return _place >= _text.size(); }
  bool isAt(char byte) const { return !isAtEnd() && _text[_place] == byte; }
  /// Whether a quote stands here.
  bool isAtQuote() const { return quoteLength(_place) > 0; }
  /// Whether a blank stands here, or nothing.
  bool isAtBlank() const { return isAtEnd() || blankLength(_place) > 0; }

  /// What stands from here to the next blank, parenthesis or quote; may be empty.
  std::string_view peekWord() const;
  /// Whether peekWord() is this word.
  bool isAtWord(std::string_view word) const;
  /// What stands between the quote here and the next one, which is passed.
  ///
  /// Raises QueryFault when there is no other.
  std::string_view takePhrase();

 private:
  std::size_t quoteLength(std::size_t place) const;
  std::size_t blankLength(std::size_t place) const;

  const std::string_view _text;
  std::size_t _place = 0;
};

}  // namespace kbx
