// IdSet: the ids that a part of a query found.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kbx {

/// Ids in ascending order. Where they are dense, as those of a store are, looking one up is a bit
/// in a row of bits; otherwise a search in the list.
class IdSet {
 public:
  /// ids  in any order, each as often as it may be
  explicit IdSet(std::vector<std::int64_t> ids);

  bool contains(std::int64_t id) const noexcept;
  std::size_t count() const noexcept { return _ids.size(); }
  std::span<const std::int64_t> ids() const noexcept { return _ids; }

 private:
  bool isInList(std::int64_t id) const noexcept;

  std::vector<std::int64_t> _ids;
  std::vector<std::uint64_t> _bits;  // from the first id on; empty where they would be too many
};

}  // namespace kbx
