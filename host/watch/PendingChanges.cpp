#include "host/watch/PendingChanges.h"

namespace kbx {

void PendingChanges::touch(const std::string& path, Moment now) {
  if (_settled.contains(path)) return;
  if (const auto found = _places.find(path); found != _places.end()) {
    found->second->until = now + kRest;
    return _resting.splice(_resting.end(), _resting, found->second);
  }
  const Place place = _resting.insert(_resting.end(), {path, now + kRest});
  _places.emplace(place->path, place);
}

void PendingChanges::settle(const std::string& path) {
  _settled.insert(path);
  const auto found = _places.find(path);
  if (found == _places.end()) return;
  const Place place = found->second;
  _places.erase(found);
  _resting.erase(place);
}

std::optional<Moment> PendingChanges::deadline() const {
  if (!_settled.empty()) return Moment::min();
  if (_resting.empty()) return std::nullopt;
  return _resting.front().until;
}

std::vector<std::string> PendingChanges::take(Moment now) {
  while (!_resting.empty() && _resting.front().until <= now)
    settle(std::string(_resting.front().path));
  std::vector<std::string> settled(_settled.begin(), _settled.end());
  _settled.clear();
  return settled;
}

}  // namespace kbx
