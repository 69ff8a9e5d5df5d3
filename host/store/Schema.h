// Schema: the tables of a store, its version, and the way from older versions.
#pragma once

#include <cstdint>
#include <span>

#include "host/store/Database.h"

namespace kbx {

/// What `PRAGMA application_id` answers for a store: "Fern".
inline constexpr std::int64_t kStoreApplication = 0x4665726E;
/// What `PRAGMA user_version` answers for a store of this program.
inline constexpr std::int64_t kStoreVersion = 2;

/// Statements that make a store of version `from` one of version `from + 1`.
struct Migration {
  std::int64_t from;
  const char* sql;
};

/// The steps from every older version, in their order.
std::span<const Migration> storeMigrations();

/// Whether the connection's file is a store that this program reads. False with an error that says
/// what it is instead: another file, a store of a newer or of an older version.
bool isReadableStore(Database& database, Ref<NSError>* error);

/// Makes the tables in an empty file, or brings an older store to the newest version, one
/// transaction for each step. False with an error for every other file, which stays untouched.
bool prepareStore(Database& database, Ref<NSError>* error);
/// The same with other steps and another newest version, for tests.
bool prepareStore(Database& database, std::span<const Migration> steps, std::int64_t newest,
                  Ref<NSError>* error);

}  // namespace kbx
