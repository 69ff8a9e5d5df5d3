#include "host/store/StoreErrors.h"

#include <sqlite3.h>

#include <cerrno>
#include <system_error>

#include "host/console/FerncaseErrors.h"

namespace kbx {
namespace {

struct Meaning {
  StoreErrorCode code;
  std::string_view words;
};

std::string_view meaningOfFailedAccess(int result) {
  switch (result) {
    case SQLITE_IOERR_READ:
    case SQLITE_IOERR_SHORT_READ:
    case SQLITE_IOERR_MMAP:
      return "the store cannot be read";
    case SQLITE_IOERR_WRITE:
    case SQLITE_IOERR_FSYNC:
    case SQLITE_IOERR_DIR_FSYNC:
    case SQLITE_IOERR_TRUNCATE:
      return "the store cannot be written";
    case SQLITE_IOERR_LOCK:
    case SQLITE_IOERR_SHMLOCK:
    case SQLITE_IOERR_SHMOPEN:
    case SQLITE_IOERR_SHMMAP:
      return "the file system does not let processes share the store";
    default:
      return "the store cannot be read or written";
  }
}

Meaning meaningOf(int result) {
  switch (result & 0xFF) {
    case SQLITE_NOTADB:
      return {StoreForeignError, "is no store"};
    case SQLITE_CORRUPT:
      return {StoreDamagedError, "the store is damaged"};
    case SQLITE_FULL:
      return {StoreFullError, "no space is left for the store"};
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return {StoreBusyError, "the store is in use by another process"};
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
      return {StoreUnreadableError, "the store cannot be opened"};
    case SQLITE_READONLY:
      return {StoreUnreadableError, "the store cannot be written"};
    case SQLITE_IOERR:
      return {StoreUnreadableError, meaningOfFailedAccess(result)};
    case SQLITE_NOMEM:
      return {StoreFailedError, "memory is used up"};
    default:
      return {StoreFailedError, "the store refused"};
  }
}

bool isAboutFiles(int result) {
  const int kind = result & 0xFF;
  return kind == SQLITE_CANTOPEN || kind == SQLITE_IOERR || kind == SQLITE_FULL;
}

}  // namespace

Ref<NSError> storeError(StoreErrorCode code, const std::string& path, std::string_view reason) {
  std::string text = path;
  text.append(": ").append(reason);
  return NSError::errorWithDomain(
      FerncaseErrorDomain(), code,
      NSDictionary::dictionaryWithPairs(
          {{NSLocalizedDescriptionKey(), NSString::stringWithLossyUTF8(text)},
           {NSFilePathErrorKey(), NSString::stringWithLossyUTF8(path)}}));
}

Ref<NSError> databaseError(sqlite3* connection, const std::string& path) {
  const int result = sqlite3_extended_errcode(connection);
  const Meaning meaning = meaningOf(result);
  std::string reason(meaning.words);
  reason.append(" (").append(sqlite3_errmsg(connection));
  const int number = sqlite3_system_errno(connection);
  if (isAboutFiles(result) && number != 0)
    reason.append(": ").append(std::generic_category().message(number));
  return storeError(meaning.code, path, reason.append(")"));
}

}  // namespace kbx
