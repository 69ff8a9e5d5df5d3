#include "platform/threads/NSThread.h"

#include <utility>

#include "platform/objects/NSClass.h"
#include "platform/threads/Synchronized.h"
#include "platform/threads/SystemThreads.h"

namespace kbx {

KBX_CLASS(NSThread)

namespace {

// Plain variables can be read even while the thread is ending and its other variables have gone.
thread_local NSThread* current = nullptr;
thread_local bool isEnding = false;

/// Gives the thread's own reference back when the thread ends.
struct CurrentThreadKeeper {
  ~CurrentThreadKeeper() {
    isEnding = true;
    std::exchange(current, nullptr)->release();
  }
};

}  // namespace

NSThread::NSThread() : _isMain(isCallingThreadMain()), _name(NSString::string()) {}
NSThread::~NSThread() = default;

Ref<NSThread> NSThread::currentThread() {
  if (isEnding) return Ref<NSThread>::adopt(new NSThread);  // nobody is left to keep it
  if (!current) {
    current = new NSThread;
    static thread_local CurrentThreadKeeper keeper;
  }
  return current;
}

Ref<NSString> NSThread::name() const {
  Synchronized lock(this);
  return _name;
}

void NSThread::setName(NSString* name) {
  Synchronized lock(this);
  _name = name ? Ref<NSString>(name) : NSString::string();
}

}  // namespace kbx
