// NSKeyedArchiverUID: a reference of a keyed archive, which only the binary form can hold.
#pragma once

#include <cstdint>

#include "platform/objects/NSObject.h"

namespace kbx {

/// The number of an object in an archive. Not a property-list value: lists that hold one are
/// written and read for archives only. Immutable.
class KBX_PLATFORM NSKeyedArchiverUID final : public NSObject {
  KBX_OBJECT(NSKeyedArchiverUID, NSObject)
 public:
  static Ref<NSKeyedArchiverUID> UIDWithValue(std::uint64_t value);

  std::uint64_t value() const noexcept { return _value; }

 private:
  explicit NSKeyedArchiverUID(std::uint64_t value) noexcept : _value(value) {}

  const std::uint64_t _value;
};

}  // namespace kbx
