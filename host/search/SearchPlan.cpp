#include "host/search/SearchPlan.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

#include "host/search/MatchText.h"

namespace kbx {
namespace {

// A conjunct that costs less is asked first.
constexpr int kColumnCost = 0, kMatchCost = 1, kTextCost = 2, kAttributesCost = 3;
/// The index reads nested expressions with a stack of its own, which is small.
constexpr int kDeepestMatch = 10;

constexpr std::array<const char*, 5> kFlagColumns{"m.is_read", "m.is_flagged", "m.is_replied",
                                                  "m.is_junk", "m.has_attachment"};

enum class ColumnKind : unsigned char { Time, Flag, Number };

struct AttributeColumn {
  std::string_view name;
  const char* column;
  ColumnKind kind;
};

constexpr AttributeColumn kColumns[] = {
    {"kMDItemContentCreationDate", "m.date", ColumnKind::Time},
    {"com_apple_mail_dateReceived", "m.received", ColumnKind::Time},
    {"com_apple_mail_read", "m.is_read", ColumnKind::Flag},
    {"com_apple_mail_flagged", "m.is_flagged", ColumnKind::Flag},
    {"com_apple_mail_repliedTo", "m.is_replied", ColumnKind::Flag},
    {"kMDItemIsLikelyJunk", "m.is_junk", ColumnKind::Flag},
    {"org_ferncase_mail_hasAttachment", "m.has_attachment", ColumnKind::Flag},
    {"org_ferncase_mail_size", "m.size", ColumnKind::Number},
};

/// The value as the column has it; absent where the comparison is not one of numbers.
std::optional<double> columnNumber(const AttributeValue& value, ColumnKind kind) {
  const bool isTime = value.kind == AttributeValue::Kind::Time;
  if (value.kind == AttributeValue::Kind::Text || (isTime && kind != ColumnKind::Time))
    return std::nullopt;
  return kind == ColumnKind::Time && !isTime ? value.number + kReferenceDate : value.number;
}

/// The words of a comparison with the body, which the index answers; absent where it cannot.
std::optional<TextTest> bodyWords(const AttributeTest& test) {
  if (test.name != "kMDItemTextContent" || test.comparison != Comparison::Equal ||
      test.value.kind != AttributeValue::Kind::Text)
    return std::nullopt;
  TextTest words{TextField::Body, {}};
  const std::string_view text = test.value.text;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isLastStar = text[i] == '*' && i + 1 == text.size() && i > 0;
    if (isLastStar) {
      words.isPrefix = true;
    } else if (text[i] == '*' || text[i] == '?') {
      return std::nullopt;
    } else {
      if (text[i] == '\\' && i + 1 < text.size()) ++i;
      words.words += text[i];
    }
  }
  return words;
}

std::string joined(const std::vector<std::string>& texts, std::string_view separator) {
  std::string all;
  for (const std::string& text : texts) {
    if (!all.empty()) all += separator;
    all += text;
  }
  return texts.size() > 1 ? "(" + all + ")" : all;
}

}  // namespace

SearchPlan::SearchPlan(const QueryNode& query) {
  Part root = compile(query);
  _isMatchAlone = root.kind == Kind::Match;
  root = conditionOf(std::move(root));
  _condition = std::move(root.text);
  if (root.match != SIZE_MAX) _required.push_back(root.match);
  std::vector<std::string> words;
  collectWords(query, words);
  _words = joined(words, " OR ");
}

std::string SearchPlan::parameter(Parameter value) {
  _parameters.push_back(value);
  return "?" + std::to_string(_parameters.size());
}

SearchPlan::Part SearchPlan::conditionOf(Part part) {
  switch (part.kind) {
    case Kind::Condition:
      return part;
    case Kind::Everything:
      return {Kind::Condition, "1"};
    case Kind::Nothing:
    case Kind::Wordless:
      return {Kind::Condition, "0"};
    case Kind::Match:
    case Kind::NoMatch:
      break;
  }
  const std::size_t index = _matches.size();
  _matches.push_back(std::move(part.text));
  const std::string test = "ferncase_in(" + parameter(Match{index}) + ", m.id)";
  if (part.kind == Kind::NoMatch) return {Kind::Condition, "NOT " + test, kMatchCost};
  return {Kind::Condition, test, kMatchCost, 0, index};
}

