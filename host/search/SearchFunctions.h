// SearchFunctions: what conditions of SQL can ask of our objects.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "host/search/IdSet.h"
#include "host/store/Database.h"

namespace kbx {

/// How well each message fits; less is better.
using RankTable = std::unordered_map<std::int64_t, double>;

/// Of a message that the table does not know it is 0, which is more than all others have.
inline double rankOf(const RankTable& table, std::int64_t id) {
  const auto found = table.find(id);
  return found == table.end() ? 0 : found->second;
}

// The types of the objects that are bound as first arguments.
inline constexpr char kIdSetType[] = "ferncase.set", kRankType[] = "ferncase.rank";

/// Gives a connection ferncase_in(set, id) and ferncase_rank(table, id). Harmless when it has them.
/// Arguments of any other type answer NULL.
void registerSearchFunctions(Database& database);

}  // namespace kbx
