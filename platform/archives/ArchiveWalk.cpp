#include "platform/archives/ArchiveWalk.h"

#include <algorithm>

namespace kbx {

ArchiveWalk::State& ArchiveWalk::stateOf(std::size_t place) {
  if (place >= _states.size()) _states.resize(std::max(place + 1, _states.size() * 2));
  return _states[place];
}

ArchiveWalk::Outcome ArchiveWalk::enter(std::size_t place) {
  stateOf(place).isVisited = true;
  Opened opened = open(place);
  if (opened.hasFailed) return Outcome::Failed;
  if (opened.isLeaf) return Outcome::Done;
  if (_path.size() == kDeepestArchive) return Outcome::TooDeep;
  _path.push_back({place, std::move(opened.held), 0, 1});
  return Outcome::Done;
}

ArchiveWalk::Outcome ArchiveWalk::leave() {
  const auto [place, held, next, height] = std::move(_path.back());
  _path.pop_back();
  if (height > kDeepestArchive) return Outcome::TooDeep;
  stateOf(place).height = height;
  if (!_path.empty()) {
    std::uint16_t& above = _path.back().height;
    above = std::max(above, static_cast<std::uint16_t>(height + 1));
  }
  return close(place) ? Outcome::Done : Outcome::Failed;
}

ArchiveWalk::Outcome ArchiveWalk::walk(std::size_t start) {
  Outcome outcome = enter(start);
  while (outcome == Outcome::Done && !_path.empty()) {
    Step& step = _path.back();
    if (step.next == step.held.size()) {
      outcome = leave();
      continue;
    }
    const std::size_t place = step.held[step.next++];
    const State known = stateOf(place);
    if (!known.isVisited)
      outcome = enter(place);  // may move the steps
    else if (known.height > 0)
      step.height = std::max(step.height, static_cast<std::uint16_t>(known.height + 1));
  }
  return outcome;
}

}  // namespace kbx
