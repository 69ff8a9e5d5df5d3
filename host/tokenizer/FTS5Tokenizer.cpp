#include "host/tokenizer/FTS5Tokenizer.h"

#ifdef FERNCASE_LOADABLE
#include <sqlite3ext.h>
// The program that loads the extension brings its own SQLite along.
extern "C" {
SQLITE_EXTENSION_INIT3
}
#else
#include <sqlite3.h>
#endif

#include <string_view>

#include "host/tokenizer/Tokenizer.h"

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

TokenPurpose purposeOf(int flags) {
  if ((flags & FTS5_TOKENIZE_PREFIX) != 0) return TokenPurpose::PrefixQuery;
  if ((flags & FTS5_TOKENIZE_QUERY) != 0) return TokenPurpose::Query;
  return (flags & FTS5_TOKENIZE_AUX) != 0 ? TokenPurpose::Offsets : TokenPurpose::Index;
}

int create(void*, const char**, int count, Fts5Tokenizer** made) {
  static char instance;  // it has no state
  *made = reinterpret_cast<Fts5Tokenizer*>(&instance);
  return count == 0 ? SQLITE_OK : SQLITE_ERROR;  // and no options
}

void destroy(Fts5Tokenizer*) {}

int tokenizeText(Fts5Tokenizer*, void* context, int flags, const char* text, int length,
                 int (*take)(void*, int, const char*, int, int, int)) {
  static_assert(kColocatedToken == FTS5_TOKEN_COLOCATED);
  if (!text || length <= 0) return SQLITE_OK;
  return tokenize({text, static_cast<std::size_t>(length)}, purposeOf(flags), {take, context});
}

}  // namespace

int registerTokenizer(sqlite3* connection) {
  fts5_api* const api = fts5Of(connection);
  if (!api) return SQLITE_ERROR;
  fts5_tokenizer tokenizer{create, destroy, tokenizeText};
  return api->xCreateTokenizer(api, "ferncase", nullptr, &tokenizer, nullptr);
}

}  // namespace kbx
