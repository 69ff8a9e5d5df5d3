#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "host/store/Schema.h"
#include "host/store/Store.h"
#include "host/store/StoreErrors.h"
#include "host/tokenizer/FTS5Tokenizer.h"

namespace kbx {
namespace {

// The file is not mapped into memory: a disk that fails would end the process, where a call that
// fails is an error.
constexpr char kReading[] = "PRAGMA query_only = 1; PRAGMA cache_size = -16384;";

bool isThere(const std::string& path) {
  struct stat state;
  return ::stat(path.c_str(), &state) == 0;
}

bool hasContent(const std::string& path) {
  struct stat state;
  return ::stat(path.c_str(), &state) == 0 && state.st_size > 0;
}

/// The file itself, by whatever name it was called: its log lies beside it.
std::filesystem::path realPath(const std::string& path) {
  std::error_code failure;
  const auto real = std::filesystem::weakly_canonical(path, failure);
  return failure ? std::filesystem::path(path) : real;
}

/// Whether the store lies where nobody writes, this process at least, and nothing waits in its log.
/// The database cannot make the log's index there, and needs none.
bool canBeReadAsFixed(const std::string& path) {
  const std::filesystem::path real = realPath(path);
  return ::access(real.parent_path().c_str(), W_OK) != 0 && !hasContent(real.string() + "-wal");
}

std::unique_ptr<Database> openAs(const std::string& path, Database::Access access,
                                 Ref<NSError>* error) {
  auto database = Database::open(path, access, error);
  if (!database || !database->run(kReading, error) || !isReadableStore(*database, error))
    return nullptr;
  return database;
}

std::unique_ptr<Database> openForReading(const std::string& path, Ref<NSError>* error) {
  Ref<NSError> failure;
  if (auto database = openAs(path, Database::Access::Reading, &failure)) return database;
  if (failure && failure->code() == StoreUnreadableError && canBeReadAsFixed(path))
    if (auto database = openAs(path, Database::Access::FixedReading, &failure)) return database;
  tell(error, failure);
  return nullptr;
}

StoredFile fileIn(const Statement& row) {
  StoredFile file;
  file.id = row.integer(0);
  file.path = row.bytes(1);
  file.state = {static_cast<std::uint64_t>(row.integer(2)),
                static_cast<std::uint64_t>(row.integer(3)),
                static_cast<std::uint64_t>(row.integer(4)), row.integer(5), row.integer(6)};
  if (!row.isNothing(7)) file.hash = row.bytes(7);
  if (!row.isNothing(8)) file.failure = row.text(8);
  return file;
}

constexpr std::string_view kFilesBetween =
    "SELECT id, path, device, inode, size, modified, changed, hash, failure FROM file"
    " WHERE path >= ?1 AND path < ?2 ORDER BY path";

}  // namespace

StoreReader::StoreReader(std::unique_ptr<Database> database) : _database(std::move(database)) {}

StoreReader::~StoreReader() = default;

std::unique_ptr<StoreReader> StoreReader::open(const std::string& path, Ref<NSError>* error) {
  if (!isThere(path)) {
    tell(error, storeError(StoreMissingError, path,
                           "there is no store; `ferncase index FOLDER` makes one"));
    return nullptr;
  }
  auto database = openForReading(path, error);
  if (!database) return nullptr;
  if (registerTokenizer(database->handle()) != 0) {
    tell(error, database->lastError());
    return nullptr;
  }
  return std::unique_ptr<StoreReader>(new StoreReader(std::move(database)));
}

bool StoreReader::eachFileBelow(std::string_view folder,
                                const std::function<bool(const StoredFile&)>& take,
                                Ref<NSError>* error) {
  std::string first(folder);
  while (first.ends_with('/')) first.pop_back();
  std::string last = first;
  first += '/';
  last += '0';  // the byte behind the slash: no path of the folder comes after it
  Statement files(*_database, kFilesBetween);
  files.bindBytes(1, first).bindBytes(2, last);
  while (true) {
    switch (files.step(error)) {
      case Statement::Step::Row:
        if (!take(fileIn(files))) return true;
        break;
      case Statement::Step::Done:
        return true;
      case Statement::Step::Failed:
        return false;
    }
  }
}

Ref<NSDictionary> StoreReader::attributesOf(std::int64_t id, Ref<NSError>* error) {
  Statement message(*_database, "SELECT attributes, body FROM message WHERE id = ?1");
  if (message.bind(1, id).step(error) != Statement::Step::Row) return nullptr;
  std::optional<std::string_view> body;
  if (!message.isNothing(1)) body = message.text(1);
  return importedAttributes(message.bytes(0), body, error);
}

std::optional<std::int64_t> StoreReader::idOfPath(std::string_view path, Ref<NSError>* error) {
  Statement file(*_database, "SELECT id FROM file WHERE path = ?1");
  if (file.bindBytes(1, path).step(error) != Statement::Step::Row) return std::nullopt;
  return file.integer(0);
}

}  // namespace kbx
