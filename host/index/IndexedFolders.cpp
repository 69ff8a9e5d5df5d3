#include "host/index/IndexedFolders.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

#include "host/index/FolderWalk.h"
#include "host/index/KnownFiles.h"
#include "platform/system/UUID.h"

namespace kbx {
namespace {

constexpr std::uint64_t kBatch = 2000;
constexpr std::int64_t kHour = std::int64_t{3600} * 1'000'000'000;

bool removeFolderRow(StoreWriter& store, std::string_view path, Ref<NSError>* error) {
  Statement removal(store.database(), "DELETE FROM folder WHERE path = ?1");
  return removal.bindBytes(1, path).run(error);
}

/// Forgets the places of those that lie inside a path.
bool removeInner(StoreWriter& store, const std::vector<IndexedFolder>& folders,
                 const std::string& path, Ref<NSError>* error) {
  return std::ranges::all_of(folders, [&](const IndexedFolder& folder) {
    return !isInside(folder.path, path) || removeFolderRow(store, folder.path, error);
  });
}

bool addFolder(StoreWriter& store, const std::string& path, Ref<NSError>* error) {
  Statement addition(store.database(), "INSERT OR IGNORE INTO folder (path) VALUES (?1)");
  return addition.bindBytes(1, path).run(error);
}

bool isKept(const std::vector<IndexedFolder>& folders, const std::string& path) {
  return std::ranges::any_of(folders, [&](const IndexedFolder& folder) {
    return path == folder.path || isInside(path, folder.path);
  });
}

HashKey keyIn(std::string_view bytes) {
  HashKey key;
  if (bytes.size() == sizeof key) std::memcpy(&key, bytes.data(), sizeof key);
  return key;
}

/// Commits what was begun, or undoes it.
bool finish(StoreWriter& store, bool isDone, Ref<NSError>* error) {
  if (isDone && store.commit(error)) return true;
  store.rollback();
  return false;
}

bool removeFiles(StoreWriter& store, const std::string& path, std::uint64_t* removed,
                 Ref<NSError>* error) {
  KnownFiles files(store.database(), path);
  Ref<NSError> failure;
  while (auto file = files.next(&failure)) {
    if (!store.remove(file->path, error)) return false;
    if (++*removed % kBatch == 0 && (!store.commit(error) || !store.begin(error))) return false;
  }
  if (failure && error) *error = failure;
  return !failure;
}

}  // namespace

std::optional<std::vector<IndexedFolder>> indexedFolders(Database& store, Ref<NSError>* error) {
  std::vector<IndexedFolder> folders;
  Statement rows(store, "SELECT path, indexed FROM folder ORDER BY path");
  Statement::Step step;
  while ((step = rows.step(error)) == Statement::Step::Row) {
    folders.push_back({std::string(rows.bytes(0)), std::nullopt});
    if (!rows.isNothing(1)) folders.back().indexed = rows.integer(1);
  }
  return step == Statement::Step::Done ? std::optional(std::move(folders)) : std::nullopt;
}

std::optional<std::vector<std::string>> indexedPlaces(Database& store, Ref<NSError>* error) {
  auto folders = indexedFolders(store, error);
  if (!folders) return std::nullopt;
  std::vector<std::string> places;
  for (IndexedFolder& folder : *folders) places.push_back(std::move(folder.path));
  return places;
}

bool rememberFolders(StoreWriter& store, const std::vector<std::string>& paths,
                     Ref<NSError>* error) {
  const auto folders = indexedFolders(store.database(), error);
  if (!folders) return false;
  const auto isNew = [&](const std::string& path) { return !isKept(*folders, path); };
  if (std::ranges::none_of(paths, isNew)) return true;
  if (!store.begin(error)) return false;
  const bool isDone = std::ranges::all_of(paths, [&](const std::string& path) {
    return !isNew(path) ||
           (removeInner(store, *folders, path, error) && addFolder(store, path, error));
  });
  return finish(store, isDone, error);
}

bool noteIndexed(StoreWriter& store, const std::vector<std::string>& paths, std::int64_t time,
                 bool hasChanges, Ref<NSError>* error) {
  auto folders = indexedFolders(store.database(), error);
  if (!folders) return false;
  std::erase_if(*folders, [&](const IndexedFolder& folder) {
    const bool isRecent = folder.indexed && std::abs(time - *folder.indexed) < kHour;
    return (isRecent && !hasChanges) || !std::ranges::any_of(paths, [&](const std::string& path) {
             return folder.path == path || isInside(folder.path, path);
           });
  });
  if (folders->empty()) return true;
  if (!store.begin(error)) return false;
  const bool isDone = std::ranges::all_of(*folders, [&](const IndexedFolder& folder) {
    Statement change(store.database(), "UPDATE folder SET indexed = ?1 WHERE path = ?2");
    return change.bind(1, time).bindBytes(2, folder.path).run(error);
  });
  return finish(store, isDone, error);
}

bool forgetFolder(StoreWriter& store, const std::string& path, std::uint64_t* forgotten,
                  Ref<NSError>* error) {
  *forgotten = 0;
  const auto folders = indexedFolders(store.database(), error);
  if (!folders || !store.begin(error)) return false;
  const bool isDone = removeFiles(store, path, forgotten, error) &&
                      removeInner(store, *folders, path, error) &&
                      removeFolderRow(store, path, error);
  return finish(store, isDone, error);
}

std::optional<HashKey> contentKey(StoreWriter& store, Ref<NSError>* error) {
  Statement row(store.database(), "SELECT value FROM setting WHERE name = 'content key'");
  const auto step = row.step(error);
  if (step == Statement::Step::Failed) return std::nullopt;
  if (step == Statement::Step::Row) return keyIn(row.bytes(0));
  row.reset();
  std::array<std::uint8_t, sizeof(HashKey)> random{};
  fillWithRandomBytes(random);  // without any, the hashes are as good but for a stranger's will
  const std::string_view bytes(reinterpret_cast<const char*>(random.data()), random.size());
  Statement addition(store.database(), "INSERT INTO setting VALUES ('content key', ?1)");
  return addition.bindBytes(1, bytes).run(error) ? std::optional(keyIn(bytes)) : std::nullopt;
}

std::vector<std::string> outermost(std::vector<std::string> paths) {
  std::ranges::sort(paths);
  std::vector<std::string> kept;
  for (std::string& path : paths) {
    const bool isCovered = std::ranges::any_of(
        kept, [&](const std::string& other) { return path == other || isInside(path, other); });
    if (!isCovered) kept.push_back(std::move(path));
  }
  return kept;
}

}  // namespace kbx
