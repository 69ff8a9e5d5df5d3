// FakeLaunchServices: items that are what a test wants.
#pragma once

#include "platform/resources/LaunchServices.h"

namespace kbx {

/// Installed while it lives.
class FakeLaunchServices final : public LaunchServices {
 public:
  OSStatus basicFlags(NSURL*, LSItemInfoFlags* flags) override {
    ++questions;
    *flags = answer;  // even on failure: nobody may look at it then
    return status;
  }

  LSItemInfoFlags answer = 0;
  OSStatus status = 0;
  int questions = 0;

 private:
  ScopedService<LaunchServices> _installed{*this};
};

}  // namespace kbx
