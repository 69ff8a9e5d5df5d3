#include "platform/threads/CFRunLoop.h"

#include <utility>

#include "platform/threads/SystemThreads.h"

namespace kbx {
namespace {

constexpr double kNoLimit = 1e10;  // seconds

}  // namespace

CFRunLoopRef CFRunLoopGetMain() { return &MainRunLoop::current(); }

void CFRunLoopPerformBlock(CFRunLoopRef loop, NSString* mode, dispatch_block_t block) {
  if (mode && block) loop->performBlock(mode, std::move(block));
}

void CFRunLoopWakeUp(CFRunLoopRef loop) { loop->wakeUp(); }

void CFRunLoopStop(CFRunLoopRef loop) { loop->stop(); }

void CFRunLoopAddCommonMode(CFRunLoopRef loop, NSString* mode) {
  if (mode) loop->addCommonMode(mode);
}

CFRunLoopRunResult CFRunLoopRunInMode(NSString* mode, double seconds,
                                      bool returnAfterSourceHandled) {
  if (!isCallingThreadMain() || !mode || isEqual(mode, kCFRunLoopCommonModes()))
    return kCFRunLoopRunFinished;
  return CFRunLoopGetMain()->runInMode(mode, seconds, returnAfterSourceHandled);
}

void CFRunLoopRun() {
  CFRunLoopRunResult result;
  do {
    result = CFRunLoopRunInMode(kCFRunLoopDefaultMode(), kNoLimit, false);
  } while (result == kCFRunLoopRunTimedOut);
}

}  // namespace kbx
