// Database and Statement: SQLite with its resources owned and its failures as errors.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/objects/NSError.h"

struct sqlite3;
struct sqlite3_stmt;

namespace kbx {

/// One connection. Belongs to one thread at a time. Statements must be gone before it is.
class Database {
 public:
  enum class Access {
    Reading,      // the file must be there and is never changed
    Writing,      // the file must be there
    Creating,     // the file is made when it is not there
    FixedReading  // the file is read as if nobody could ever change it: no locks, no log
  };

  /// Fails with an error of StoreErrors.h that names the path. Absent then.
  static std::unique_ptr<Database> open(const std::string& path, Access access,
                                        Ref<NSError>* error);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  sqlite3* handle() const noexcept { return _handle; }
  const std::string& path() const noexcept { return _path; }

  /// Runs one statement or several without results.
  bool run(const std::string& sql, Ref<NSError>* error);
  /// The first column of the first row; absent when there is none or on failure.
  std::optional<std::int64_t> integer(std::string_view sql, Ref<NSError>* error);
  /// What failed last on this connection. Never absent.
  Ref<NSError> lastError() const;
  /// The id of the row that was inserted last.
  std::int64_t lastId() const noexcept;

 private:
  Database(sqlite3* handle, std::string path) : _handle(handle), _path(std::move(path)) {}

  sqlite3* const _handle;
  const std::string _path;
};

/// A prepared statement. Parameters are numbered from 1, columns from 0.
///
/// Bound texts and bytes are not copied: they must live until the statement is reset.
class Statement {
 public:
  enum class Step { Row, Done, Failed };

  /// Words that the database refuses make a statement that fails at its first step.
  Statement(Database& database, std::string_view sql);
  ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  Statement& bind(int index, std::int64_t value);
  Statement& bind(int index, int value) { return bind(index, std::int64_t{value}); }
  Statement& bind(int index, std::uint64_t value) {
    return bind(index, static_cast<std::int64_t>(value));
  }
  Statement& bind(int index, double value);
  /// As text, which must be UTF-8.
  Statement& bind(int index, std::string_view text);
  Statement& bind(int index, const char* text) { return bind(index, std::string_view(text)); }
  Statement& bindBytes(int index, std::string_view bytes);
  Statement& bindNothing(int index);
  /// An object for a function of ours, which SQL takes for NULL.
  Statement& bindPointer(int index, void* object, const char* type);
  template <class Value>
  Statement& bind(int index, const std::optional<Value>& value) {
    return value ? bind(index, *value) : bindNothing(index);
  }

  Step step(Ref<NSError>* error);
  /// Steps through all rows, which are not wanted, and resets. False on failure.
  bool run(Ref<NSError>* error);
  /// Makes it ready to run again; bindings are forgotten.
  void reset();

  bool isNothing(int column) const;
  std::int64_t integer(int column) const;
  double number(int column) const;
  /// Text or bytes; valid until the next step. Empty for NULL.
  std::string_view text(int column) const;
  std::string_view bytes(int column) const;

 private:
  Database& _database;
  sqlite3_stmt* _handle = nullptr;
  Ref<NSError> _refusal;  // why there is no handle
};

}  // namespace kbx