SearchPlan::Part SearchPlan::compile(const QueryNode& node) {
  switch (node.kind) {
    case QueryNode::Kind::Everything:
      return {Kind::Everything};
    case QueryNode::Kind::And:
      return compileAnd(node.children);
    case QueryNode::Kind::Or:
      return compileOr(node.children);
    case QueryNode::Kind::Not:
      return compileNot(node.children.front());
    case QueryNode::Kind::Test:
      break;
  }
  return std::visit([this](const auto& test) { return compileTest(test); }, node.test);
}

SearchPlan::Part SearchPlan::compileNot(const QueryNode& child) {
  Part part = compile(child);
  switch (part.kind) {
    case Kind::Everything:
      return {Kind::Nothing};
    case Kind::Nothing:
    case Kind::Wordless:
      return {Kind::Everything};
    case Kind::Match:
    case Kind::NoMatch:
      part.kind = part.kind == Kind::Match ? Kind::NoMatch : Kind::Match;
      return part;
    case Kind::Condition:
      break;
  }
  // What is not known is not so: a message without a date is not of today.
  return {Kind::Condition, "(" + part.text + ") IS NOT TRUE", part.cost};
}

/// The parts of an AND, by what becomes of them.
class SearchPlan::Conjunction {
 public:
  void add(Part part) {
    switch (part.kind) {
      case Kind::Nothing:
        isNothing = true;
        break;
      case Kind::Wordless:
        hasWordless = true;
        break;
      case Kind::Match:
      case Kind::NoMatch:
        depth = std::max(depth, part.depth);
        (part.kind == Kind::Match ? found : notFound).push_back(std::move(part.text));
        break;
      case Kind::Condition:
        conditions.push_back(std::move(part));
        break;
      case Kind::Everything:
        hasEverything = true;
        break;
    }
  }

  std::vector<std::string> found, notFound;
  std::vector<Part> conditions;
  int depth = 0;
  bool isNothing = false, hasWordless = false, hasEverything = false;
};

SearchPlan::Part SearchPlan::compileAnd(const std::vector<QueryNode>& children) {
  Conjunction all;
  for (const QueryNode& child : children) all.add(compile(child));
  if (all.isNothing) return {Kind::Nothing};
  const int depth = all.depth + 2;
  std::string match = joined(all.found, " AND "), other = joined(all.notFound, " OR ");
  if (!match.empty() && !other.empty()) match = "(" + match + " NOT " + other + ")";
  auto& conditions = all.conditions;
  if (conditions.empty()) {
    if (!match.empty() && depth <= kDeepestMatch) return {Kind::Match, match, 0, depth};
    if (match.empty() && !other.empty()) return {Kind::NoMatch, other, 0, depth};
  }
  if (!match.empty()) conditions.push_back(conditionOf({Kind::Match, match}));
  if (match.empty() && !other.empty()) conditions.push_back(conditionOf({Kind::NoMatch, other}));
  if (conditions.empty()) return {all.hasEverything ? Kind::Everything : Kind::Wordless};
  std::ranges::stable_sort(conditions, {}, &Part::cost);
  std::vector<std::string> texts;
  Part result{Kind::Condition};
  for (Part& part : conditions) {
    if (part.match != SIZE_MAX) result.match = part.match;
    result.cost = std::max(result.cost, part.cost);
    texts.push_back(std::move(part.text));
  }
  result.text = joined(texts, " AND ");
  return result;
}

