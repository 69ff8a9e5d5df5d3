#include "platform/resources/ResourceCache.h"

namespace kbx {

Ref<NSObject> ResourceCache::valueForKey(NSString* key) const {
  const std::lock_guard held(_lock);
  for (const auto& [known, value] : _values)
    if (isEqual(known, key)) return value;
  return nullptr;
}

std::uint64_t ResourceCache::removals() const {
  const std::lock_guard held(_lock);
  return _removals;
}

void ResourceCache::setValue(NSObject* value, NSString* key, std::uint64_t removalsBefore) {
  const std::lock_guard held(_lock);
  if (_removals != removalsBefore) return;
  std::erase_if(_values, [key](const auto& entry) { return isEqual(entry.first, key); });
  _values.emplace_back(key, value);
}

void ResourceCache::removeValueForKey(NSString* key) {
  const std::lock_guard held(_lock);
  ++_removals;
  std::erase_if(_values, [key](const auto& entry) { return isEqual(entry.first, key); });
}

void ResourceCache::removeAllValues() {
  const std::lock_guard held(_lock);
  ++_removals;
  _values.clear();
}

}  // namespace kbx
