// The entry point of ferncase_fts.so, with which any program on SQLite opens a store:
//   sqlite3 -cmd '.load …/lib/ferncase/ferncase_fts' mail.db
#include <sqlite3ext.h>

#include "host/tokenizer/FTS5Tokenizer.h"

extern "C" {
SQLITE_EXTENSION_INIT1

__attribute__((visibility("default"))) int sqlite3_ferncasefts_init(
    sqlite3* connection, char**, const sqlite3_api_routines* routines) {
  SQLITE_EXTENSION_INIT2(routines);
  return kbx::registerTokenizer(connection);
}
}
