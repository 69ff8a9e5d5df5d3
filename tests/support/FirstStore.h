// FirstStore: a store as the first version of the program made it.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "host/store/Database.h"
#include "host/store/StoredMessage.h"
#include "host/tokenizer/FTS5Tokenizer.h"

namespace kbx {

// Kept as they were, whatever becomes of the present ones.
inline constexpr char kFirstTables[] = R"sql(
PRAGMA page_size = 8192;
PRAGMA journal_mode = WAL;
BEGIN;
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
INSERT INTO word (word, rank) VALUES ('hashsize', 33554432);
PRAGMA application_id = 0x4665726E;
PRAGMA user_version = 1;
COMMIT;
)sql";

/// Makes such a store where there is none, to be filled with messages of paths that it does not
/// know.
class FirstStore {
 public:
  explicit FirstStore(const std::string& path)
      : _database(Database::open(path, Database::Access::Creating, &_error)) {
    EXPECT_TRUE(_database);
    EXPECT_EQ(registerTokenizer(_database->handle()), 0);
    run(kFirstTables);
  }

  void put(const std::string& path, NSDictionary* attributes) {
    const auto message = storedMessage(attributes, &_error);
    ASSERT_TRUE(message);
    Statement file(*_database, "INSERT INTO file VALUES (NULL, ?1, 1, 2, 3, 4, 5, NULL, NULL)");
    ASSERT_TRUE(file.bindBytes(1, path).run(&_error));
    const std::string name = indexedFileName(path), subject = message->subject.value_or(""),
                      body = message->body.value_or("");
    Statement row(*_database, "INSERT INTO message (id, file, subject, body, attributes)"
                              " VALUES (last_insert_rowid(), ?1, ?2, ?3, ?4)");
    row.bind(1, std::string_view(name)).bind(2, std::string_view(subject));
    row.bind(3, std::string_view(body));
    ASSERT_TRUE(row.bindBytes(4, message->attributes).run(&_error));
    run("INSERT INTO word (rowid, subject, body, file)"
        " SELECT id, subject, body, file FROM message WHERE id = last_insert_rowid()");
  }
  void run(const char* sql) { ASSERT_TRUE(_database->run(sql, &_error)) << said(); }

 private:
  std::string said() const { return _error ? _error->localizedDescription()->lossyUTF8() : ""; }

  Ref<NSError> _error;
  std::unique_ptr<Database> _database;
};

}  // namespace kbx
