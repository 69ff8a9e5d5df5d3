// IndexedFolders: what a store keeps up with, and the key that it knows contents by.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/store/Store.h"
#include "platform/objects/SeededHash.h"

namespace kbx {

/// A folder that was indexed, or a file that was named alone.
struct IndexedFolder {
  std::string path;
  std::optional<std::int64_t> indexed;  // when it was last gone through to its end: ns since 1970
};

/// The remembered ones in the order of their paths' bytes. Absent when the store cannot be read.
std::optional<std::vector<IndexedFolder>> indexedFolders(Database& store, Ref<NSError>* error);

/// The paths of these.
std::optional<std::vector<std::string>> indexedPlaces(Database& store, Ref<NSError>* error);

/// Remembers what is to be indexed. What lies inside of one of them needs no place of its own, and
/// what lies inside of a remembered one is not added.
bool rememberFolders(StoreWriter& store, const std::vector<std::string>& paths,
                     Ref<NSError>* error);

/// Notes when the folders, and those inside them, were gone through to their end: with a change
/// always, without one at most once an hour. Writing takes longer than finding nothing new.
bool noteIndexed(StoreWriter& store, const std::vector<std::string>& paths, std::int64_t time,
                 bool hasChanges, Ref<NSError>* error);

/// Forgets a folder or file, and all that the store knows at its path and below. Stores how many
/// messages and failures these were. A transaction is begun and ended for each few thousand.
bool forgetFolder(StoreWriter& store, const std::string& path, std::uint64_t* forgotten,
                  Ref<NSError>* error);

/// Of this store alone; made when it is asked for first. Absent when the store fails.
std::optional<HashKey> contentKey(StoreWriter& store, Ref<NSError>* error);

/// Those paths that do not lie inside another one, sorted, each once.
std::vector<std::string> outermost(std::vector<std::string> paths);

}  // namespace kbx
