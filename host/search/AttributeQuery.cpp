#include "host/search/AttributeQuery.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/search/AttributeNames.h"
#include "host/search/AttributeScanner.h"
#include "host/search/DateWords.h"
#include "host/search/QueryFault.h"
#include "host/search/QueryParser.h"
#include "host/search/Spelling.h"
#include "platform/system/Clock.h"

namespace kbx {
namespace {

using Kind = QueryNode::Kind;
using Token = AttributeToken;

constexpr std::array<std::string_view, 8> kTimes{
    "now", "today", "yesterday", "this_week", "this_month", "this_year", "tomorrow", "iso"};

class AttributeParser {
 public:
  explicit AttributeParser(std::string_view text) : _scanner(text) { advance(); }

  QueryNode parse();

 private:
  QueryNode alternatives();
  QueryNode conjunction();
  QueryNode unary();
  QueryNode negation();
  QueryNode group();
  QueryNode comparison();
  QueryNode range();
  Token attributeName();
  AttributeValue value(std::string_view modifiers);
  AttributeValue text(const Token& token, std::string_view modifiers);
  AttributeValue time();
  AttributeValue isoTime(const Token& name);
  double countInParentheses();
  std::string_view bracketedModifiers();

  void advance() { _token = _scanner.next(); }
  Token take() {
    Token token = _token;
    advance();
    return token;
  }
  void expect(std::string_view op, const std::string& reason);
  void enter(const Token& token);
  void countTerm(const Token& token);
  std::string corrected(std::size_t begin, std::size_t end, std::string_view with) const {
    return std::string(_scanner.text()).replace(begin, end - begin, with);
  }
  [[noreturn]] void fail(const std::string& reason, const Token& token,
                         std::string correction = {}) const {
    throw QueryFault(reason, token.begin, token.end - token.begin, std::move(correction));
  }
  [[noreturn]] void missingOperator(const Token& name) const;

