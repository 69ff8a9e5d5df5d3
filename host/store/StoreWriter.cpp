#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "host/store/Schema.h"
#include "host/store/Store.h"
#include "host/store/StoreErrors.h"
#include "host/store/WriterLock.h"
#include "host/tokenizer/FTS5Tokenizer.h"

namespace kbx {
namespace {

// What counts before anything is known of the file, and leaves it as it is.
constexpr char kUsing[] =
    "PRAGMA page_size = 8192;"
    "PRAGMA cache_size = -32768;"
    "PRAGMA temp_store = MEMORY;"
    "PRAGMA synchronous = NORMAL;";

// The log reaches the disk when it is copied back, not with each transaction: a power cut may undo
// the last ones, never a part of one.
constexpr char kLogging[] =
    "PRAGMA journal_mode = WAL;"
    "PRAGMA journal_size_limit = 67108864;";

bool makeFolderOf(const std::string& path, Ref<NSError>* error) {
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  std::error_code failure;
  if (folder.empty() || std::filesystem::is_directory(folder, failure)) return true;
  if (std::filesystem::create_directories(folder, failure); !failure) {
    // Mail is nobody else's business.
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all, failure);
    return true;
  }
  tell(error, storeError(StoreUnreadableError, path,
                         "its folder cannot be made (" + failure.message() + ")"));
  return false;
}

/// Makes the file for its user alone, where there is none. An existing one is not even opened:
/// closing it would give up the locks that a reader in this process may hold.
void makePrivateFile(const std::string& path) {
  const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (descriptor >= 0) ::close(descriptor);
}

}  // namespace

/// All statements that change the store, prepared once.
struct StoreWriter::Statements {
  explicit Statements(Database& database)
      : idOfPath(database, "SELECT id FROM file WHERE path = ?1"),
        addFile(database,
                "INSERT INTO file (path, device, inode, size, modified, changed, hash, failure)"
                " VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)"),
        changeFile(database,
                   "UPDATE file SET device = ?2, inode = ?3, size = ?4, modified = ?5,"
                   " changed = ?6, hash = ?7, failure = ?8 WHERE id = ?1"),
        touchFile(database,
                  "UPDATE file SET device = ?2, inode = ?3, size = ?4, modified = ?5,"
                  " changed = ?6, path = ?7 WHERE id = ?1"),
        removeFile(database, "DELETE FROM file WHERE id = ?1"),
        addMessage(database,
                   "INSERT INTO message (id, date, received, is_read, is_flagged, is_replied,"
                   " is_junk, has_attachment, size, message_id, file, subject, sender, recipient,"
                   " cc, bcc, attachment, list, body, attributes) VALUES (?1, ?2, ?3, ?4, ?5, ?6,"
                   " ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, ?16, ?17, ?18, ?19, ?20)"),
        renameMessage(database, "UPDATE message SET file = ?2 WHERE id = ?1"),
        changeStates(database,
                     "UPDATE message SET is_read = ?2, is_flagged = ?3, is_replied = ?4,"
                     " attributes = ?5 WHERE id = ?1"),
        removeMessage(database, "DELETE FROM message WHERE id = ?1"),
        texts(database,
              "SELECT subject, sender, recipient, cc, bcc, body, attachment, file, list"
              " FROM message WHERE id = ?1"),
        addWords(database,
                 "INSERT INTO word (rowid, subject, sender, recipient, cc, bcc, body, attachment,"
                 " file, list) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)"),
        removeWords(database,
                    "INSERT INTO word (word, rowid, subject, sender, recipient, cc, bcc, body,"
                    " attachment, file, list)"
                    " VALUES ('delete', ?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)") {}

  Statement idOfPath, addFile, changeFile, touchFile, removeFile, addMessage, renameMessage,
      changeStates, removeMessage, texts, addWords, removeWords;
};

StoreWriter::StoreWriter(std::unique_ptr<Database> database, std::unique_ptr<WriterLock> lock)
    : StoreReader(std::move(database)),
      _lock(std::move(lock)),
      _statements(std::make_unique<Statements>(this->database())) {}

StoreWriter::~StoreWriter() { rollback(); }

std::unique_ptr<StoreWriter> StoreWriter::open(const std::string& path, Ref<NSError>* error) {
  if (!makeFolderOf(path, error)) return nullptr;
  auto lock = WriterLock::take(path, error);
  if (!lock) return nullptr;
  makePrivateFile(path);
  auto database = Database::open(path, Database::Access::Creating, error);
  if (!database) return nullptr;
  if (registerTokenizer(database->handle()) != 0) {
    tell(error, database->lastError());
    return nullptr;
  }
  if (!database->run(kUsing, error) || !prepareStore(*database, error) ||
      !database->run(kLogging, error))
    return nullptr;
  return std::unique_ptr<StoreWriter>(new StoreWriter(std::move(database), std::move(lock)));
}

