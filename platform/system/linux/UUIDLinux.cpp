#include <sys/random.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "platform/system/UUID.h"

namespace kbx {
namespace {

class LinuxRandomSource final : public RandomSource {
 public:
  bool fill(std::span<std::uint8_t> bytes) override {
    std::vector<std::uint8_t> random(bytes.size());
    std::size_t filled = 0;
    while (filled < random.size()) {
      const ssize_t count = getrandom(random.data() + filled, random.size() - filled, 0);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return false;
      filled += static_cast<std::size_t>(count);
    }
    if (filled > 0) std::memcpy(bytes.data(), random.data(), filled);
    return true;
  }
};

}  // namespace

KBX_SERVICE(RandomSource, LinuxRandomSource)

}  // namespace kbx
