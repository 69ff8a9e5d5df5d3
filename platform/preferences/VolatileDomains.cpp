#include "platform/preferences/VolatileDomains.h"

#include "platform/objects/NSString.h"

namespace kbx {

VolatileDomains& VolatileDomains::shared() {
  static auto* const domains = new VolatileDomains;
  return *domains;
}

Ref<NSDictionary> VolatileDomains::domain(NSString* name) {
  if (!name) return nullptr;
  std::lock_guard held(_lock);
  auto found = _domains.find(name->lossyUTF8());
  return found == _domains.end() ? nullptr : found->second;
}

bool VolatileDomains::add(NSString* name, NSDictionary* values) {
  std::lock_guard held(_lock);
  return _domains.try_emplace(name->lossyUTF8(), values->copy()).second;
}

void VolatileDomains::replace(NSString* name, NSDictionary* values) {
  std::lock_guard held(_lock);
  if (values)
    _domains[name->lossyUTF8()] = values->copy();
  else
    _domains.erase(name->lossyUTF8());
}

void VolatileDomains::merge(NSString* name, NSDictionary* entries) {
  std::lock_guard held(_lock);
  auto& domain = _domains[name->lossyUTF8()];
  auto all = domain ? domain->mutableCopy() : NSMutableDictionary::dictionary();
  all->addEntriesFromDictionary(entries);
  domain = all->copy();
}

Ref<NSArray> VolatileDomains::names() {
  std::lock_guard held(_lock);
  NSArray::Elements names;
  for (const auto& [name, values] : _domains) names.push_back(NSString::stringWithUTF8(name));
  return NSArray::arrayWithElements(std::move(names));
}

}  // namespace kbx
