// KBXSemaphore: a counting semaphore, shared by name.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/objects/NSObject.h"
#include "platform/objects/NSString.h"
#include "platform/threads/DispatchSemaphore.h"

namespace kbx {

/// Limits how many threads do something at once. Safe from any thread.
class KBXSemaphore final : public NSObject {
  KBX_OBJECT(KBXSemaphore, NSObject)
 public:
  /// A semaphore with that many units. (initWithCount:)
  ///
  /// A negative count raises "Assertion Failed: _semaphore". With 0 everybody waits until somebody
  /// signals.
  static Ref<KBXSemaphore> initWithCount(std::int64_t count);

  /// The semaphore of that name, the same one for all callers while the process lives.
  /// (semaphoreForName:defaultCount:)
  ///
  /// name          required: "Precondition Failed: key"
  /// defaultCount  its units, unless the user default whose key is the name says otherwise
  ///
  /// The count is read when the name is first asked for and never again. A negative one raises
  /// "Assertion Failed: _semaphore", and the name stays free; 0 holds up every user of the name for
  /// good. Nobody waits for another's first question: threads that ask for a new name at the same
  /// moment may get one semaphore each, of which the last one made stays.
  static Ref<KBXSemaphore> semaphoreForName(NSString* name, std::int64_t defaultCount);

  /// Takes a unit, waiting for it without limit. (wait)
  void wait();
  /// Gives a unit. (signal)
  void signal();
  /// Runs the block on the calling thread with a unit taken, waiting for it without limit.
  /// (performBlockAndWait:)
  ///
  /// The unit is given back however the block ends; what it raises or throws passes on unchanged.
  void performBlockAndWait(const std::function<void()>& block);

 private:
  explicit KBXSemaphore(std::int64_t count);
  ~KBXSemaphore() override;

  const Ref<DispatchSemaphore> _semaphore;  // absent for a negative count
};

}  // namespace kbx
