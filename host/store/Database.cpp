#include "host/store/Database.h"

#include <sqlite3.h>

#include "host/store/StoreErrors.h"

namespace kbx {
namespace {

/// How long to wait while another connection recovers the log after a crash.
constexpr int kPatienceMilliseconds = 10'000;

int flagsOf(Database::Access access) {
  switch (access) {
    case Database::Access::Writing:
      return SQLITE_OPEN_READWRITE;
    case Database::Access::Creating:
      return SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    default:
      return SQLITE_OPEN_READONLY;
  }
}

/// The path as a URI, so that no character of it means anything.
std::string uriOf(const std::string& path, Database::Access access) {
  constexpr char digits[] = "0123456789ABCDEF";
  std::string uri = "file:";
  for (const char character : path) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte > ' ' && byte < 0x7F && byte != '%' && byte != '?' && byte != '#') {
      uri.push_back(character);
    } else {
      uri.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
  }
  if (access == Database::Access::FixedReading) uri += "?immutable=1";
  return uri;
}

/// Before anything is opened: nobody asks SQLite how much memory it has, so it need not count,
/// under a lock, what it takes and gives back.
void configureOnce() {
  [[maybe_unused]] static const int result = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
}

const char* bytesOf(std::string_view text) { return text.data() ? text.data() : ""; }

}  // namespace

std::unique_ptr<Database> Database::open(const std::string& path, Access access,
                                         Ref<NSError>* error) {
  configureOnce();
  sqlite3* handle = nullptr;
  // A relative path could be taken for the authority of a URI: "//host".
  const std::string place = path.starts_with('/') ? "//" + path : path;
  const int result =
      sqlite3_open_v2(uriOf(place, access).c_str(), &handle,
                      flagsOf(access) | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr);
  std::unique_ptr<Database> database(new Database(handle, path));
  if (result != SQLITE_OK) {
    tell(error, database->lastError());
    return nullptr;
  }
  sqlite3_extended_result_codes(handle, 1);
  sqlite3_busy_timeout(handle, kPatienceMilliseconds);
  return database;
}

Database::~Database() { sqlite3_close(_handle); }

bool Database::run(const std::string& sql, Ref<NSError>* error) {
  if (sqlite3_exec(_handle, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK) return true;
  tell(error, lastError());
  return false;
}

std::optional<std::int64_t> Database::integer(std::string_view sql, Ref<NSError>* error) {
  Statement statement(*this, sql);
  if (statement.step(error) != Statement::Step::Row) return std::nullopt;
  return statement.integer(0);
}

Ref<NSError> Database::lastError() const { return databaseError(_handle, _path); }

std::int64_t Database::lastId() const noexcept { return sqlite3_last_insert_rowid(_handle); }

Statement::Statement(Database& database, std::string_view sql) : _database(database) {
  sqlite3_prepare_v3(database.handle(), sql.data(), static_cast<int>(sql.size()),
                     SQLITE_PREPARE_PERSISTENT, &_handle, nullptr);
  if (!_handle) _refusal = database.lastError();
}

Statement::~Statement() { sqlite3_finalize(_handle); }

Statement& Statement::bind(int index, std::int64_t value) {
  sqlite3_bind_int64(_handle, index, value);
  return *this;
}

Statement& Statement::bind(int index, double value) {
  sqlite3_bind_double(_handle, index, value);
  return *this;
}

Statement& Statement::bind(int index, std::string_view text) {
  sqlite3_bind_text64(_handle, index, bytesOf(text), text.size(), SQLITE_STATIC, SQLITE_UTF8);
  return *this;
}

Statement& Statement::bindBytes(int index, std::string_view bytes) {
  sqlite3_bind_blob64(_handle, index, bytesOf(bytes), bytes.size(), SQLITE_STATIC);
  return *this;
}

Statement& Statement::bindNothing(int index) {
  sqlite3_bind_null(_handle, index);
  return *this;
}

Statement& Statement::bindPointer(int index, void* object, const char* type) {
  sqlite3_bind_pointer(_handle, index, object, type, nullptr);
  return *this;
}

Statement::Step Statement::step(Ref<NSError>* error) {
  const int result = _handle ? sqlite3_step(_handle) : SQLITE_ERROR;
  if (result == SQLITE_ROW) return Step::Row;
  if (result == SQLITE_DONE) return Step::Done;
  tell(error, _handle ? _database.lastError() : _refusal);
  return Step::Failed;
}

bool Statement::run(Ref<NSError>* error) {
  Step result;
  do {
    result = step(error);
  } while (result == Step::Row);
  reset();
  return result == Step::Done;
}

void Statement::reset() {
  if (!_handle) return;
  sqlite3_reset(_handle);
  sqlite3_clear_bindings(_handle);
}

bool Statement::isNothing(int column) const {
  return sqlite3_column_type(_handle, column) == SQLITE_NULL;
}

std::int64_t Statement::integer(int column) const { return sqlite3_column_int64(_handle, column); }

double Statement::number(int column) const { return sqlite3_column_double(_handle, column); }

std::string_view Statement::text(int column) const {
  const unsigned char* text = sqlite3_column_text(_handle, column);
  if (!text) return {};
  return {reinterpret_cast<const char*>(text),
          static_cast<std::size_t>(sqlite3_column_bytes(_handle, column))};
}

std::string_view Statement::bytes(int column) const {
  const void* bytes = sqlite3_column_blob(_handle, column);
  if (!bytes) return {};
  return {static_cast<const char*>(bytes),
          static_cast<std::size_t>(sqlite3_column_bytes(_handle, column))};
}

}  // namespace kbx
