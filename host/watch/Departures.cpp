#include "host/watch/Departures.h"

#include <algorithm>
#include <utility>

namespace kbx {

void Departures::add(std::uint32_t cookie, Departure departure) {
  _departures[cookie] = std::move(departure);
}

std::optional<Departure> Departures::take(std::uint32_t cookie) {
  auto found = _departures.extract(cookie);
  if (found.empty()) return std::nullopt;
  return std::move(found.mapped());
}

std::vector<Departure> Departures::takeExpired(Moment now) {
  std::vector<Departure> expired;
  std::erase_if(_departures, [&](auto& entry) {
    if (entry.second.until > now) return false;
    expired.push_back(std::move(entry.second));
    return true;
  });
  return expired;
}

std::optional<Moment> Departures::deadline() const {
  std::optional<Moment> first;
  for (const auto& [cookie, departure] : _departures)
    first = std::min(first.value_or(departure.until), departure.until);
  return first;
}

void Departures::loseWatch(int watch) {
  for (auto& [cookie, departure] : _departures)
    if (departure.watch == watch) departure.watch = WatchTree::kNone;
}

}  // namespace kbx
