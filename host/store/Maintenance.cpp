#include "host/store/Maintenance.h"

#include <sys/stat.h>

#include <algorithm>

#include "host/store/IndexCheck.h"
#include "host/store/Store.h"
#include "host/store/StoreErrors.h"

namespace kbx {
namespace {

constexpr std::size_t kMostFindings = 100;

void addFile(StoreStatus& status, const std::string& path) {
  struct stat state;
  if (::stat(path.c_str(), &state) != 0) return;
  status.size += static_cast<std::uint64_t>(state.st_size);
  const double changed =
      static_cast<double>(state.st_mtim.tv_sec) + static_cast<double>(state.st_mtim.tv_nsec) / 1e9;
  status.lastChange = std::max(status.lastChange, changed);
}

/// Adds each row's text as a finding; one that says "ok" is none. What keeps the statement from
/// running is a finding as well.
void addRows(Database& database, std::string_view sql, std::vector<std::string>& findings) {
  Statement rows(database, sql);
  Ref<NSError> problem;
  while (findings.size() < kMostFindings) {
    switch (rows.step(&problem)) {
      case Statement::Step::Row:
        if (rows.text(0) != "ok") findings.emplace_back(rows.text(0));
        break;
      case Statement::Step::Failed:
        findings.push_back(problem->localizedDescription()->lossyUTF8());
        return;
      case Statement::Step::Done:
        return;
    }
  }
}

constexpr std::string_view kWithoutFile =
    "SELECT 'message ' || id || ' belongs to no file' FROM message"
    " WHERE id NOT IN (SELECT id FROM file) LIMIT 100";
constexpr std::string_view kWithoutMessage =
    "SELECT 'file ' || id || ' has neither a message nor a failure' FROM file"
    " WHERE failure IS NULL AND id NOT IN (SELECT id FROM message) LIMIT 100";
constexpr std::string_view kWithBoth =
    "SELECT 'file ' || id || ' has both a message and a failure' FROM file"
    " WHERE failure IS NOT NULL AND id IN (SELECT id FROM message) LIMIT 100";

}  // namespace

std::optional<StoreStatus> statusOf(const std::string& path, Ref<NSError>* error) {
  auto store = StoreReader::open(path, error);
  if (!store) return std::nullopt;
  Database& database = store->database();
  StoreStatus status;
  const auto messages = database.integer("SELECT count(*) FROM message", error);
  if (!messages) return std::nullopt;
  const auto failures =
      database.integer("SELECT count(*) FROM file WHERE failure IS NOT NULL", error);
  if (!failures) return std::nullopt;
  status.messages = *messages;
  status.failures = *failures;
  status.version = database.integer("PRAGMA user_version", error).value_or(0);
  addFile(status, path);
  addFile(status, path + "-wal");
  return status;
}

std::optional<std::vector<std::string>> checkStore(const std::string& path, Ref<NSError>* error,
                                                   const CheckProgress& progress) {
  auto store = StoreReader::open(path, error);
  if (!store) return std::nullopt;
  std::vector<std::string> findings;
  Database& database = store->database();
  addRows(database, "PRAGMA integrity_check(100)", findings);
  addRows(database, kWithoutFile, findings);
  addRows(database, kWithoutMessage, findings);
  addRows(database, kWithBoth, findings);
  checkIndex(database, kMostFindings, findings, progress);
  return findings;
}

bool optimizeStore(const std::string& path, Ref<NSError>* error) {
  auto store = StoreWriter::open(path, error);
  if (!store) return false;
  Database& database = store->database();
  if (!database.run("INSERT INTO word (word) VALUES ('optimize'); ANALYZE", error)) return false;
  const auto pages = database.integer("PRAGMA page_count", error);
  const auto unused = database.integer("PRAGMA freelist_count", error);
  if (!pages || !unused) return false;
  // Packing writes the whole store again, which a little space is not worth.
  if (*unused > *pages / 8 && !database.run("VACUUM", error)) return false;
  return database.run("PRAGMA wal_checkpoint(TRUNCATE)", error);
}

}  // namespace kbx
