// RecordingMainRunLoop: a main run loop that never runs, and keeps what it is asked for.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/threads/MainRunLoop.h"

namespace kbx {

/// Installed while it lives. For one thread.
class RecordingMainRunLoop final : public MainRunLoop {
 public:
  struct Queued {
    std::string mode;
    dispatch_block_t block;
  };

  void performBlock(NSString* mode, dispatch_block_t block) override {
    if (runsAtOnce) block();
    queued.push_back({mode->lossyUTF8(), std::move(block)});
  }
  void wakeUp() override { ++wakeUps; }
  void stop() override {}
  void addCommonMode(NSString*) override {}
  CFRunLoopRunResult runInMode(NSString*, double, bool) override { return kCFRunLoopRunFinished; }

  /// A main thread that is quicker than whoever queues a block.
  bool runsAtOnce = false;
  std::vector<Queued> queued;
  int wakeUps = 0;

 private:
  ScopedService<MainRunLoop> _installed{*this};
};

}  // namespace kbx
