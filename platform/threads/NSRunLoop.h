// NSRunLoop: the run loop of the main thread as an object.
#pragma once

#include "platform/objects/NSObject.h"
#include "platform/threads/CFRunLoop.h"

namespace kbx {

/// Safe from any thread.
class KBX_PLATFORM NSRunLoop final : public NSObject {
  KBX_OBJECT(NSRunLoop, NSObject)
 public:
  /// The one object for the main thread's loop, never freed. (mainRunLoop)
  static NSRunLoop* mainRunLoop();
  /// What the functions of CFRunLoop.h take. Never absent. (getCFRunLoop)
  CFRunLoopRef getCFRunLoop() const;

 private:
  NSRunLoop() = default;
  ~NSRunLoop() override;
};

}  // namespace kbx
