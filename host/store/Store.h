// Store: one file that remembers what was imported and finds it again. docs/store.md explains it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/store/Database.h"
#include "host/store/StoredMessage.h"
#include "platform/objects/NSDictionary.h"

namespace kbx {

class WriterLock;

/// How a file looked when it was imported. Times are in nanoseconds since 1970.
struct FileState {
  std::uint64_t device = 0, inode = 0, size = 0;
  std::int64_t modified = 0, changed = 0;

  bool operator==(const FileState&) const = default;
};

/// A file that the store knows.
struct StoredFile {
  std::int64_t id;
  std::string_view path;  // absolute, in bytes, as all views here valid during the call only
  FileState state;
  std::optional<std::string_view> hash;
  std::optional<std::string_view> failure;  // why there is no message
};

/// The store of a user who names none: "ferncase/mail.db" in XDG_DATA_HOME, or in .local/share
/// below HOME. Absent when the environment names neither by an absolute path.
std::optional<std::string> defaultStorePath();

/// A connection that reads. It sees the store as it was when its first statement since the last
/// one ended began; writers neither wait for it nor make it wait. Belongs to one thread.
class StoreReader {
 public:
  /// Absent with an error of StoreErrors.h when there is no store, or none of this version.
  static std::unique_ptr<StoreReader> open(const std::string& path, Ref<NSError>* error);
  virtual ~StoreReader();

  /// For queries: the tokenizer is registered.
  Database& database() noexcept { return *_database; }
  const std::string& path() const noexcept { return _database->path(); }

  /// Calls `take` for each file below the folder, in the order of the paths' bytes, until it
  /// answers false. The store must not be changed meanwhile by the same connection.
  ///
  /// folder  absolute, with or without a slash at its end; "/" is everything
  ///
  /// False with an error when the store cannot be read.
  bool eachFileBelow(std::string_view folder, const std::function<bool(const StoredFile&)>& take,
                     Ref<NSError>* error);
  /// The attributes as they were imported; absent without an error when there is no such message.
  Ref<NSDictionary> attributesOf(std::int64_t id, Ref<NSError>* error);
  /// Absent without an error when the store does not know the file.
  std::optional<std::int64_t> idOfPath(std::string_view path, Ref<NSError>* error);

 protected:
  explicit StoreReader(std::unique_ptr<Database> database);

 private:
  std::unique_ptr<Database> _database;
};

/// The one connection that writes. Outside of begin() and commit() each change is a transaction of
/// its own. Belongs to one thread.
class StoreWriter final : public StoreReader {
 public:
  /// Makes the store and its folder where they are missing, and brings an older one up to date.
  /// Absent with StoreBusyError, which names the process, while another one writes.
  static std::unique_ptr<StoreWriter> open(const std::string& path, Ref<NSError>* error);
  /// What was not committed is undone. A change that fails undoes everything since begin().
  ~StoreWriter() override;

  bool begin(Ref<NSError>* error);
  bool commit(Ref<NSError>* error);
  /// Undoes everything since begin(). Harmless when nothing began.
  void rollback();

  /// Stores a message, in place of what the store knows of the path.
  ///
  /// hash  of the content; empty when it is not known
  bool put(std::string_view path, const FileState& state, std::string_view hash,
           NSDictionary* attributes, Ref<NSError>* error);
  /// The same for a row that somebody made already.
  bool put(std::string_view path, const FileState& state, std::string_view hash,
           const StoredMessage& message, Ref<NSError>* error);
  /// Stores that the file gave no message, in place of what the store knows of the path.
  bool putFailure(std::string_view path, const FileState& state, std::string_view reason,
                  Ref<NSError>* error);
  /// The message keeps its id under the new path; what the store knew there is removed. Nothing
  /// happens when it does not know the old one.
  bool move(std::string_view oldPath, std::string_view newPath, const FileState& state,
            Ref<NSError>* error);
  /// Puts states ("com_apple_mail_read" and the like) in the place of those that were imported; the
  /// words of the message stay. Nothing happens when they are known already, or when there is no
  /// message.
  bool changeStates(std::string_view path, NSDictionary* states, Ref<NSError>* error);
  /// Forgets a file and its message.
  bool remove(std::string_view path, Ref<NSError>* error);
  /// Stores that the file looks different and its content is the same.
  bool touch(std::string_view path, const FileState& state, Ref<NSError>* error);

 private:
  struct Statements;
  StoreWriter(std::unique_ptr<Database> database, std::unique_ptr<WriterLock> lock);

  bool findFile(std::string_view path, std::int64_t& id, Ref<NSError>* error);
  std::optional<std::int64_t> putFile(std::string_view path, const FileState& state,
                                      std::string_view hash, std::string_view failure,
                                      Ref<NSError>* error);
  bool forgetMessage(std::int64_t id, Ref<NSError>* error);
  bool runWithTexts(Statement& words, std::int64_t id, Ref<NSError>* error);
  bool removeId(std::int64_t id, Ref<NSError>* error);
  bool changeStatesOf(std::int64_t id, NSDictionary* states, Ref<NSError>* error);
  bool rename(std::int64_t id, std::string_view oldPath, std::string_view newPath,
              Ref<NSError>* error);
  template <class Body>
  bool change(Ref<NSError>* error, Body body);

  std::unique_ptr<WriterLock> _lock;
  std::unique_ptr<Statements> _statements;
  bool _hasBegun = false;
};

}  // namespace kbx
