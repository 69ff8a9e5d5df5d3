#include "host/watch/WatchLoop.h"

#include <algorithm>

namespace kbx {
namespace {

void bringForward(std::optional<Moment>& first, std::optional<Moment> other) {
  if (other) first = std::min(first.value_or(*other), *other);
}

}  // namespace

void WatchLoop::begin() { rescan(); }

bool WatchLoop::step() {
  const auto notices = _watcher.wait(deadline());
  const Moment now = _watcher.now();
  for (const FolderNotice& notice : notices) _folders.take(notice, now);
  if (_folders.hasLostNotices()) {
    _listener.rescanning();
    rescan();
  }
  _folders.expire(now);
  lookForLost(now);
  retryUnwatched(now);
  update(now);
  tellEvents();
  return !_hasFailed;
}

std::optional<Moment> WatchLoop::deadline() const {
  std::optional<Moment> first = _changes.deadline();
  if (first && _busyUntil) first = std::max(*first, *_busyUntil);
  bringForward(first, _folders.deadline());
  bringForward(first, _look);
  bringForward(first, _retry);
  return first;
}

void WatchLoop::rescan() {
  _folders.begin();
  for (const std::string& root : _folders.presentRoots()) _changes.settle(root);
  tellEvents();
}

void WatchLoop::retryUnwatched(Moment now) {
  if (_retry && *_retry <= now) {
    _folders.retry();
    _retry.reset();
  }
  if (!_folders.hasUnwatched())
    _retry.reset();
  else if (!_retry)
    _retry = now + kRetry;
}

void WatchLoop::lookForLost(Moment now) {
  if (_look && *_look <= now) {
    _folders.retryLost();
    _look.reset();
  }
  if (!_folders.hasLost()) {
    _look.reset();
    _pause = kFirstLook;
  } else if (!_look) {
    _look = now + _pause;
    _pause = std::min<std::chrono::seconds>(2 * _pause, kRetry);
  }
}

void WatchLoop::update(Moment now) {
  const auto due = _changes.deadline();
  if (_isReady && (!due || *due > now)) return;
  if (_busyUntil && now < *_busyUntil) return;
  // What a root held must not count as gone because the root is.
  _folders.checkRoots();
  auto paths = _changes.take(now);
  std::erase_if(paths, [this](const std::string& path) { return !_folders.isInRoot(path); });
  if (paths.empty() && _isReady) return;
  Ref<NSError> error;
  const auto answer = paths.empty() ? WatchedIndex::Answer::Done : _index.update(paths, &error);
  if (answer == WatchedIndex::Answer::Failed) {
    _hasFailed = true;
    return _listener.failed(error);
  }
  if (answer == WatchedIndex::Answer::Busy) {
    if (!_busyUntil) _listener.waiting(error);
    _busyUntil = now + kBusyRetry;
    for (const std::string& path : paths) _changes.settle(path);
    return;
  }
  _busyUntil.reset();
  if (answer == WatchedIndex::Answer::Interrupted && !_isReady) return;
  if (!_isReady) _listener.ready(_folders.count());
  _isReady = true;
  _listener.updated(_folders.count());
}

void WatchLoop::tellEvents() {
  for (const auto& event : _folders.takeEvents()) _listener.folderEvent(event);
}

}  // namespace kbx
