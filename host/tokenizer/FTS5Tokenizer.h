// The tokenizer "ferncase" for the full-text indexes of a connection.
#pragma once

struct sqlite3;

namespace kbx {

/// Registers "ferncase" with a connection; it must be done before a store's index is touched.
///
/// Answers a result code of SQLite, SQLITE_ERROR where the library was built without FTS5.
int registerTokenizer(sqlite3* connection);

}  // namespace kbx
