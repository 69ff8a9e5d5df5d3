#include "host/search/AttributeScanner.h"

#include <array>

#include "host/search/QueryFault.h"

namespace kbx {
namespace {

using Kind = AttributeToken::Kind;

constexpr std::array<std::string_view, 14> kOperators{"==", "!=", "<=", ">=", "&&", "||", "<",
                                                      ">",  "!",  "(",  ")",  ",",  "[",  "]"};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isNameByte(char c) {
  return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '.' ||
         c == ':' || (static_cast<unsigned char>(c) & 0x80) != 0;
}

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

}  // namespace

void AttributeScanner::skipBlanks() {
  while (_place < _text.size() &&
         (_text[_place] == ' ' || (_text[_place] >= '\t' && _text[_place] <= '\r')))
    ++_place;
}

AttributeToken AttributeScanner::token(Kind kind, std::size_t end) {
  const AttributeToken token{kind, _place, end, _text.substr(_place, end - _place)};
  _place = end;
  return token;
}

std::size_t AttributeScanner::endOfNumber() const {
  std::size_t end = _place;
  const auto isAt = [&](std::string_view any) {
    return end < _text.size() && any.find(_text[end]) != std::string_view::npos;
  };
  if (isAt("+-")) ++end;
  const std::size_t first = end;
  while (isAt("0123456789.")) ++end;
  if (end == first) return _place;
  if (isAt("eE")) {
    const std::size_t exponent = end++;
    if (isAt("+-")) ++end;
    if (!isAt("0123456789")) return exponent;
    while (isAt("0123456789")) ++end;
  }
  return end;
}

AttributeToken AttributeScanner::quoted(char quote) {
  const std::size_t begin = _place;
  std::size_t end = begin + 1;
  while (end < _text.size() && _text[end] != quote) end += _text[end] == '\\' ? 2 : 1;
  if (end >= _text.size())
    throw QueryFault("this quote is never closed", begin, 1, std::string(_text) + quote);
  std::size_t behind = end + 1;
  while (behind < _text.size() && isLetter(_text[behind])) ++behind;
  _place = behind;
  return {Kind::Text, begin, behind, _text.substr(begin + 1, end - begin - 1),
          _text.substr(end + 1, behind - end - 1)};
}

AttributeToken AttributeScanner::next() {
  skipBlanks();
  if (_place >= _text.size()) return {Kind::End, _text.size(), _text.size()};
  const char first = _text[_place];
  if (first == '"' || first == '\'') return quoted(first);
  for (std::string_view op : kOperators)
    if (_text.substr(_place).starts_with(op)) return token(Kind::Operator, _place + op.size());
  if (first == '*') return token(Kind::Name, _place + 1);
  if (const std::size_t end = endOfNumber();
      end > _place && (end == _text.size() || !isNameByte(_text[end])))
    return token(Kind::Number, end);
  const bool isVariable = first == '$';
  std::size_t end = _place + (isVariable ? 1 : 0);
  while (end < _text.size() && isNameByte(_text[end])) ++end;
  if (end == _place) return token(Kind::Wrong, _place + 1);
  return token(isVariable ? Kind::Variable : Kind::Name, end);
}

std::string_view AttributeScanner::takeUntilParenthesis() {
  const std::size_t end = _text.find(')', _place);
  if (end == std::string_view::npos)
    throw QueryFault("this parenthesis is never closed", _place - 1, 1, std::string(_text) + ")");
  const std::string_view inside = _text.substr(_place, end - _place);
  _place = end + 1;
  return inside;
}

}  // namespace kbx
