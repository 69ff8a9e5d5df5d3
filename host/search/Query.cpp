#include "host/search/Query.h"

#include <array>
#include <cstdio>
#include <iterator>
#include <string_view>
#include <utility>

namespace kbx {
namespace {

constexpr std::array<std::string_view, 10> kFields{"any", "subject", "from",       "to",   "cc",
                                                   "bcc", "body",    "attachment", "file", "list"};
constexpr std::array<std::string_view, 5> kFlags{"read", "flagged", "replied", "junk",
                                                 "attachment"};
constexpr std::array<std::string_view, 6> kComparisons{"==", "<", "<=", ">", ">=", "in"};

std::string shown(double number) {
  char text[32];
  std::snprintf(text, sizeof text, "%.15g", number);
  return text;
}

std::string shown(const AttributeValue& value) {
  if (value.kind == AttributeValue::Kind::Time) return "@" + shown(value.number);
  if (value.kind == AttributeValue::Kind::Number) return value.text;
  std::string text = "\"" + value.text + "\"";
  if (value.ignoresCase) text += 'c';
  if (value.ignoresMarks) text += 'd';
  if (value.isByWord) text += 'w';
  return text;
}

struct Describe {
  std::string operator()(const TextTest& test) const {
    std::string text(kFields[static_cast<std::size_t>(test.field)]);
    return text + ":\"" + test.words + (test.isPrefix ? "\"*" : "\"");
  }
  std::string operator()(const DateTest& test) const {
    return "date:" + shown(test.from) + ".." + shown(test.to);
  }
  std::string operator()(const FlagTest& test) const {
    return (test.isSet ? "is:" : "is:no-") +
           std::string(kFlags[static_cast<std::size_t>(test.flag)]);
  }
  std::string operator()(const AttributeTest& test) const {
    std::string text = test.name + " ";
    text += kComparisons[static_cast<std::size_t>(test.comparison)];
    text += " " + shown(test.value);
    return test.comparison == Comparison::InRange ? text + " " + shown(test.upper) : text;
  }
};

}  // namespace

QueryNode QueryNode::joined(Kind kind, std::vector<QueryNode> nodes) {
  if (nodes.size() == 1) return std::move(nodes.front());
  QueryNode result{kind};
  for (QueryNode& node : nodes) {
    if (node.kind == kind)
      result.children.insert(result.children.end(), std::move_iterator(node.children.begin()),
                             std::move_iterator(node.children.end()));
    else
      result.children.push_back(std::move(node));
  }
  return result;
}

std::string descriptionOf(const QueryNode& node) {
  using Kind = QueryNode::Kind;
  if (node.kind == Kind::Everything) return "everything";
  if (node.kind == Kind::Test) return std::visit(Describe(), node.test);
  std::string text = node.kind == Kind::And ? "(and" : node.kind == Kind::Or ? "(or" : "(not";
  for (const QueryNode& child : node.children) text += " " + descriptionOf(child);
  return text + ")";
}

}  // namespace kbx
