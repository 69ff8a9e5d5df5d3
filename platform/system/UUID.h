// Random UUIDs, and bytes of the system's random source.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "platform/Export.h"
#include "platform/system/Service.h"

namespace kbx {

using UUIDBytes = std::array<std::uint8_t, 16>;

/// The system's random source. Called from any thread.
class KBX_PLATFORM RandomSource {
 public:
  virtual ~RandomSource();
  /// Fills the span; false, and nothing filled, when there are no random bytes.
  virtual bool fill(std::span<std::uint8_t> bytes) = 0;

  KBX_SERVICE_INTERFACE(RandomSource)
};

/// Fills the span from the system's random source; false, and nothing filled, when there is none.
KBX_PLATFORM bool fillWithRandomBytes(std::span<std::uint8_t> bytes);

/// A new UUID of version 4; all zero when the system gives no random bytes. Any thread.
KBX_PLATFORM UUIDBytes randomUUID();

/// The standard form in upper case: "8B08C4BF-415B-11D8-B3F9-0003936726FC".
KBX_PLATFORM std::string uuidString(const UUIDBytes& bytes);

}  // namespace kbx
