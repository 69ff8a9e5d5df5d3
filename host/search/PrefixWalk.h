// PrefixWalk: the first messages with a word that begins as most messages have one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/search/Search.h"

namespace kbx {

/// The index answers "a*" from every place of every word with an a, which takes as long as the
/// store is large. Where most messages have such a word a page is found sooner in the messages
/// themselves: in their order, word by word, until the page is full.
class PrefixWalk {
 public:
  /// Whether a walk may be worth it: the query is one beginning of a word and no more, that is
  /// short, and a page is wanted.
  static bool isFor(const QueryNode& query, const SearchSettings& settings);

  /// query  one that isFor() knows
  PrefixWalk(Database& database, const QueryNode& query, const SearchSettings& settings);

  /// The ids of the page, in their order; those of a page by rank are by date, because what most
  /// messages have says nothing of any. Absent where fewer than half of the messages that were
  /// looked at have such a word, which the index finds sooner; also where a message cannot be read,
  /// which the index will tell.
  std::optional<std::vector<std::int64_t>> page();

 private:
  std::string order() const;
  /// Whether the message has such a word; absent when it cannot be read.
  std::optional<bool> isMatch(std::int64_t id);

  Database& _database;
  const SearchSettings& _settings;
  const int _columns;
  std::string _beginning;
  Statement _texts;
  std::size_t _bytesRead = 0;
};

}  // namespace kbx
