#include "host/search/QueryParser.h"

#include <string>
#include <utility>

#include "host/search/AttributeQuery.h"
#include "host/search/WordQuery.h"

namespace kbx {
namespace {

constexpr std::string_view kBlanks = " \t\n\v\f\r";

bool isNameByte(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '.' || c == '*';
}

/// The name that ends right before a place, blanks between left out.
std::string_view nameBefore(std::string_view text, std::size_t place) {
  while (place > 0 && kBlanks.find(text[place - 1]) != std::string_view::npos) --place;
  std::size_t begin = place;
  while (begin > 0 && isNameByte(text[begin - 1])) --begin;
  return text.substr(begin, place - begin);
}

bool beginsValue(std::string_view text) {
  if (text.starts_with('=')) text.remove_prefix(1);
  const std::size_t first = text.find_first_not_of(kBlanks);
  return first != std::string_view::npos &&
         std::string_view("\"'$+-0123456789").find(text[first]) != std::string_view::npos;
}

bool isOperatorAt(std::string_view text, std::size_t place) {
  const std::string_view rest = text.substr(place);
  for (std::string_view sign : {"==", "!=", "&&", "||", "InRange("})
    if (rest.starts_with(sign)) return true;
  const bool isComparison = rest[0] == '<' || rest[0] == '>';
  if (!isComparison && rest[0] != '=') return false;
  const std::string_view name = nameBefore(text, place);
  if (isComparison && !name.empty() && beginsValue(rest.substr(1))) return true;
  return name.starts_with("kMDItem") || name.starts_with("com_apple_") ||
         name.starts_with("org_ferncase_");
}

}  // namespace

bool isAttributeQuery(std::string_view text) {
  bool isQuoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') isQuoted = !isQuoted;
    if (!isQuoted && isOperatorAt(text, i)) return true;
  }
  return false;
}

namespace {

QueryNode treeOf(std::string_view text) {
  if (text.size() > kLongestQuery)
    throw QueryFault("the query has more than " + std::to_string(kLongestQuery) + " bytes", 0, 1);
  if (text.find_first_not_of(kBlanks) == std::string_view::npos)
    throw QueryFault("the query is empty", 0, 0, "*");
  return isAttributeQuery(text) ? parseAttributeQuery(text) : parseWordQuery(text);
}

/// The correction of one fault with those of its further faults; empty when some have none.
std::string wholeCorrection(std::string query) {
  constexpr int kMostFaults = 10;
  for (int i = 0; i < kMostFaults && !query.empty(); ++i) {
    try {
      treeOf(query);
      return query;
    } catch (const QueryFault& fault) {
      query = fault.correction;
    }
  }
  return {};
}

}  // namespace

QueryNode parseQuery(std::string_view text) {
  try {
    return treeOf(text);
  } catch (QueryFault& fault) {
    fault.correction = wholeCorrection(std::move(fault.correction));
    throw;
  }
}

}  // namespace kbx