SearchPlan::Part SearchPlan::compileOr(const std::vector<QueryNode>& children) {
  std::vector<std::string> found, conditions;
  bool isWordless = true;
  int depth = 0, cost = 0;
  for (const QueryNode& child : children) {
    Part part = compile(child);
    if (part.kind == Kind::Everything) return part;
    isWordless = isWordless && part.kind == Kind::Wordless;
    if (part.kind == Kind::Match) {
      depth = std::max(depth, part.depth);
      found.push_back(std::move(part.text));
    } else if (part.kind == Kind::NoMatch || part.kind == Kind::Condition) {
      part = conditionOf(std::move(part));
      cost = std::max(cost, part.cost);
      conditions.push_back(std::move(part.text));
    }
  }
  if (found.empty() && conditions.empty()) return {isWordless ? Kind::Wordless : Kind::Nothing};
  Part match{Kind::Match, joined(found, " OR "), 0, depth + 1};
  if (conditions.empty() && match.depth <= kDeepestMatch) return match;
  if (!found.empty()) conditions.insert(conditions.begin(), conditionOf(std::move(match)).text);
  return {Kind::Condition, joined(conditions, " OR "), std::max(cost, kMatchCost)};
}

SearchPlan::Part SearchPlan::compileTest(const TextTest& test) {
  if (!hasWords(test)) return {Kind::Wordless};
  return {Kind::Match, matchText(test)};
}

SearchPlan::Part SearchPlan::compileTest(const DateTest& test) {
  std::vector<std::string> conditions;
  if (std::isfinite(test.from)) conditions.push_back("m.date >= " + parameter(test.from));
  if (std::isfinite(test.to)) conditions.push_back("m.date < " + parameter(test.to));
  if (conditions.empty()) return {Kind::Condition, "m.date IS NOT NULL", kColumnCost};
  return {Kind::Condition, joined(conditions, " AND "), kColumnCost};
}

SearchPlan::Part SearchPlan::compileTest(const FlagTest& test) {
  const std::string column = kFlagColumns[static_cast<std::size_t>(test.flag)];
  return {Kind::Condition, column + (test.isSet ? " IS 1" : " IS 0"), kColumnCost};
}

SearchPlan::Part SearchPlan::compileTest(const AttributeTest& test) {
  if (const auto words = bodyWords(test)) return compileTest(*words);
  for (const auto& [name, column, kind] : kColumns) {
    if (name != test.name) continue;
    const auto number = columnNumber(test.value, kind);
    const bool isRange = test.comparison == Comparison::InRange;
    const auto upper = isRange ? columnNumber(test.upper, kind) : number;
    if (number && upper) return compileColumn(test, column, *number, *upper);
  }
  return compileMatcher(test);
}

SearchPlan::Part SearchPlan::compileColumn(const AttributeTest& test, const char* column,
                                           double number, double upper) {
  constexpr std::array<const char*, 5> kOperators{" = ", " < ", " <= ", " > ", " >= "};
  if (test.comparison != Comparison::InRange) {
    const auto index = static_cast<std::size_t>(test.comparison);
    return {Kind::Condition, column + (kOperators[index] + parameter(number)), kColumnCost};
  }
  const std::string from = parameter(number), to = parameter(upper);
  return {Kind::Condition, std::string(column) + " BETWEEN " + from + " AND " + to, kColumnCost};
}

SearchPlan::Part SearchPlan::compileMatcher(const AttributeTest& test) {
  const std::size_t index = _matchers.size();
  _matchers.push_back(makeAttributeMatcher(test));
  const std::string matcher = parameter(Matcher{index});
  // The attribute that is asked for most has a column.
  if (test.name == "kMDItemSubject")
    return {Kind::Condition, "ferncase_text(" + matcher + ", m.subject)", kTextCost};
  return {Kind::Condition, "ferncase_matches(" + matcher + ", m.id)", kAttributesCost};
}

void SearchPlan::collectWords(const QueryNode& node, std::vector<std::string>& words) {
  if (node.kind == QueryNode::Kind::Not) return;
  for (const QueryNode& child : node.children) collectWords(child, words);
  if (node.kind != QueryNode::Kind::Test) return;
  std::optional<TextTest> test;
  if (const auto* text = std::get_if<TextTest>(&node.test)) test = *text;
  if (const auto* attribute = std::get_if<AttributeTest>(&node.test)) test = bodyWords(*attribute);
  if (test && hasWords(*test)) words.push_back(matchText(*test));
}

}  // namespace kbx
