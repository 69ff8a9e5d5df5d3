// AttributeScanner: the pieces of a query of attributes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kbx {

/// A piece and where it stands, in bytes of the query.
struct AttributeToken {
  enum class Kind : unsigned char {
    End,
    Name,  // an attribute, or a word in the place of a value
    Text,  // in quotes
    Number,
    Variable,  // $time.today
    Operator,  // == != < <= > >= && || ! ( ) , [ ]
    Wrong      // anything else, one byte of it
  };

  Kind kind = Kind::End;
  std::size_t begin = 0, end = 0;
  std::string_view text = {};       // as it stands in the query, without the quotes
  std::string_view modifiers = {};  // the letters right behind a quoted text

  bool is(std::string_view op) const { return kind == Kind::Operator && text == op; }
};

class AttributeScanner {
 public:
  explicit AttributeScanner(std::string_view text) : _text(text) {}

  std::string_view text() const { return _text; }
  /// Takes the next piece. Raises QueryFault at a quote that is never closed.
  AttributeToken next();
  /// What stands between the parenthesis that was taken last and the one that closes it, which is
  /// taken too: what $time.iso(…) holds. Raises QueryFault when it is never closed.
  std::string_view takeUntilParenthesis();

 private:
  void skipBlanks();
  AttributeToken quoted(char quote);
  AttributeToken token(AttributeToken::Kind kind, std::size_t end);
  std::size_t endOfNumber() const;

  const std::string_view _text;
  std::size_t _place = 0;
};

}  // namespace kbx
