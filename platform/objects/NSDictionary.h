// NSDictionary and NSMutableDictionary: values by key, in the order of their first insertion.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "platform/objects/NSObject.h"
#include "platform/objects/NSString.h"

namespace kbx {

class NSArray;
class NSMutableDictionary;

/// An immutable dictionary; keys and values are never absent. May be shared between threads.
///
/// Enumeration follows the order in which keys were first set, so that whatever is made by walking
/// a dictionary comes out the same every time. A replaced value keeps the place of its key.
class KBX_PLATFORM NSDictionary : public NSObject {
  KBX_OBJECT(NSDictionary, NSObject)
 public:
  struct Pair {
    NSObject* key;
    NSObject* value;
  };
  struct Entry {
    Ref<NSObject> key;
    Ref<NSObject> value;
  };

  static Ref<NSDictionary> dictionary();
  /// {{"a"_ns, first}, {"b"_ns, second}}; raises NSInvalidArgumentException when one is absent.
  static Ref<NSDictionary> dictionaryWithPairs(std::initializer_list<Pair> pairs);

  std::size_t count() const noexcept { return _entries.size(); }
  /// The value, or nullptr; an absent key has none. (objectForKey:)
  NSObject* objectForKey(NSObject* key) const;
  std::vector<Entry>::const_iterator begin() const noexcept { return _entries.begin(); }
  std::vector<Entry>::const_iterator end() const noexcept { return _entries.end(); }
  Ref<NSArray> allKeys() const;

  Ref<NSDictionary> copy();
  Ref<NSMutableDictionary> mutableCopy() const;

  Ref<NSString> description() const override;
  bool isEqual(NSObject* other) const override;
  std::size_t hash() const override;

 protected:
  NSDictionary() = default;
  ~NSDictionary() override;

  void set(NSObject* key, NSObject* value);
  void remove(NSObject* key);
  void assign(const NSDictionary& other);
  Ref<NSDictionary> immutableCopy() const;

  std::vector<Entry> _entries;

 private:
  static constexpr std::size_t kAbsent = SIZE_MAX;
  std::size_t find(NSObject* key) const;
  std::size_t findHashed(NSObject* key, std::size_t hash) const;
  std::size_t slotOf(std::size_t hash) const noexcept;
  void index(std::size_t position);
  void rebuildIndex();

  std::vector<std::size_t> _hashes;   // of the key of each entry
  std::vector<std::uint32_t> _slots;  // positions plus one; empty while a scan is as good
};

/// A dictionary that changes. Belongs to one thread at a time.
class KBX_PLATFORM NSMutableDictionary : public NSDictionary {
  KBX_OBJECT(NSMutableDictionary, NSDictionary)
 public:
  static Ref<NSMutableDictionary> dictionary();

  /// Stores a value under a copy of the key. Raises NSInvalidArgumentException when either is
  /// absent. (setObject:forKey:)
  void setObjectForKey(NSObject* value, NSObject* key);
  /// Nothing when there is no such key. Costs time in proportion to the count.
  void removeObjectForKey(NSObject* key);
  void removeAllObjects();
  /// Sets each entry of the other dictionary; an absent one has none.
  void addEntriesFromDictionary(NSDictionary* other);

  Ref<NSObject> copyObject() override;

 private:
  friend class NSDictionary;
  NSMutableDictionary() = default;
};

}  // namespace kbx
