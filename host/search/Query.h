// Query: what is looked for, as a tree.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace kbx {

/// Where words are looked for.
enum class TextField : std::uint8_t {
  Any,
  Subject,
  From,
  To,
  Cc,
  Bcc,
  Body,
  Attachment,
  File,
  List
};

/// Words that stand one after the other in one field, whatever their case and marks. What a word
/// is, the store's tokenizer decides; one without a letter or digit may have none.
struct TextTest {
  TextField field = TextField::Any;
  std::string words;      // bytes of the query, UTF-8 by custom
  bool isPrefix = false;  // the last word may go on
};

/// Messages with from <= date < to, in seconds since 1970; infinite where it is open.
struct DateTest {
  double from, to;
};

enum class Flag : std::uint8_t { Read, Flagged, Replied, Junk, Attachment };

/// Messages of which it is known that the flag is set, or that it is not.
struct FlagTest {
  Flag flag;
  bool isSet = true;
};

/// The right side of a comparison with an attribute.
struct AttributeValue {
  enum class Kind : std::uint8_t { Text, Number, Time };

  Kind kind = Kind::Text;
  std::string text;           // a text, or a number as it was written; * and ? are wildcards
  double number = 0;          // a number, or a time in seconds since 1970
  bool ignoresCase = false;   // c
  bool ignoresMarks = false;  // d
  bool isByWord = false;      // w
};

enum class Comparison : std::uint8_t { Equal, Less, LessOrEqual, Greater, GreaterOrEqual, InRange };

/// Messages with an attribute, or an element of one that is a list, that compares so with the
/// value.
struct AttributeTest {
  std::string name;  // "*" for any
  Comparison comparison = Comparison::Equal;
  AttributeValue value;
  AttributeValue upper = {};  // of InRange; both ends belong to it
};

/// A node of the tree. Its depth is bounded by the parsers.
struct QueryNode {
  enum class Kind : std::uint8_t { Everything, And, Or, Not, Test };
  using Test = std::variant<TextTest, DateTest, FlagTest, AttributeTest>;

  Kind kind = Kind::Everything;
  std::vector<QueryNode> children = {};  // two or more of And and Or, one of Not
  Test test = {};                        // of Test

  static QueryNode of(Test test) { return {Kind::Test, {}, std::move(test)}; }
  static QueryNode negated(QueryNode node) {
    QueryNode result{Kind::Not};
    result.children.push_back(std::move(node));
    return result;
  }
  /// And or Or of several; a single one stands for itself, and lists within lists become one.
  static QueryNode joined(Kind kind, std::vector<QueryNode> nodes);
};

/// The tree as text, such as (and subject:"a" (not any:"b"*)): for tests and for finding faults.
std::string descriptionOf(const QueryNode& node);

}  // namespace kbx
