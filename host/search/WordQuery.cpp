#include "host/search/WordQuery.h"

#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "host/search/DateWords.h"
#include "host/search/QueryFault.h"
#include "host/search/QueryParser.h"
#include "host/search/WordFields.h"
#include "host/search/WordScanner.h"

namespace kbx {
namespace {

using Kind = QueryNode::Kind;

constexpr double kForEver = std::numeric_limits<double>::infinity();

bool isFieldName(std::string_view text) {
  for (char c : text)
    if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))) return false;
  return !text.empty();
}

/// What stands before the colon of "name:value"; absent where the colon is one of a word.
std::optional<std::string_view> fieldNameIn(std::string_view word) {
  const std::size_t colon = word.find(':');
  if (colon == std::string_view::npos || !isFieldName(word.substr(0, colon))) return std::nullopt;
  const std::string_view value = word.substr(colon + 1);
  if (value.starts_with('/') || value.starts_with(':')) return std::nullopt;  // http://…, std::…
  return word.substr(0, colon);
}

/// Reads from left to right. Each function begins where its piece begins and ends behind it.
class WordParser {
 public:
  explicit WordParser(std::string_view text) : _scanner(text) {}

  QueryNode parse();

 private:
  class Level;

  QueryNode alternatives();
  QueryNode conjunction();
  QueryNode term();
  QueryNode negation(std::size_t signLength);
  QueryNode group();
  QueryNode phrase();
  QueryNode word();
  QueryNode fieldTerm(const WordField& field, std::size_t begin);
  QueryNode value(std::string_view word, std::size_t begin);
  QueryNode textValue(std::string_view word, std::size_t begin);
  QueryNode dateValue(std::string_view word, std::size_t begin);
  QueryNode flagValue(std::string_view word, std::size_t begin);

  bool isAtKeyword(std::string_view keyword) const { return _scanner.isAtWord(keyword); }
  /// Whether nothing follows, in this group at least, that could be a term.
  bool isAtEndOfGroup();
  bool isNegationSign() const;
  void pass(std::string_view word) { _scanner.moveTo(_scanner.place() + word.size()); }
  void countTerm(std::size_t begin);
  std::string corrected(std::size_t begin, std::size_t end, std::string_view with) const;
  /// The query without a word and the blanks behind it; nothing when nothing else is left.
  std::string without(std::size_t begin, std::size_t end) const;
  [[noreturn]] void unknownField(std::string_view name, std::size_t begin,
                                 std::string_view word) const;
  [[noreturn]] void loneOperator(std::string_view keyword, std::size_t begin) const;

  WordScanner _scanner;
  const WordField* _field = nullptr;  // whose values stand in the parentheses here
  std::size_t _fieldBegin = 0;
  std::size_t _termCount = 0;
  int _depth = 0;
};

/// One level of depth while it lives.
class WordParser::Level {
 public:
  Level(WordParser& parser, std::size_t begin) : _parser(parser) {
    if (++_parser._depth > kDeepestQuery)
      throw QueryFault("the query is nested too deeply", begin, 1);
  }
  ~Level() { --_parser._depth; }
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;

 private:
  WordParser& _parser;
};

std::string WordParser::corrected(std::size_t begin, std::size_t end, std::string_view with) const {
  std::string text(_scanner.text());
  return text.replace(begin, end - begin, with);
}

std::string WordParser::without(std::size_t begin, std::size_t end) const {
  const std::string_view text = _scanner.text();
  while (end < text.size() && text[end] == ' ') ++end;
  while (end == text.size() && begin > 0 && text[begin - 1] == ' ') --begin;
  return corrected(begin, end, "");
}

QueryNode WordParser::parse() {
  QueryNode query = alternatives();
  _scanner.skipBlanks();
  if (_scanner.isAtEnd()) return query;
  const std::size_t place = _scanner.place();
  throw QueryFault("no parenthesis is open here", place, 1, without(place, place + 1));
}

bool WordParser::isAtEndOfGroup() {
  _scanner.skipBlanks();
  return _scanner.isAtEnd() || _scanner.isAt(')') || isAtKeyword("OR");
}

void WordParser::loneOperator(std::string_view keyword, std::size_t begin) const {
  throw QueryFault(
      std::string(keyword) + " needs a term on " + (keyword == "NOT" ? "its right" : "both sides"),
      begin, keyword.size(), without(begin, begin + keyword.size()));
}

