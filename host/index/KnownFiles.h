// KnownFiles: the files that a store knows in a folder, one after the other.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "host/index/ContentHash.h"
#include "host/store/Database.h"
#include "host/store/Store.h"

namespace kbx {

struct KnownFile {
  std::int64_t id = 0;
  std::string path;
  FileState state;
  std::optional<ContentHash> hash;
  bool hasFailed = false;  // there is no message, only the reason why
};

/// Gives the files at a path and below it in the order of the paths' bytes. They are read some
/// thousands at a time, so that no reading lasts long: a long one would keep the store's log of
/// changes from being cleared while files are added.
class KnownFiles {
 public:
  KnownFiles(Database& database, std::string root);

  /// Absent after the last one, and on failure.
  std::optional<KnownFile> next(Ref<NSError>* error);

 private:
  bool readMore(Ref<NSError>* error);

  Database& _database;
  const std::string _below;  // what all paths below the root begin with
  std::string _last;         // the path that was read last
  bool _isAtRoot = true;     // the root itself is next
  bool _hasMore = true;
  std::deque<KnownFile> _page;
};

}  // namespace kbx
