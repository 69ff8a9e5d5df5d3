#include "platform/system/Clock.h"

#include <chrono>

namespace kbx {
namespace {

class SystemClock final : public Clock {
 public:
  double secondsSince1970() override {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<double>(sinceEpoch).count();
  }
};

}  // namespace

Clock::~Clock() = default;

KBX_SERVICE(Clock, SystemClock)

}  // namespace kbx
