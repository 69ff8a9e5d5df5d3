#include "host/search/LiveSearch.h"

#include <utility>

namespace kbx {

LiveSearch::LiveSearch(StoreReader& reader, std::string query, SearchSettings settings)
    : _reader(reader), _query(std::move(query)), _settings(std::move(settings)) {
  parseQuery(_query);
}

bool LiveSearch::update(const Take& take, Ref<NSError>* error) {
  const auto version = _reader.database().integer("PRAGMA data_version", error);
  if (!version) return false;
  if (*version == _version) return true;
  const bool isFirst = std::exchange(_version, *version) < 0;
  const std::uint64_t first = isFirst ? std::exchange(_settings.offset, 0) : 0;
  const auto limit = isFirst ? std::exchange(_settings.limit, std::nullopt) : std::nullopt;
  std::uint64_t place = 0;
  bool isWanted = true;
  Search search(_reader, parseQuery(_query), _settings);
  const auto takeNew = [&](std::int64_t id) {
    const bool isOnPage = place >= first && (!limit || place - first < *limit);
    ++place;
    if (_known.insert(id).second && isOnPage) isWanted = take(search, id);
    return isWanted;
  };
  return search.run(takeNew, error) && isWanted;
}

}  // namespace kbx
