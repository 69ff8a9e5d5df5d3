// GoneFiles: what a store knows and the file system has no more, until it turns up elsewhere.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/index/KnownFiles.h"

namespace kbx {

/// A file that was renamed or moved has gone from one place and was added at another one.
class GoneFiles {
 public:
  void add(KnownFile file);
  bool isEmpty() const noexcept { return _left == 0; }

  /// One that was the same file, or that had the same content, and is the same message under its
  /// new path: an .emlx file is read in another way than others. It is no longer among the gone
  /// ones.
  ///
  /// hash  asked only when the content must tell; may answer nothing
  std::optional<KnownFile> take(const std::string& path, const FileState& state,
                                const std::function<std::optional<ContentHash>()>& hash);

  /// Calls for each that was not taken, in the order in which they were added, until it answers
  /// false.
  void each(const std::function<bool(const KnownFile&)>& visit) const;

 private:
  struct Item {
    KnownFile file;
    bool isTaken = false;
  };
  /// Items by a number. Those that were taken are left out when they come up, so that many with the
  /// same number cost no more than others.
  using Places = std::unordered_map<std::uint64_t, std::vector<std::size_t>>;

  std::optional<std::size_t> find(Places& places, std::uint64_t key,
                                  const std::function<bool(const KnownFile&)>& isIt);
  KnownFile take(std::size_t place);

  std::vector<Item> _items;
  std::size_t _left = 0;
  Places _byInode;
  Places _byHash;
  std::unordered_map<std::uint64_t, std::size_t> _sizes;  // how many there are of each size
};

}  // namespace kbx
