#include "host/index/StoreBatches.h"

namespace kbx {

bool StoreBatches::begin() {
  if (!isGood() || _hasBegun) return isGood();
  _files = _bytes = 0;
  _start = Clock::now();
  _hasBegun = check(_store.begin(&_error));
  return _hasBegun;
}

bool StoreBatches::check(bool isDone) {
  if (isDone) return true;
  _store.rollback();
  _hasBegun = false;
  return false;
}

bool StoreBatches::count(std::uint64_t bytes) {
  _hasChanges = true;
  ++_files;
  _bytes += bytes;
  const bool isEnough =
      _files >= _size.files || _bytes >= _size.bytes || Clock::now() - _start >= _size.time;
  return !isEnough || finish();
}

bool StoreBatches::finish() {
  if (!isGood() || !_hasBegun) return isGood();
  _hasBegun = false;
  if (!check(_store.commit(&_error))) return false;
  _afterCommit();
  return true;
}

}  // namespace kbx
