// ResourceCache: the resource values that a location has been asked for.
#pragma once

#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/objects/NSString.h"

namespace kbx {

/// Values by resource key; there are a handful of keys. Safe from any thread.
class KBX_PLATFORM ResourceCache {
 public:
  /// Absent when the key is not there.
  Ref<NSObject> valueForKey(NSString* key) const;

  /// Counts the removals. Asked for before a value is read from the disk, it tells setValue()
  /// whether the value was dropped in the meantime.
  std::uint64_t removals() const;
  /// Keeps the value unless there were removals since; then it is out of date already.
  void setValue(NSObject* value, NSString* key, std::uint64_t removalsBefore);

  void removeValueForKey(NSString* key);
  void removeAllValues();

 private:
  mutable std::mutex _lock;
  std::vector<std::pair<Ref<NSString>, Ref<NSObject>>> _values;
  std::uint64_t _removals = 0;
};

}  // namespace kbx
