#include "KBXSemaphore.h"

#include "Assertions.h"
#include "NSMutableDictionary+KBXFillerBlocks.h"
#include "NSUserDefaults+KBX.h"
#include "platform/objects/NSClass.h"

namespace kbx {

KBX_CLASS(KBXSemaphore)

namespace {

/// From name to semaphore. Never freed: threads may still ask while the process ends.
NSMutableDictionary* registry() {
  static auto* const semaphores = NSMutableDictionary::dictionary().leak();
  return semaphores;
}

}  // namespace

KBXSemaphore::KBXSemaphore(std::int64_t count) : _semaphore(dispatch_semaphore_create(count)) {}
KBXSemaphore::~KBXSemaphore() = default;

Ref<KBXSemaphore> KBXSemaphore::initWithCount(std::int64_t count) {
  auto made = Ref<KBXSemaphore>::adopt(new KBXSemaphore(count));
  // Checked on the made object, because the location names it as the receiver.
  KBX_ASSERT_TEXT(made->_semaphore, "_semaphore",
                  Site("KBXFoundation/Source/KBXSemaphore", 11, made, "initWithCount:"));
  return made;
}

Ref<KBXSemaphore> KBXSemaphore::semaphoreForName(NSString* name, std::int64_t defaultCount) {
  auto found = kbxSynchronizedObjectForKeyFillerBlock(registry(), name, [&]() -> Ref<NSObject> {
    return initWithCount(
        kbxIntegerForKey(NSUserDefaults::standardUserDefaults(), name, defaultCount));
  });
  return cast<KBXSemaphore>(found);
}

void KBXSemaphore::wait() { dispatch_semaphore_wait(_semaphore, DISPATCH_TIME_FOREVER); }

void KBXSemaphore::signal() { dispatch_semaphore_signal(_semaphore); }

void KBXSemaphore::performBlockAndWait(const std::function<void()>& block) {
  /// A unit, given back when the block ends, however it does.
  struct Unit {
    explicit Unit(KBXSemaphore* semaphore) : from(semaphore) { from->wait(); }
    ~Unit() { from->signal(); }
    const Ref<KBXSemaphore> from;  // the block may let go of the last other reference
  };
  const Unit unit(this);
  block();
}

}  // namespace kbx
