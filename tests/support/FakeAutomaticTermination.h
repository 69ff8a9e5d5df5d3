// FakeAutomaticTermination: keeps the calls in their order.
#pragma once

#include <string>
#include <vector>

#include "platform/system/AutomaticTermination.h"
#include "platform/text/Format.h"

namespace kbx {

/// Install it with ScopedService<AutomaticTermination>.
class FakeAutomaticTermination final : public AutomaticTermination {
 public:
  bool isSupportEnabled() override { return isEnabled; }
  void setSupportEnabled(bool enabled) override {
    isEnabled = enabled;
    calls.push_back(enabled ? "support on" : "support off");
  }
  void disable(NSString* reason) override {
    calls.push_back("disable: " + descriptionOf(reason)->lossyUTF8());
  }
  void enable(NSString* reason) override {
    calls.push_back("enable: " + descriptionOf(reason)->lossyUTF8());
  }

  bool isEnabled = false;
  std::vector<std::string> calls;
};

}  // namespace kbx
