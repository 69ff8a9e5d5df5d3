#include "host/search/IdSet.h"

#include <algorithm>

namespace kbx {
namespace {

constexpr std::uint64_t kBitsForEach = 64;  // as much memory as the list has

}  // namespace

IdSet::IdSet(std::vector<std::int64_t> ids) : _ids(std::move(ids)) {
  if (!std::ranges::is_sorted(_ids)) std::ranges::sort(_ids);
  // Not by a range: clang 14 cannot read the library's.
  _ids.erase(std::unique(_ids.begin(), _ids.end()), _ids.end());
  if (_ids.empty()) return;
  const auto first = static_cast<std::uint64_t>(_ids.front());
  const std::uint64_t range = static_cast<std::uint64_t>(_ids.back()) - first;
  if (range / kBitsForEach > _ids.size()) return;
  _bits.resize(range / 64 + 1);
  for (const std::int64_t id : _ids) {
    const std::uint64_t bit = static_cast<std::uint64_t>(id) - first;
    _bits[bit / 64] |= std::uint64_t{1} << bit % 64;
  }
}

bool IdSet::contains(std::int64_t id) const noexcept {
  if (_bits.empty()) return isInList(id);
  const std::uint64_t bit =
      static_cast<std::uint64_t>(id) - static_cast<std::uint64_t>(_ids.front());
  return bit / 64 < _bits.size() && (_bits[bit / 64] >> bit % 64 & 1) != 0;
}

bool IdSet::isInList(std::int64_t id) const noexcept {
  return std::ranges::binary_search(_ids, id);
}

}  // namespace kbx
