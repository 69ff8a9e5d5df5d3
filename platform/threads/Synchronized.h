// Synchronized: the recursive lock that every object has.
#pragma once

#include "platform/objects/NSObject.h"

namespace kbx {

/// Holds the lock of an object while it lives. The same thread may take it again.
///
/// Locks are found by address in a side table, so an object carries none; an absent object locks
/// nothing. Never held while the object may die: keep a Ref to it.
class KBX_PLATFORM Synchronized {
 public:
  explicit Synchronized(const NSObject* object);
  ~Synchronized();
  Synchronized(const Synchronized&) = delete;
  Synchronized& operator=(const Synchronized&) = delete;

 private:
  const NSObject* _object;
};

}  // namespace kbx
