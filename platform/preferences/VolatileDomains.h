// VolatileDomains: preference domains that live as long as the process.
#pragma once

#include <map>
#include <mutex>
#include <string>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"

namespace kbx {

/// Dictionaries by name, the same for every defaults object. Safe from any thread.
class VolatileDomains {
 public:
  /// The one object of the process, never freed.
  static VolatileDomains& shared();

  /// Absent when there is none of that name.
  Ref<NSDictionary> domain(NSString* name);
  /// False, and no change, when there is one of that name already.
  bool add(NSString* name, NSDictionary* values);
  /// Puts a domain into the place of the one of that name, if any; absent removes it.
  void replace(NSString* name, NSDictionary* values);
  /// Sets entries of a domain that is made when there is none.
  void merge(NSString* name, NSDictionary* entries);
  /// In the order of the texts.
  Ref<NSArray> names();

 private:
  std::mutex _lock;  // of what follows
  std::map<std::string, Ref<NSDictionary>> _domains;
};

}  // namespace kbx
