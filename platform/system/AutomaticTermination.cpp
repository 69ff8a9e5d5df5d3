#include "platform/system/AutomaticTermination.h"

#include <atomic>

namespace kbx {
namespace {

/// The answerer of a system that never ends an idle process.
class NoAutomaticTermination final : public AutomaticTermination {
 public:
  bool isSupportEnabled() override { return _isSupportEnabled; }
  void setSupportEnabled(bool enabled) override { _isSupportEnabled = enabled; }
  void disable(NSString*) override {}
  void enable(NSString*) override {}

 private:
  std::atomic<bool> _isSupportEnabled{false};
};

}  // namespace

AutomaticTermination::~AutomaticTermination() = default;

KBX_SERVICE(AutomaticTermination, NoAutomaticTermination)

}  // namespace kbx