QueryNode WordParser::alternatives() {
  std::vector<QueryNode> nodes;
  std::size_t last = std::string::npos;  // where the OR before stands
  for (;;) {
    _scanner.skipBlanks();
    const std::size_t place = _scanner.place();
    if (isAtEndOfGroup()) {
      const bool isFollowed = isAtKeyword("OR");
      if (isFollowed || last != std::string::npos) loneOperator("OR", isFollowed ? place : last);
    }
    nodes.push_back(conjunction());
    if (!isAtKeyword("OR")) return QueryNode::joined(Kind::Or, std::move(nodes));
    last = _scanner.place();
    pass("OR");
  }
}

QueryNode WordParser::conjunction() {
  std::vector<QueryNode> nodes;
  while (!isAtEndOfGroup()) {
    const std::size_t place = _scanner.place();
    if (isAtKeyword("AND")) {
      pass("AND");
      if (nodes.empty() || isAtEndOfGroup() || isAtKeyword("AND")) loneOperator("AND", place);
    }
    nodes.push_back(term());
  }
  if (nodes.empty()) return {};
  return QueryNode::joined(Kind::And, std::move(nodes));
}

bool WordParser::isNegationSign() const {
  if (!_scanner.isAt('-')) return false;
  WordScanner behind = _scanner;
  behind.moveTo(_scanner.place() + 1);
  return !behind.isAtBlank() && !behind.isAt(')');
}

QueryNode WordParser::term() {
  if (isNegationSign()) return negation(1);
  if (isAtKeyword("NOT")) return negation(3);
  if (_scanner.isAt('(')) return group();
  if (_scanner.isAtQuote()) return phrase();
  return word();
}

QueryNode WordParser::negation(std::size_t signLength) {
  const std::size_t begin = _scanner.place();
  const Level level(*this, begin);
  _scanner.moveTo(begin + signLength);
  if (isAtEndOfGroup() || isAtKeyword("AND")) loneOperator("NOT", begin);
  return QueryNode::negated(term());
}

QueryNode WordParser::group() {
  const std::size_t begin = _scanner.place();
  const Level level(*this, begin);
  _scanner.moveTo(begin + 1);
  _scanner.skipBlanks();
  if (_scanner.isAt(')')) {
    const std::size_t end = _scanner.place() + 1;
    throw QueryFault("nothing stands in these parentheses", begin, end - begin,
                     without(_field ? _fieldBegin : begin, end));
  }
  QueryNode node = alternatives();
  _scanner.skipBlanks();
  if (!_scanner.isAt(')'))
    throw QueryFault("this parenthesis is never closed", begin, 1,
                     node.kind == Kind::Everything ? "" : std::string(_scanner.text()) + ")");
  _scanner.moveTo(_scanner.place() + 1);
  return node;
}

void WordParser::countTerm(std::size_t begin) {
  if (++_termCount > kMostTerms)
    throw QueryFault("the query has more than " + std::to_string(kMostTerms) + " terms", begin, 1);
}

QueryNode WordParser::phrase() {
  const std::size_t begin = _scanner.place();
  const std::string_view words = _scanner.takePhrase();
  if (_field && _field->kind != WordField::Kind::Text) return value(words, begin);
  TextTest test{_field ? _field->text : TextField::Any, std::string(words)};
  if (_scanner.isAt('*')) {
    test.isPrefix = true;
    _scanner.moveTo(_scanner.place() + 1);
  }
  if (words.find_first_not_of(' ') == std::string_view::npos)
    throw QueryFault("nothing stands in these quotes", begin, _scanner.place() - begin,
                     without(_field ? _fieldBegin : begin, _scanner.place()));
  countTerm(begin);
  return QueryNode::of(std::move(test));
}

void WordParser::unknownField(std::string_view name, std::size_t begin,
                              std::string_view word) const {
  const std::string_view nearest = nearestField(name);
  const std::size_t end = begin + name.size();
  throw QueryFault("\"" + std::string(name) + ":\" is no field", begin, name.size() + 1,
                   nearest.empty()
                       ? corrected(begin, begin + word.size(), "\"" + std::string(word) + "\"")
                       : corrected(begin, end, nearest));
}

