#include "host/index/GoneFiles.h"

#include <string_view>

#include "platform/text/ASCII.h"

namespace kbx {
namespace {

/// Whether the names of both files have the same content read as the same message.
bool isReadAlike(std::string_view one, std::string_view other) {
  return endsIgnoringASCIICase(one, ".emlx") == endsIgnoringASCIICase(other, ".emlx");
}

}  // namespace

void GoneFiles::add(KnownFile file) {
  const std::size_t place = _items.size();
  ++_left;
  // Without a message there is nothing that could move.
  if (!file.hasFailed) {
    _byInode[file.state.inode].push_back(place);
    if (file.hash) {
      _byHash[*file.hash].push_back(place);
      ++_sizes[file.state.size];
    }
  }
  _items.push_back({std::move(file)});
}

std::optional<KnownFile> GoneFiles::take(const std::string& path, const FileState& state,
                                         const std::function<std::optional<ContentHash>()>& hash) {
  if (isEmpty()) return std::nullopt;
  // Nobody can set the time of the last change; it stays when a folder above the file is renamed.
  auto place = find(_byInode, state.inode, [&](const KnownFile& file) {
    return file.state.size == state.size && file.state.modified == state.modified &&
           file.state.changed == state.changed && isReadAlike(file.path, path);
  });
  if (place) return take(*place);
  if (!_sizes.contains(state.size)) return std::nullopt;
  const auto content = hash();
  if (!content) return std::nullopt;
  place = find(_byHash, *content, [&](const KnownFile& file) {
    return file.state.size == state.size && isReadAlike(file.path, path);
  });
  return place ? std::optional(take(*place)) : std::nullopt;
}

std::optional<std::size_t> GoneFiles::find(Places& places, std::uint64_t key,
                                           const std::function<bool(const KnownFile&)>& isIt) {
  const auto found = places.find(key);
  if (found == places.end()) return std::nullopt;
  auto& list = found->second;
  while (!list.empty() && _items[list.back()].isTaken) list.pop_back();
  for (auto place = list.rbegin(); place != list.rend(); ++place)
    if (!_items[*place].isTaken && isIt(_items[*place].file)) return *place;
  return std::nullopt;
}

KnownFile GoneFiles::take(std::size_t place) {
  Item& item = _items[place];
  item.isTaken = true;
  --_left;
  if (item.file.hash) {
    const auto size = _sizes.find(item.file.state.size);
    if (--size->second == 0) _sizes.erase(size);
  }
  return std::move(item.file);
}

void GoneFiles::each(const std::function<bool(const KnownFile&)>& visit) const {
  for (const Item& item : _items)
    if (!item.isTaken && !visit(item.file)) return;
}

}  // namespace kbx