bool StoreWriter::begin(Ref<NSError>* error) {
  if (!database().run("BEGIN IMMEDIATE", error)) return false;
  _hasBegun = true;
  return true;
}

bool StoreWriter::commit(Ref<NSError>* error) {
  if (!_hasBegun || !database().run("COMMIT", error)) {
    if (!_hasBegun)
      tell(error, storeError(StoreFailedError, path(), "nothing began that could be stored"));
    rollback();
    return false;
  }
  _hasBegun = false;
  return true;
}

void StoreWriter::rollback() {
  database().run("ROLLBACK", nullptr);
  _hasBegun = false;
}

/// Runs the body in the caller's transaction or in one of its own, which a failure undoes: a half
/// change must not be stored.
template <class Body>
bool StoreWriter::change(Ref<NSError>* error, Body body) {
  if (_hasBegun) {
    if (body()) return true;
    rollback();
    return false;
  }
  if (!begin(error)) return false;
  if (body()) return commit(error);
  rollback();
  return false;
}

namespace {

void bindState(Statement& statement, const FileState& state) {
  statement.bind(2, state.device).bind(3, state.inode).bind(4, state.size);
  statement.bind(5, state.modified).bind(6, state.changed);
}

}  // namespace

/// The id of a file, or 0 when the store does not know it. False on failure.
bool StoreWriter::findFile(std::string_view path, std::int64_t& id, Ref<NSError>* error) {
  Statement& file = _statements->idOfPath;
  const Statement::Step found = file.bindBytes(1, path).step(error);
  id = found == Statement::Step::Row ? file.integer(0) : 0;
  file.reset();
  return found != Statement::Step::Failed;
}

std::optional<std::int64_t> StoreWriter::putFile(std::string_view path, const FileState& state,
                                                 std::string_view hash, std::string_view failure,
                                                 Ref<NSError>* error) {
  std::int64_t known = 0;
  if (!findFile(path, known, error)) return std::nullopt;
  Statement& file = known ? _statements->changeFile : _statements->addFile;
  if (known) {
    if (!forgetMessage(known, error)) return std::nullopt;
    file.bind(1, known);
  } else {
    file.bindBytes(1, path);
  }
  bindState(file, state);
  hash.empty() ? file.bindNothing(7) : file.bindBytes(7, hash);
  failure.empty() ? file.bindNothing(8) : file.bind(8, failure);
  if (!file.run(error)) return std::nullopt;
  return known ? known : database().lastId();
}

namespace {

Statement& bindText(Statement& statement, int index, const std::optional<std::string>& text) {
  return text ? statement.bind(index, std::string_view(*text)) : statement.bindNothing(index);
}

Statement& bindFlag(Statement& statement, int index, std::optional<bool> flag) {
  return flag ? statement.bind(index, std::int64_t{*flag}) : statement.bindNothing(index);
}

void bindMessage(Statement& row, std::int64_t id, const std::string& file,
                 const StoredMessage& message) {
  row.bind(1, id).bind(2, message.date).bind(3, message.received);
  bindFlag(row, 4, message.isRead);
  bindFlag(row, 5, message.isFlagged);
  bindFlag(row, 6, message.isReplied);
  bindFlag(row, 7, message.isJunk);
  bindFlag(row, 8, message.hasAttachment);
  row.bind(9, message.size);
  bindText(row, 10, message.messageId);
  row.bind(11, std::string_view(file));
  bindText(row, 12, message.subject);
  bindText(row, 13, message.sender);
  bindText(row, 14, message.recipient);
  bindText(row, 15, message.cc);
  bindText(row, 16, message.bcc);
  bindText(row, 17, message.attachment);
  bindText(row, 18, message.list);
  bindText(row, 19, message.body);
  row.bindBytes(20, message.attributes);
}

void bindWords(Statement& words, std::int64_t id, const std::string& file,
               const StoredMessage& message) {
  words.bind(1, id);
  bindText(words, 2, message.subject);
  bindText(words, 3, message.sender);
  bindText(words, 4, message.recipient);
  bindText(words, 5, message.cc);
  bindText(words, 6, message.bcc);
  bindText(words, 7, message.body);
  bindText(words, 8, message.attachment);
  words.bind(9, std::string_view(file));
  bindText(words, 10, message.list);
}

}  // namespace