  AttributeScanner _scanner;
  Token _token;  // the next one
  std::size_t _termCount = 0;
  int _depth = 0;
};

void AttributeParser::enter(const Token& token) {
  if (++_depth > kDeepestQuery) fail("the query is nested too deeply", token);
}

void AttributeParser::countTerm(const Token& token) {
  if (++_termCount > kMostTerms)
    fail("the query has more than " + std::to_string(kMostTerms) + " comparisons", token);
}

void AttributeParser::expect(std::string_view op, const std::string& reason) {
  if (!_token.is(op)) fail(reason, _token);
  advance();
}

QueryNode AttributeParser::parse() {
  QueryNode query = alternatives();
  if (_token.kind == Token::Kind::End) return query;
  if (_token.is(")"))
    fail("no parenthesis is open here", _token, corrected(_token.begin, _token.end, ""));
  const bool isPlain = _token.text == "&" || _token.text == "|";
  if (isPlain)
    fail("the operators are && and ||", _token,
         corrected(_token.begin, _token.end, _token.text == "&" ? "&&" : "||"));
  fail("&& or || is missing here", _token, corrected(_token.begin, _token.begin, "&& "));
}

QueryNode AttributeParser::alternatives() {
  std::vector<QueryNode> nodes;
  nodes.push_back(conjunction());
  while (_token.is("||")) {
    advance();
    nodes.push_back(conjunction());
  }
  return QueryNode::joined(Kind::Or, std::move(nodes));
}

QueryNode AttributeParser::conjunction() {
  std::vector<QueryNode> nodes;
  nodes.push_back(unary());
  while (_token.is("&&")) {
    advance();
    nodes.push_back(unary());
  }
  return QueryNode::joined(Kind::And, std::move(nodes));
}

QueryNode AttributeParser::unary() {
  if (_token.is("!")) return negation();
  if (_token.is("(")) return group();
  if (_token.kind == Token::Kind::Name && nearestWord(_token.text, {{"InRange"}}) == "InRange")
    return range();
  return comparison();
}

QueryNode AttributeParser::negation() {
  enter(_token);
  advance();
  QueryNode node = QueryNode::negated(unary());
  --_depth;
  return node;
}

QueryNode AttributeParser::group() {
  const Token opening = _token;
  enter(opening);
  advance();
  if (_token.is(")"))
    throw QueryFault("nothing stands in these parentheses", opening.begin,
                     _token.end - opening.begin);
  QueryNode node = alternatives();
  if (_token.kind == Token::Kind::End)
    fail("this parenthesis is never closed", opening, std::string(_scanner.text()) + ")");
  expect(")", "&&, || or ) is missing here");
  --_depth;
  return node;
}

Token AttributeParser::attributeName() {
  const Token name = _token;
  if (name.kind != Token::Kind::Name)
    fail(name.kind == Token::Kind::End ? "a comparison is missing here"
                                       : "the name of an attribute is missing here",
         name);
  if (const auto nearest = nearestAttribute(name.text); !nearest.empty())
    fail("no message has an attribute of this name", name,
         corrected(name.begin, name.end, nearest));
  advance();
  return name;
}

void AttributeParser::missingOperator(const Token& name) const {
  const Token& token = _token;
  if (token.kind == Token::Kind::Wrong && token.text == "=")
    fail("the operators are ==, !=, <, <=, > and >=", token,
         corrected(token.begin, token.end, "=="));
  const bool isWord = name.text.find("kMDItem") == std::string_view::npos && name.text != "*";
  fail("==, !=, <, <=, > or >= is missing behind the attribute", name,
       isWord ? corrected(name.begin, name.end,
                          "kMDItemTextContent == \"" + std::string(name.text) + "\"" +
                              (token.kind == Token::Kind::Name ? " &&" : ""))
              : "");
}

QueryNode AttributeParser::comparison() {
  countTerm(_token);
  const Token name = attributeName();
  constexpr std::array<std::pair<std::string_view, Comparison>, 6> kOperators{
      {{"==", Comparison::Equal},
       {"!=", Comparison::Equal},
       {"<", Comparison::Less},
       {"<=", Comparison::LessOrEqual},
       {">", Comparison::Greater},
       {">=", Comparison::GreaterOrEqual}}};
  const auto op =
      std::ranges::find_if(kOperators, [&](const auto& each) { return _token.is(each.first); });
  if (op == kOperators.end()) missingOperator(name);
  advance();
  AttributeTest test{std::string(name.text), op->second, value(bracketedModifiers())};
  QueryNode node = QueryNode::of(std::move(test));
  return op->first == "!=" ? QueryNode::negated(std::move(node)) : node;
}

QueryNode AttributeParser::range() {
  countTerm(_token);
  const Token name = take();
  const std::string form = "InRange(ATTRIBUTE, SMALLEST, LARGEST) has this form";
  if (!_token.is("(")) fail(form, name);
  advance();
  AttributeTest test;
  test.name = attributeName().text;
  test.comparison = Comparison::InRange;
  expect(",", form);
  test.value = value({});
  expect(",", form);
  test.upper = value({});
  expect(")", form);
  return QueryNode::of(std::move(test));
}

/// "[cd]" behind an operator.
std::string_view AttributeParser::bracketedModifiers() {
  if (!_token.is("[")) return {};
  advance();
  const Token letters = take();
  expect("]", "] is missing here");
  return letters.text;
}

AttributeValue AttributeParser::value(std::string_view modifiers) {
  const Token token = _token;
  if (token.kind == Token::Kind::Variable) return time();
  advance();
  if (token.kind == Token::Kind::Text || token.kind == Token::Kind::Name)
    return text(token, modifiers);
  if (token.kind != Token::Kind::Number)
    fail("a value is missing here: \"text\", a number or $time.today", token);
  AttributeValue number{AttributeValue::Kind::Number, std::string(token.text)};
  number.number = std::strtod(number.text.c_str(), nullptr);
  return number;
}

AttributeValue AttributeParser::text(const Token& token, std::string_view modifiers) {
  AttributeValue result{AttributeValue::Kind::Text, std::string(token.text)};
  for (const auto letters : {modifiers, token.modifiers}) {
    for (const char letter : letters) {
      if (letter != 'c' && letter != 'd' && letter != 'w')
        fail("the modifiers behind a text are c, d and w", token);
      (letter == 'c'   ? result.ignoresCase
       : letter == 'd' ? result.ignoresMarks
                       : result.isByWord) = true;
    }
  }
  return result;
}

double AttributeParser::countInParentheses() {
  if (!_token.is("(")) return 0;
  advance();
  const Token number = take();
  if (number.kind != Token::Kind::Number) fail("a number is missing here", number);
  expect(")", ") is missing here");
  return std::clamp(std::strtod(std::string(number.text).c_str(), nullptr), -1e12, 1e12);
}

AttributeValue AttributeParser::isoTime(const Token& name) {
  if (!_token.is("(")) fail("$time.iso(2024-05-17) has this form", name);
  std::string_view inside = _scanner.takeUntilParenthesis();
  while (inside.starts_with(' ')) inside.remove_prefix(1);
  while (inside.ends_with(' ')) inside.remove_suffix(1);
  const auto seconds = internetTime(inside);
  if (!seconds) {
    const std::size_t begin = static_cast<std::size_t>(inside.data() - _scanner.text().data());
    const std::string nearest = nearestDateWord(inside);
    throw QueryFault("this is no date: 2024-05-17, 2024-05-17T14:30:00Z", begin,
                     std::max<std::size_t>(inside.size(), 1),
                     nearest.size() == 10 ? corrected(begin, begin + inside.size(), nearest) : "");
  }
  advance();
  return {AttributeValue::Kind::Time, {}, *seconds};
}

AttributeValue AttributeParser::time() {
  const Token token = _token;
  constexpr std::string_view kPrefix = "$time.";
  const std::string_view name = token.text.substr(std::min(token.text.size(), kPrefix.size()));
  if (!token.text.starts_with(kPrefix) || std::ranges::find(kTimes, name) == kTimes.end()) {
    const auto nearest = nearestWord(name, kTimes);
    fail(
        "the variables are $time.now, .today, .yesterday, .this_week, .this_month, .this_year, "
        ".iso",
        token,
        nearest.empty() ? "" : corrected(token.begin, token.end, "$time." + std::string(nearest)));
  }
  advance();
  if (name == "iso") return isoTime(token);
  const double count = countInParentheses();
  const auto whole = static_cast<std::int64_t>(count);
  AttributeValue result{AttributeValue::Kind::Time, {}};
  result.number = name == "now"          ? Clock::current().secondsSince1970() + count
                  : name == "this_week"  ? beginningOfWeek(whole)
                  : name == "this_month" ? beginningOfMonth(whole)
                  : name == "this_year"  ? beginningOfYear(whole)
                  : name == "yesterday"  ? beginningOfDay(whole - 1)
                  : name == "tomorrow"   ? beginningOfDay(whole + 1)
                                         : beginningOfDay(whole);
  return result;
}

}  // namespace

QueryNode parseAttributeQuery(std::string_view text) { return AttributeParser(text).parse(); }

}  // namespace kbx
