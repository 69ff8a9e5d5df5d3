// StoreErrors: what can be wrong with a store. Each names the file and the reason.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/objects/NSError.h"

struct sqlite3;

namespace kbx {

/// Codes of FerncaseErrorDomain.
enum StoreErrorCode : std::int64_t {
  StoreMissingError = 100,     // there is no such file
  StoreForeignError = 101,     // the file is something else
  StoreNewerError = 102,       // a newer version of the program made it
  StoreOlderError = 103,       // an older one made it, and it is open for reading only
  StoreBusyError = 104,        // another process writes
  StoreFullError = 105,        // no space left for it
  StoreDamagedError = 106,     // what is in it contradicts itself
  StoreUnreadableError = 107,  // no permission, or the file system failed
  StoreFailedError = 108,      // anything else that the database says
};

/// "PATH: reason", with the path under NSFilePathErrorKey.
Ref<NSError> storeError(StoreErrorCode code, const std::string& path, std::string_view reason);

/// What a connection said last, in words for people and with the database's own in brackets.
Ref<NSError> databaseError(sqlite3* connection, const std::string& path);

/// Stores the error where the caller wants one.
inline void tell(Ref<NSError>* error, Ref<NSError> told) {
  if (error) *error = std::move(told);
}

}  // namespace kbx
