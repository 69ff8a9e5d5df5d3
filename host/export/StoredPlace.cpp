#include "host/export/StoredPlace.h"

#include "host/index/FolderReader.h"

namespace kbx {

std::optional<StoredPlace> storedPlace(StoreReader& store, std::int64_t id, Ref<NSError>* error) {
  Statement row(store.database(),
                "SELECT path, device, inode, size, modified, changed, failure FROM file "
                "WHERE id = ?1");
  row.bind(1, id);
  if (row.step(error) != Statement::Step::Row) return std::nullopt;
  const auto number = [&](int column) { return static_cast<std::uint64_t>(row.integer(column)); };
  StoredPlace place{std::string(row.bytes(0)),
                    {number(1), number(2), number(3), row.integer(4), row.integer(5)},
                    {}};
  if (!row.isNothing(6)) place.failure = std::string(row.text(6));
  return place;
}

Presence presenceOf(const StoredPlace& place) {
  FolderEntry entry;
  const int failure = FolderReader::current().stateOfFile(place.path, &entry);
  if (failure || entry.isFolder) return Presence::Gone;
  // Moves and changed modes leave the content alone, and so these two tell.
  const bool isSame =
      entry.state.size == place.state.size && entry.state.modified == place.state.modified;
  return isSame ? Presence::Same : Presence::Changed;
}

}  // namespace kbx
