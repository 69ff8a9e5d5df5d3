// Search: the messages of a store that a query finds. docs/search.md explains the language.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/search/QueryParser.h"
#include "host/store/Store.h"

namespace kbx {

struct SearchSettings {
  enum class Order : std::uint8_t {
    Date,  // the newest first; what has no date comes last
    Rank,  // of the newest 5,000 what fits the words best first; then by date
    Path   // by the bytes of the paths
  };

  std::vector<std::string> folders = {};  // absolute; only what lies in one of them
  Order order = Order::Date;
  bool isReversed = false;
  std::optional<std::uint64_t> limit = {};
  std::uint64_t offset = 0;  // how many to leave out at the beginning
};

/// What a list shows of a message.
struct FoundMessage {
  std::string path;            // in bytes
  std::optional<double> date;  // seconds since 1970
  std::string sender, subject;
};

/// The passage around what was found.
struct Snippet {
  std::string text;                                             // UTF-8 on one line
  std::vector<std::pair<std::size_t, std::size_t>> marks = {};  // begin and end in bytes, in order
};

/// A query at work on a store. Belongs to the reader's thread; one at a time runs on a reader,
/// which may be asked anything while it does. Costs time in proportion to the messages that have
/// the query's words, little for each; the first come at once.
class Search {
 public:
  /// Whoever sorts out what is wrong with a query calls parseQuery().
  Search(StoreReader& reader, const QueryNode& query, SearchSettings settings = {});
  ~Search();
  Search(const Search&) = delete;
  Search& operator=(const Search&) = delete;

  /// Gives `take` the id of each message in order until it answers false. All that happens
  /// meanwhile sees the store as it was at the beginning.
  ///
  /// False with an error when the store cannot be read.
  bool run(const std::function<bool(std::int64_t id)>& take, Ref<NSError>* error);

  /// The same with the path of each, in bytes, valid during the call only. Costs less than to ask
  /// for each path by itself.
  bool runPaths(const std::function<bool(std::string_view path)>& take, Ref<NSError>* error);

  /// How many there are, within the limit and behind the offset. Absent with an error when the
  /// store cannot be read.
  std::optional<std::uint64_t> count(Ref<NSError>* error);

  /// Absent when the message has gone, or with an error.
  std::optional<FoundMessage> message(std::int64_t id, Ref<NSError>* error);
  /// The path alone, which costs less.
  std::optional<std::string> path(std::int64_t id, Ref<NSError>* error);

  /// The words of the query in the text that has most of them; the beginning of the body where the
  /// query has no words in it. Absent when the message has gone, or with an error.
  std::optional<Snippet> snippet(std::int64_t id, Ref<NSError>* error);

 private:
  class Run;
  struct Lookups;

  std::optional<std::vector<std::int64_t>> walkedPage();
  bool eachPath(std::span<const std::int64_t> ids,
                const std::function<bool(std::string_view path)>& take, Ref<NSError>* error);

  StoreReader& _reader;
  const SearchSettings _settings;
  const std::optional<QueryNode> _beginning;  // the query, where a PrefixWalk may find its page
  const std::unique_ptr<const class SearchPlan> _plan;
  const std::unique_ptr<Lookups> _lookups;
};

}  // namespace kbx
