#include "platform/threads/Synchronized.h"

#include <array>
#include <cstdint>
#include <mutex>
#include <unordered_map>

namespace kbx {
namespace {

/// The lock of one object while somebody holds it or waits for it.
struct ObjectLock {
  std::recursive_mutex mutex;
  std::size_t users = 0;
};

/// A part of the side table. Locks come with their first user and go with their last.
struct Shard {
  std::mutex guard;
  std::unordered_map<const NSObject*, ObjectLock> locks;
};

Shard& shardOf(const NSObject* object) {
  static auto* const shards = new std::array<Shard, 16>;
  return (*shards)[(reinterpret_cast<std::uintptr_t>(object) >> 6) % shards->size()];
}

}  // namespace

Synchronized::Synchronized(const NSObject* object) : _object(object) {
  if (!object) return;
  Shard& shard = shardOf(object);
  ObjectLock* lock;
  {
    std::lock_guard held(shard.guard);
    lock = &shard.locks[object];
    ++lock->users;
  }
  lock->mutex.lock();
}

Synchronized::~Synchronized() {
  if (!_object) return;
  Shard& shard = shardOf(_object);
  std::lock_guard held(shard.guard);
  auto found = shard.locks.find(_object);
  found->second.mutex.unlock();
  if (--found->second.users == 0) shard.locks.erase(found);
}

}  // namespace kbx
