// NSThread: a thread of the process, as an object with a name.
#pragma once

#include "platform/objects/NSObject.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// Any thread has one, however it was started. Safe from any thread.
class KBX_PLATFORM NSThread final : public NSObject {
  KBX_OBJECT(NSThread, NSObject)
 public:
  /// The calling thread: the same object in each of its calls, until it ends. (currentThread)
  static Ref<NSThread> currentThread();

  /// Whether this is the thread that the process began with. (isMainThread)
  bool isMainThread() const noexcept { return _isMain; }
  /// Empty until a name is set; what the system calls the thread does not matter. (name)
  Ref<NSString> name() const;
  /// name  absent is empty (setName:)
  void setName(NSString* name);

 private:
  NSThread();
  ~NSThread() override;

  const bool _isMain;
  Ref<NSString> _name;  // under the object's lock
};

}  // namespace kbx
