// QueryParser: from the text of a query to its tree.
#pragma once

#include <cstddef>
#include <string_view>

#include "host/search/Query.h"
#include "host/search/QueryFault.h"

namespace kbx {

/// What a query may have at most; more is a fault.
inline constexpr std::size_t kLongestQuery = 16 << 10;  // bytes
inline constexpr std::size_t kMostTerms = 256;
inline constexpr int kDeepestQuery = 20;  // parentheses and negations within each other

/// The tree of a query in the language of docs/search.md: of words, or of attributes where it
/// holds an operator. Dates are taken at the present moment by Clock and LocalTime.
///
/// Raises QueryFault. Any bytes may come; those that are no UTF-8 are looked for as they are.
QueryNode parseQuery(std::string_view text);

/// Whether the text is a query of attributes: outside of quotes it holds ==, !=, &&, ||, InRange(,
/// a word and <, >, <= or >= before a value, or the name of an attribute and =, < or >.
bool isAttributeQuery(std::string_view text);

}  // namespace kbx
