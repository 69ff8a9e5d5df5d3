#include "platform/threads/NSRunLoop.h"

#include "platform/objects/NSClass.h"

namespace kbx {

KBX_CLASS(NSRunLoop)

NSRunLoop::~NSRunLoop() = default;

NSRunLoop* NSRunLoop::mainRunLoop() {
  static auto* const loop = new NSRunLoop;
  return loop;
}

CFRunLoopRef NSRunLoop::getCFRunLoop() const { return CFRunLoopGetMain(); }

}  // namespace kbx
