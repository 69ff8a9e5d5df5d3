// FakeRandomSource: a system that has random bytes, or none.
#pragma once

#include <algorithm>

#include "platform/system/UUID.h"

namespace kbx {

/// Install it with ScopedService<RandomSource>. Fills with one byte while it has any.
class FakeRandomSource final : public RandomSource {
 public:
  bool fill(std::span<std::uint8_t> bytes) override {
    if (hasBytes) std::ranges::fill(bytes, byte);
    return hasBytes;
  }

  bool hasBytes = false;
  std::uint8_t byte = 0xFF;
};

}  // namespace kbx
