#include "host/quick/QuickSearch.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>
#include <variant>

#include "host/console/Command.h"
#include "host/search/PrefixWalk.h"
#include "host/search/QueryFault.h"

namespace kbx {
namespace {

bool comparesAttributes(const QueryNode& node) {
  return std::ranges::any_of(node.children, comparesAttributes) ||
         std::holds_alternative<AttributeTest>(node.test);
}

std::optional<QueryNode> wordsOf(const std::string& text) {
  try {
    QueryNode query = parseQuery(text);
    if (comparesAttributes(query)) return std::nullopt;
    return query;
  } catch (const QueryFault&) {
    return std::nullopt;
  }
}

std::optional<int> printCount(Search& search, Output& output) {
  const auto count = search.count(nullptr);
  if (!count) return std::nullopt;
  output.write(std::to_string(*count) + "\n");
  return *count > 0 ? kDone : kUndone;
}

/// Everything is gathered first: a store that fails on the way is a matter for the host, which
/// begins again.
std::optional<int> printPaths(Search& search, char end, Output& output) {
  std::string paths;
  const auto take = [&](std::string_view path) {
    paths.append(path).push_back(end);
    return true;
  };
  if (!search.runPaths(take, nullptr)) return std::nullopt;
  output.write(paths);
  return paths.empty() ? kUndone : kDone;
}

int finished(int code, Output& output, Output& complaints) {
  if (output.flush()) return code;
  if (output.failure() == EPIPE) return kReaderGone;  // whoever read has what it wanted
  complaints.write(
      "ferncase: standard output: " + std::generic_category().message(output.failure()) + "\n");
  return kBroken;
}

}  // namespace

std::optional<int> quickSearch(const QuickArguments& arguments, Output& output,
                               Output& complaints) {
  const auto query = wordsOf(arguments.query);
  const auto path = arguments.database.empty() ? defaultStorePath() : arguments.database;
  // A walk reads messages, in whatever characters they are written.
  if (!query || !path || PrefixWalk::isFor(*query, arguments.settings)) return std::nullopt;
  const auto reader = StoreReader::open(*path, nullptr);
  if (!reader) return std::nullopt;
  Search search(*reader, *query, arguments.settings);
  const auto code =
      arguments.isCount ? printCount(search, output) : printPaths(search, arguments.end, output);
  return code ? std::optional(finished(*code, output, complaints)) : std::nullopt;
}

}  // namespace kbx
