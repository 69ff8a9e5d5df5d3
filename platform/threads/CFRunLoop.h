// CFRunLoop: running the main run loop, and queueing blocks for it.
#pragma once

#include "platform/threads/MainRunLoop.h"

namespace kbx {

using CFRunLoopRef = MainRunLoop*;

/// The mode in which a program's main thread commonly runs.
inline NSString* kCFRunLoopDefaultMode() { return "kCFRunLoopDefaultMode"_ns; }
/// Stands for every common mode where a block is queued. At first the default mode is the only one.
inline NSString* kCFRunLoopCommonModes() { return "kCFRunLoopCommonModes"_ns; }

// From any thread unless noted. The loop is required.

/// The run loop of the main thread, never freed. Other threads have none.
KBX_PLATFORM CFRunLoopRef CFRunLoopGetMain();

/// Queues a block for the next time that the loop runs in the mode. Does not wake the loop: where
/// it sleeps, the block waits for another reason to wake up.
///
/// mode   kCFRunLoopCommonModes() for all common modes; without a mode nothing happens
/// block  without one nothing happens
///
/// An exception that leaves the block, of whatever type, leaves the function that runs the loop;
/// the other blocks stay queued.
KBX_PLATFORM void CFRunLoopPerformBlock(CFRunLoopRef loop, NSString* mode, dispatch_block_t block);

/// Lets the loop look for work if it sleeps, or else before it sleeps next.
KBX_PLATFORM void CFRunLoopWakeUp(CFRunLoopRef loop);

/// Ends the innermost run of the loop, after the blocks that are running. Nothing when the loop
/// does not run.
KBX_PLATFORM void CFRunLoopStop(CFRunLoopRef loop);

/// Makes a mode a common one for good. Nothing for an absent one.
KBX_PLATFORM void CFRunLoopAddCommonMode(CFRunLoopRef loop, NSString* mode);

/// Runs the calling thread's loop: its queued blocks and, in a common mode, those of the main
/// queue.
///
/// mode                      one mode; absent and kCFRunLoopCommonModes() are none
/// seconds                   how long; 0 or less does what is waiting and returns
/// returnAfterSourceHandled  ends it, too, when blocks of the main queue have run
///
/// Finished without a mode, off the main thread, and where nothing could come: in a mode that is
/// not common and has no block. May be called by a block that the loop runs. Inside a block of the
/// main queue it leaves that queue alone, which runs one block at a time.
KBX_PLATFORM CFRunLoopRunResult CFRunLoopRunInMode(NSString* mode, double seconds,
                                                   bool returnAfterSourceHandled);

/// Runs the calling thread's loop in the default mode until it is stopped. Returns at once off the
/// main thread.
KBX_PLATFORM void CFRunLoopRun();

}  // namespace kbx
