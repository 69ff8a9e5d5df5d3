// IndexEvents: what is told while folders are indexed.
#pragma once

#include <cstdint>
#include <string>

#include "platform/objects/NSError.h"

namespace kbx {

/// What became of the files that were looked at.
struct IndexCounts {
  std::uint64_t added = 0;
  std::uint64_t changed = 0;
  std::uint64_t moved = 0;
  std::uint64_t removed = 0;
  std::uint64_t unchanged = 0;
  std::uint64_t failed = 0;       // in this run
  std::uint64_t stillFailed = 0;  // in a run before, and the file is the same
};

/// Hears of the work as it goes on. All on the thread that does it.
class IndexListener {
 public:
  virtual ~IndexListener() = default;

  /// One more file was compared.
  virtual void compared() = 0;
  /// The comparing has ended; so many files look new or changed.
  virtual void begins(std::uint64_t files) = 0;
  /// One of them is done with.
  virtual void isDone(bool hasFailed) = 0;

  virtual void added(const std::string& path) = 0;
  virtual void changed(const std::string& path) = 0;
  virtual void moved(const std::string& from, const std::string& to) = 0;
  virtual void removed(const std::string& path) = 0;
  /// A file gave no message.
  virtual void failed(const std::string& path, NSError* error) = 0;
  /// Something is not as it should be, and what the store knows there stays: a folder cannot be
  /// read, or a volume is missing.
  virtual void kept(const std::string& path, NSError* error) = 0;
};

}  // namespace kbx