QueryNode WordParser::word() {
  const std::size_t begin = _scanner.place();
  const std::string_view word = _scanner.peekWord();
  const auto name = fieldNameIn(word);
  const WordField* field = name ? fieldNamed(*name) : nullptr;
  if (field && _field)
    throw QueryFault("a field within a field", begin, name->size() + 1,
                     corrected(begin, begin + name->size() + 1, ""));
  if (name && !_field) {
    if (field) {
      _scanner.moveTo(begin + name->size() + 1);
      return fieldTerm(*field, begin);
    }
    pass(word);
    // "Re: budget" is how people write; "form:ada" is a slip.
    if (name->size() + 1 < word.size() || !_scanner.isAtBlank() || !nearestField(*name).empty())
      unknownField(*name, begin, word);
    return value(word, begin);
  }
  pass(word);
  return value(word, begin);
}

QueryNode WordParser::fieldTerm(const WordField& field, std::size_t begin) {
  const std::size_t end = _scanner.place();
  if (isAtEndOfGroup())
    throw QueryFault("\"" + std::string(field.name) + ":\" needs a value", begin, end - begin,
                     without(begin, end));
  _field = &field;
  _fieldBegin = begin;
  const std::size_t place = _scanner.place();
  QueryNode node;
  if (_scanner.isAt('(')) {
    node = group();
  } else if (_scanner.isAtQuote()) {
    node = phrase();
  } else {
    const std::string_view word = _scanner.peekWord();
    pass(word);
    node = value(word, place);
  }
  _field = nullptr;
  return node;
}

QueryNode WordParser::value(std::string_view word, std::size_t begin) {
  countTerm(begin);
  if (!_field || _field->kind == WordField::Kind::Text) return textValue(word, begin);
  if (_field->kind == WordField::Kind::Is || _field->kind == WordField::Kind::Has)
    return flagValue(word, begin);
  return dateValue(word, begin);
}

QueryNode WordParser::textValue(std::string_view word, std::size_t begin) {
  TextTest test{_field ? _field->text : TextField::Any, {}};
  test.isPrefix = word.ends_with('*');
  if (test.isPrefix) word.remove_suffix(1);
  const std::size_t star = word.find('*');
  if (!_field && word.empty() && test.isPrefix) return {};  // everything
  if (star != std::string_view::npos || word.empty()) {
    std::string_view beginning = word.substr(0, star);
    const std::size_t whole = begin + word.size() + (test.isPrefix ? 1 : 0);
    throw QueryFault(
        "* stands only at the end of a word", begin + beginning.size(), 1,
        beginning.empty() ? "" : corrected(begin, whole, std::string(beginning) + "*"));
  }
  test.words = word;
  return QueryNode::of(std::move(test));
}

QueryNode WordParser::dateValue(std::string_view word, std::size_t begin) {
  const auto span = dateSpanOf(word);
  if (!span) {
    const std::string nearest = nearestDateWord(word);
    throw QueryFault("\"" + std::string(word) +
                         "\" is no date: 2024, 2024-05, 2024-05-17, today, yesterday, lastweek, 3d",
                     begin, word.size(),
                     nearest.empty() ? "" : corrected(begin, begin + word.size(), nearest));
  }
  if (_field->kind == WordField::Kind::Before)
    return QueryNode::of(DateTest{-kForEver, span->from});
  if (_field->kind == WordField::Kind::After) return QueryNode::of(DateTest{span->from, kForEver});
  return QueryNode::of(DateTest{span->from, span->to});
}

QueryNode WordParser::flagValue(std::string_view word, std::size_t begin) {
  if (const auto flag = flagNamed(*_field, word)) return QueryNode::of(*flag);
  const std::string name(_field->name);
  const std::string nearest = nearestFlag(*_field, word);
  const bool isAlone = begin == _fieldBegin + name.size() + 1;
  throw QueryFault(
      "\"" + name + ":\" knows " + std::string(flagNames(*_field)), begin, word.size(),
      nearest.empty() || !isAlone ? "" : corrected(_fieldBegin, begin + word.size(), nearest));
}

}  // namespace

QueryNode parseWordQuery(std::string_view text) { return WordParser(text).parse(); }

}  // namespace kbx
