#include "platform/objects/NSDictionary.h"

#include <algorithm>
#include <bit>

#include "platform/objects/Description.h"
#include "platform/objects/Equality.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/objects/SeededHash.h"
#include "platform/text/Format.h"

namespace kbx {

KBX_CLASS(NSDictionary)
KBX_CLASS(NSMutableDictionary)
KBX_ADOPTS(NSDictionary, NSCoding)

namespace {
constexpr std::size_t kScanned = 8;  // up to here a look along the entries is as quick as an index
}

NSDictionary::~NSDictionary() = default;

Ref<NSDictionary> NSDictionary::dictionary() { return Ref<NSDictionary>::adopt(new NSDictionary); }

Ref<NSDictionary> NSDictionary::dictionaryWithPairs(std::initializer_list<Pair> pairs) {
  auto result = dictionary();
  for (const auto& [key, value] : pairs) {
    if (!key || !value)
      raiseInvalidArgument(
          "-[NSDictionary initWithObjects:forKeys:]: attempt to insert nil object");
    result->set(key, value);
  }
  return result;
}

std::size_t NSDictionary::find(NSObject* key) const {
  return _entries.empty() || !key ? kAbsent : findHashed(key, key->hash());
}

std::size_t NSDictionary::findHashed(NSObject* key, std::size_t hash) const {
  auto isAt = [&](std::size_t i) {
    return _hashes[i] == hash && kbx::isEqual(_entries[i].key, key);
  };
  if (_slots.empty()) {
    for (std::size_t i = 0; i < _entries.size(); ++i)
      if (isAt(i)) return i;
    return kAbsent;
  }
  const std::size_t mask = _slots.size() - 1;
  for (std::size_t slot = slotOf(hash); _slots[slot]; slot = (slot + 1) & mask)
    if (isAt(_slots[slot] - 1)) return _slots[slot] - 1;
  return kAbsent;
}

/// Where the search for a hash begins. The hashes of numbers and addresses are often alike in most
/// of their bits, and those of numbers can be chosen by who writes an archive.
std::size_t NSDictionary::slotOf(std::size_t hash) const noexcept {
  return scatteredHash(hash) >> std::countl_zero(std::uint64_t{_slots.size() - 1});
}

void NSDictionary::index(std::size_t position) {
  const std::size_t mask = _slots.size() - 1;
  std::size_t slot = slotOf(_hashes[position]);
  while (_slots[slot]) slot = (slot + 1) & mask;
  _slots[slot] = static_cast<std::uint32_t>(position + 1);
}

void NSDictionary::rebuildIndex() {
  _slots.clear();
  if (_entries.size() <= kScanned) return;
  _slots.resize(std::bit_ceil(_entries.size() * 2));
  for (std::size_t i = 0; i < _entries.size(); ++i) index(i);
}

void NSDictionary::set(NSObject* key, NSObject* value) {
  const std::size_t hash = key->hash();
  if (std::size_t at = findHashed(key, hash); at != kAbsent) {
    _entries[at].value = value;
    return;
  }
  _entries.push_back({key->copyObject(), value});
  _hashes.push_back(hash);
  if (_entries.size() > kScanned && _entries.size() * 2 > _slots.size())
    rebuildIndex();
  else if (!_slots.empty())
    index(_entries.size() - 1);
}

void NSDictionary::remove(NSObject* key) {
  const std::size_t at = find(key);
  if (at == kAbsent) return;
  // What is removed dies last: its destructor may ask this dictionary for something.
  const Entry removed = std::move(_entries[at]);
  // Keeps the order of the others; few dictionaries lose keys, so this may cost a pass.
  _entries.erase(_entries.begin() + static_cast<std::ptrdiff_t>(at));
  _hashes.erase(_hashes.begin() + static_cast<std::ptrdiff_t>(at));
  rebuildIndex();
}

void NSDictionary::assign(const NSDictionary& other) {
  _entries = other._entries;
  _hashes = other._hashes;
  _slots = other._slots;
}

NSObject* NSDictionary::objectForKey(NSObject* key) const {
  const std::size_t at = find(key);
  return at == kAbsent ? nullptr : _entries[at].value.get();
}

Ref<NSArray> NSDictionary::allKeys() const {
  NSArray::Elements keys;
  for (const auto& entry : _entries) keys.push_back(entry.key);
  return NSArray::arrayWithElements(std::move(keys));
}

Ref<NSDictionary> NSDictionary::immutableCopy() const {
  auto result = dictionary();
  result->assign(*this);
  return result;
}

Ref<NSDictionary> NSDictionary::copy() { return static_cast<NSDictionary*>(copyObject().get()); }

Ref<NSMutableDictionary> NSDictionary::mutableCopy() const {
  auto result = NSMutableDictionary::dictionary();
  result->assign(*this);
  return result;
}

Ref<NSString> NSDictionary::description() const {
  StringBuilder text;
  appendNested(text, const_cast<NSDictionary*>(this), 0);
  return text.take();
}

bool NSDictionary::isEqual(NSObject* other) const {
  return areEqualContainers(const_cast<NSDictionary*>(this), other);
}

std::size_t NSDictionary::hash() const { return _entries.size(); }

Ref<NSMutableDictionary> NSMutableDictionary::dictionary() {
  return Ref<NSMutableDictionary>::adopt(new NSMutableDictionary);
}

void NSMutableDictionary::setObjectForKey(NSObject* value, NSObject* key) {
  if (!key) raiseInvalidArgument("-[NSMutableDictionary setObject:forKey:]: key cannot be nil");
  if (!value)
    raiseInvalidArgument("-[NSMutableDictionary setObject:forKey:]: object cannot be nil (key: " +
                         descriptionOf(key)->lossyUTF8() + ")");
  set(key, value);
}

void NSMutableDictionary::removeObjectForKey(NSObject* key) { remove(key); }

void NSMutableDictionary::removeAllObjects() {
  const Ref<NSDictionary> removed = immutableCopy();
  const Ref<NSDictionary> none = NSDictionary::dictionary();
  assign(*none);
}

void NSMutableDictionary::addEntriesFromDictionary(NSDictionary* other) {
  if (!other || other == this) return;
  for (const auto& [key, value] : *other) set(key, value);
}

Ref<NSObject> NSMutableDictionary::copyObject() { return immutableCopy(); }

}  // namespace kbx
