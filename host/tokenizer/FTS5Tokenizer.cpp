#include "host/tokenizer/FTS5Tokenizer.h"

#include <sqlite3.h>

namespace kbx {
namespace {

fts5_api* fts5Of(sqlite3* connection) {
  fts5_api* api = nullptr;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(connection, "SELECT fts5(?1)", -1, &statement, nullptr) != SQLITE_OK)
    return nullptr;
  sqlite3_bind_pointer(statement, 1, static_cast<void*>(&api), "fts5_api_ptr", nullptr);
  sqlite3_step(statement);
  sqlite3_finalize(statement);
  return api;
}

}  // namespace

int registerTokenizer(sqlite3* connection) {
  fts5_api* const api = fts5Of(connection);
  if (!api) return SQLITE_ERROR;
  void* context = nullptr;
  fts5_tokenizer tokenizer;
  const int found = api->xFindTokenizer(api, "unicode61", &context, &tokenizer);
  if (found != SQLITE_OK) return found;
  return api->xCreateTokenizer(api, "ferncase", context, &tokenizer, nullptr);
}

}  // namespace kbx
