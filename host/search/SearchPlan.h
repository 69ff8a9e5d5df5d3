// SearchPlan: a query as a condition of SQL.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "host/search/AttributeMatcher.h"
#include "host/search/Query.h"

namespace kbx {

/// The words of a query go to the full-text index, as few questions as possible, each of which
/// gives a set of ids; everything else becomes conditions on the columns of `message m`. What has
/// no column is asked of the attributes of each row that the rest leaves over.
///
/// Nothing of the query stands in the SQL itself: values are bound, words are quoted.
class SearchPlan {
 public:
  /// Parameters of the condition: a number, a text, the number of a match, or of a matcher.
  struct Match {
    std::size_t index;
  };
  struct Matcher {
    std::size_t index;
  };
  using Parameter = std::variant<double, Match, Matcher>;

  explicit SearchPlan(const QueryNode& query);

  /// With the parameters ?1, ?2, … in this order; functions as in SearchFunctions.h.
  const std::string& condition() const noexcept { return _condition; }
  const std::vector<Parameter>& parameters() const noexcept { return _parameters; }
  /// What the full-text index is asked.
  const std::vector<std::string>& matches() const noexcept { return _matches; }
  const std::vector<std::unique_ptr<AttributeMatcher>>& matchers() const noexcept {
    return _matchers;
  }
  /// The matches to which all that is found belongs.
  const std::vector<std::size_t>& required() const noexcept { return _required; }
  /// Whether what is found is exactly what the only match gives.
  bool isMatchAlone() const noexcept { return _isMatchAlone; }
  /// Any of the words by which messages are found, for the full-text index: empty for none.
  const std::string& words() const noexcept { return _words; }

 private:
  enum class Kind : unsigned char {
    Everything,
    Nothing,
    Wordless,  // a term without a word: left out where others stand beside it
    Match,     // `text` is for the full-text index
    NoMatch,   // the same, negated
    Condition  // `text` is SQL
  };
  struct Part {
    Kind kind;
    std::string text = {};
    int cost = 0;                  // of a condition, relative to others
    int depth = 0;                 // of a match: parentheses within each other
    std::size_t match = SIZE_MAX;  // of a condition that is one match
  };
  class Conjunction;

  Part compile(const QueryNode& node);
  Part compileAnd(const std::vector<QueryNode>& children);
  Part compileOr(const std::vector<QueryNode>& children);
  Part compileNot(const QueryNode& child);
  Part compileTest(const TextTest& test);
  Part compileTest(const DateTest& test);
  Part compileTest(const FlagTest& test);
  Part compileTest(const AttributeTest& test);
  Part compileColumn(const AttributeTest& test, const char* column, double number, double upper);
  Part compileMatcher(const AttributeTest& test);
  /// A condition for any part.
  Part conditionOf(Part part);
  std::string parameter(Parameter value);
  void collectWords(const QueryNode& node, std::vector<std::string>& words);

  std::string _condition, _words;
  std::vector<Parameter> _parameters;
  std::vector<std::string> _matches;
  std::vector<std::unique_ptr<AttributeMatcher>> _matchers;
  std::vector<std::size_t> _required;
  bool _isMatchAlone = false;
};

}  // namespace kbx
