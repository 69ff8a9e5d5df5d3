#include "host/store/Schema.h"

#include <string>

#include "host/store/StoreErrors.h"

namespace kbx {
namespace {

// What is searched and sorted by stands before the long texts, so that it lies on the row's first
// page.
constexpr char kTables[] = R"sql(
CREATE TABLE file (
  id INTEGER PRIMARY KEY,
  path BLOB NOT NULL UNIQUE,
  device INTEGER NOT NULL,
  inode INTEGER NOT NULL,
  size INTEGER NOT NULL,
  modified INTEGER NOT NULL,
  changed INTEGER NOT NULL,
  hash BLOB,
  failure TEXT
);
CREATE INDEX file_identity ON file (device, inode);
CREATE TABLE message (
  id INTEGER PRIMARY KEY REFERENCES file(id) ON DELETE CASCADE,
  date REAL,
  received REAL,
  is_read INTEGER,
  is_flagged INTEGER,
  is_replied INTEGER,
  is_junk INTEGER,
  has_attachment INTEGER,
  size INTEGER,
  message_id TEXT,
  file TEXT,
  subject TEXT,
  sender TEXT,
  recipient TEXT,
  cc TEXT,
  bcc TEXT,
  attachment TEXT,
  list TEXT,
  body TEXT,
  attributes BLOB
);
-- A search walks it from one end and looks at nothing else for dates and states.
CREATE INDEX message_date ON message
  (date, id, is_read, is_flagged, is_replied, is_junk, has_attachment);
CREATE TABLE folder (
  path BLOB PRIMARY KEY,
  indexed INTEGER
) WITHOUT ROWID;
CREATE TABLE setting (
  name TEXT PRIMARY KEY,
  value BLOB
) WITHOUT ROWID;
CREATE VIRTUAL TABLE word USING fts5 (
  subject, sender, recipient, cc, bcc, body, attachment, file, list,
  content='message', content_rowid='id', tokenize='ferncase'
);
-- Words gather in memory until a transaction ends or they have this size. The default of 1 MiB
-- makes so many small segments of a large transaction that merging them takes a third of the time.
INSERT INTO word (word, rank) VALUES ('hashsize', 33554432);
)sql";

bool setVersion(Database& database, std::int64_t version, Ref<NSError>* error) {
  return database.run("PRAGMA user_version = " + std::to_string(version), error);
}

/// Runs the body in a transaction that is undone when it fails.
template <class Body>
bool inTransaction(Database& database, Ref<NSError>* error, Body body) {
  if (!database.run("BEGIN IMMEDIATE", error)) return false;
  if (body() && database.run("COMMIT", error)) return true;
  database.run("ROLLBACK", nullptr);
  return false;
}

struct Identity {
  std::int64_t application;
  std::int64_t version;
  bool isEmpty;
};

std::optional<Identity> identityOf(Database& database, Ref<NSError>* error) {
  const auto application = database.integer("PRAGMA application_id", error);
  if (!application) return std::nullopt;
  const auto version = database.integer("PRAGMA user_version", error);
  if (!version) return std::nullopt;
  const auto tables = database.integer("SELECT count(*) FROM sqlite_master", error);
  if (!tables) return std::nullopt;
  return Identity{*application, *version, *tables == 0};
}

/// Whether the file is a store, of whatever version.
bool isStore(const Identity& identity) {
  return identity.application == kStoreApplication && identity.version > 0;
}

bool refuse(Ref<NSError>* error, StoreErrorCode code, const Database& database,
            std::string_view reason) {
  tell(error, storeError(code, database.path(), reason));
  return false;
}

bool refuseForeign(Ref<NSError>* error, const Database& database) {
  return refuse(error, StoreForeignError, database, "is a database, but no store of Ferncase");
}

bool refuseNewer(Ref<NSError>* error, const Database& database) {
  return refuse(error, StoreNewerError, database,
                "was made by a newer version of Ferncase; use that one, or another file");
}

bool makeTables(Database& database, std::int64_t newest, Ref<NSError>* error) {
  return inTransaction(database, error, [&] {
    return database.run(kTables, error) &&
           database.run("PRAGMA application_id = " + std::to_string(kStoreApplication), error) &&
           setVersion(database, newest, error);
  });
}

bool migrate(Database& database, const Migration& step, Ref<NSError>* error) {
  return inTransaction(database, error, [&] {
    return database.run(step.sql, error) && setVersion(database, step.from + 1, error);
  });
}

}  // namespace

std::span<const Migration> storeMigrations() {
  static constexpr Migration steps[] = {
      // Attributes may be packed from now on, which older programs do not know; those that are
      // there stay as they are. Signs like "²" have become words of their own.
      {1, "INSERT INTO word (word) VALUES ('rebuild')"}};
  return steps;
}

bool isReadableStore(Database& database, Ref<NSError>* error) {
  const auto identity = identityOf(database, error);
  if (!identity) return false;
  if (identity->isEmpty)
    return refuse(error, StoreForeignError, database, "the store is empty; index a folder first");
  if (!isStore(*identity)) return refuseForeign(error, database);
  if (identity->version > kStoreVersion) return refuseNewer(error, database);
  if (identity->version < kStoreVersion)
    return refuse(
        error, StoreOlderError, database,
        "was made by an older version of Ferncase; `ferncase index` brings it up to date");
  return true;
}

bool prepareStore(Database& database, std::span<const Migration> steps, std::int64_t newest,
                  Ref<NSError>* error) {
  const auto identity = identityOf(database, error);
  if (!identity) return false;
  if (identity->isEmpty && identity->application == 0) return makeTables(database, newest, error);
  if (!isStore(*identity)) return refuseForeign(error, database);
  if (identity->version > newest) return refuseNewer(error, database);
  std::int64_t version = identity->version;
  for (const Migration& step : steps) {
    if (step.from != version) continue;
    if (!migrate(database, step, error)) return false;
    ++version;
  }
  if (version == newest) return true;
  return refuse(error, StoreOlderError, database,
                "was made by a version of Ferncase that is too old; remove it and index again");
}

bool prepareStore(Database& database, Ref<NSError>* error) {
  return prepareStore(database, storeMigrations(), kStoreVersion, error);
}

}  // namespace kbx
