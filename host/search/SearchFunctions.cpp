#include "host/search/SearchFunctions.h"

#include <sqlite3.h>

namespace kbx {
namespace {

template <class Object>
Object* objectIn(sqlite3_value* value, const char* type) {
  return static_cast<Object*>(sqlite3_value_pointer(value, type));
}

void isIn(sqlite3_context* context, int, sqlite3_value** arguments) {
  if (const auto* set = objectIn<const IdSet>(arguments[0], kIdSetType))
    sqlite3_result_int(context, set->contains(sqlite3_value_int64(arguments[1])) ? 1 : 0);
}

void rank(sqlite3_context* context, int, sqlite3_value** arguments) {
  const auto* table = objectIn<const RankTable>(arguments[0], kRankType);
  if (!table) return;
  sqlite3_result_double(context, rankOf(*table, sqlite3_value_int64(arguments[1])));
}

}  // namespace

void registerSearchFunctions(Database& database) {
  // A connection that has them and uses them right now refuses, which is as good.
  const auto add = [&](const char* name, auto function) {
    sqlite3_create_function_v2(database.handle(), name, 2, SQLITE_UTF8 | SQLITE_DIRECTONLY, nullptr,
                               function, nullptr, nullptr, nullptr);
  };
  add("ferncase_in", isIn);
  add("ferncase_rank", rank);
}

}  // namespace kbx