bool StoreWriter::put(std::string_view path, const FileState& state, std::string_view hash,
                      const StoredMessage& message, Ref<NSError>* error) {
  return change(error, [&] {
    const auto id = putFile(path, state, hash, {}, error);
    if (!id) return false;
    const std::string file = indexedFileName(path);
    bindMessage(_statements->addMessage, *id, file, message);
    if (!_statements->addMessage.run(error)) return false;
    bindWords(_statements->addWords, *id, file, message);
    return _statements->addWords.run(error);
  });
}

bool StoreWriter::put(std::string_view path, const FileState& state, std::string_view hash,
                      NSDictionary* attributes, Ref<NSError>* error) {
  const auto message = storedMessage(attributes, error);
  return message && put(path, state, hash, *message, error);
}

bool StoreWriter::putFailure(std::string_view path, const FileState& state, std::string_view reason,
                             Ref<NSError>* error) {
  return change(error, [&] {
    return putFile(path, state, {}, reason.empty() ? "unknown" : reason, error).has_value();
  });
}

/// Gives the texts of a message's row to a statement of the index. The index is told the very texts
/// that it was given, as it keeps none.
bool StoreWriter::runWithTexts(Statement& words, std::int64_t id, Ref<NSError>* error) {
  Statement& texts = _statements->texts;
  const Statement::Step found = texts.bind(1, id).step(error);
  bool isDone = found == Statement::Step::Done;
  if (found == Statement::Step::Row) {
    words.bind(1, id);
    for (int column = 0; column < 9; ++column) {
      if (!texts.isNothing(column)) words.bind(column + 2, texts.text(column));
    }
    isDone = words.run(error);
  }
  texts.reset();
  return isDone;
}

bool StoreWriter::forgetMessage(std::int64_t id, Ref<NSError>* error) {
  return runWithTexts(_statements->removeWords, id, error) &&
         _statements->removeMessage.bind(1, id).run(error);
}

bool StoreWriter::changeStatesOf(std::int64_t id, NSDictionary* states, Ref<NSError>* error) {
  Ref<NSError> failure;
  const auto known = attributesOf(id, &failure);
  if (!known) {
    if (failure) tell(error, failure);
    return !failure;
  }
  Ref<NSMutableDictionary> all = known->mutableCopy();
  all->addEntriesFromDictionary(states);
  if (all->isEqual(known)) return true;
  const auto message = storedMessage(all, error);
  if (!message) return false;
  Statement& row = _statements->changeStates;
  row.bind(1, id);
  bindFlag(row, 2, message->isRead);
  bindFlag(row, 3, message->isFlagged);
  bindFlag(row, 4, message->isReplied);
  return row.bindBytes(5, message->attributes).run(error);
}

bool StoreWriter::changeStates(std::string_view path, NSDictionary* states, Ref<NSError>* error) {
  return change(error, [&] {
    std::int64_t id = 0;
    return findFile(path, id, error) && (id == 0 || changeStatesOf(id, states, error));
  });
}

bool StoreWriter::removeId(std::int64_t id, Ref<NSError>* error) {
  return forgetMessage(id, error) && _statements->removeFile.bind(1, id).run(error);
}

bool StoreWriter::remove(std::string_view path, Ref<NSError>* error) {
  return change(error, [&] {
    std::int64_t id = 0;
    return findFile(path, id, error) && (id == 0 || removeId(id, error));
  });
}

/// The words of the name are part of the index, which knows whole messages only.
bool StoreWriter::rename(std::int64_t id, std::string_view oldPath, std::string_view newPath,
                         Ref<NSError>* error) {
  const std::string name = indexedFileName(newPath);
  if (name == indexedFileName(oldPath)) return true;
  return runWithTexts(_statements->removeWords, id, error) &&
         _statements->renameMessage.bind(1, id).bind(2, std::string_view(name)).run(error) &&
         runWithTexts(_statements->addWords, id, error);
}

bool StoreWriter::move(std::string_view oldPath, std::string_view newPath, const FileState& state,
                       Ref<NSError>* error) {
  return change(error, [&] {
    std::int64_t id = 0, other = 0;
    if (!findFile(oldPath, id, error) || !findFile(newPath, other, error)) return false;
    if (id == 0) return true;
    if (other != 0 && other != id && !removeId(other, error)) return false;
    if (!rename(id, oldPath, newPath, error)) return false;
    Statement& file = _statements->touchFile;
    file.bind(1, id);
    bindState(file, state);
    return file.bindBytes(7, newPath).run(error);
  });
}

bool StoreWriter::touch(std::string_view path, const FileState& state, Ref<NSError>* error) {
  return move(path, path, state, error);
}

}  // namespace kbx
