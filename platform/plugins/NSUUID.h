// NSUUID: a universally unique identifier.
#pragma once

#include <array>
#include <cstdint>

#include "platform/objects/NSObject.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// Sixteen bytes. Immutable; equal UUIDs are the same object while somebody holds it, so identity
/// is equality. Safe from any thread.
class KBX_PLATFORM NSUUID final : public NSObject {
  KBX_OBJECT(NSUUID, NSObject)
 public:
  using Bytes = std::array<std::uint8_t, 16>;

  /// A random one, version 4. (UUID)
  static Ref<NSUUID> UUID();
  static Ref<NSUUID> UUIDWithBytes(const Bytes& bytes);
  /// Reads 32 hexadecimal digits in either case, as one word or in the groups 8-4-4-4-12, alone or
  /// in braces, with blanks around them; absent for any other text and for an absent one.
  static Ref<NSUUID> UUIDWithString(NSString* text);
  /// The same object as UUIDWithBytes(), kept for ever.
  static NSUUID* constant(const Bytes& bytes);

  const Bytes& bytes() const noexcept { return _bytes; }
  /// Upper case with hyphens, 36 characters. (UUIDString)
  Ref<NSString> UUIDString() const;
  /// The same text.
  Ref<NSString> description() const override { return UUIDString(); }

 private:
  explicit NSUUID(const Bytes& bytes) noexcept : _bytes(bytes) {}
  ~NSUUID() override;

  const Bytes _bytes;
};

}  // namespace kbx
