// MainRunLoop: what the main thread does while it waits for work.
#pragma once

#include "platform/objects/NSString.h"
#include "platform/system/Service.h"
#include "platform/threads/DispatchQueue.h"

namespace kbx {

/// Why a run of the run loop ended.
enum CFRunLoopRunResult {
  kCFRunLoopRunFinished = 1,       // it had nothing to do and nothing could come
  kCFRunLoopRunStopped = 2,        // CFRunLoopStop
  kCFRunLoopRunTimedOut = 3,       // the time was up
  kCFRunLoopRunHandledSource = 4,  // blocks of the main queue have run, and that was asked for
};

/// The run loop of the main thread; the functions of CFRunLoop.h say what each question means. A
/// double of a test can look at what is queued, and run it when it likes. Called from any thread.
class KBX_PLATFORM MainRunLoop {
 public:
  virtual ~MainRunLoop();
  virtual void performBlock(NSString* mode, dispatch_block_t block) = 0;
  virtual void wakeUp() = 0;
  virtual void stop() = 0;
  virtual void addCommonMode(NSString* mode) = 0;
  /// Called on the main thread only.
  virtual CFRunLoopRunResult runInMode(NSString* mode, double seconds,
                                       bool returnAfterSourceHandled) = 0;

  KBX_SERVICE_INTERFACE(MainRunLoop)
};

}  // namespace kbx
