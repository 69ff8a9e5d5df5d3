// SearchFunctions: what conditions of SQL can ask of our objects.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "host/search/AttributeMatcher.h"
#include "host/search/IdSet.h"
#include "host/store/Store.h"

namespace kbx {

/// The attributes of the row that was asked for last, as several tests ask for the same one.
class AttributeRows {
 public:
  explicit AttributeRows(StoreReader& reader) : _reader(reader) {}

  /// With the file's kMDItemPath, kMDItemFSName and kMDItemFSSize. Absent when there is no such
  /// row, or with an error.
  NSDictionary* attributesOf(std::int64_t id, Ref<NSError>* error);

 private:
  Ref<NSDictionary> read(std::int64_t id, Ref<NSError>* error);

  StoreReader& _reader;
  std::int64_t _id = -1;
  Ref<NSDictionary> _attributes;
};

struct MatcherCall {
  const AttributeMatcher* matcher;
  AttributeRows* rows;
};

/// How well each message fits; less is better.
using RankTable = std::unordered_map<std::int64_t, double>;

// The types of the objects that are bound as first arguments.
inline constexpr char kIdSetType[] = "ferncase.set", kMatcherType[] = "ferncase.matcher",
                      kRankType[] = "ferncase.rank";

/// Gives a connection ferncase_in(set, id), ferncase_matches(matcher call, id),
/// ferncase_text(matcher call, text) and ferncase_rank(table, id). Harmless when it has them.
/// Arguments of any other type answer NULL.
void registerSearchFunctions(Database& database);

}  // namespace kbx
