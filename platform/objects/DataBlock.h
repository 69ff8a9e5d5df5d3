// DataBlock: room for bytes that becomes a data object without a copy.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/objects/NSData.h"

namespace kbx {

/// Room that somebody fills and then gives away. The object and its bytes lie in one block of the
/// C allocator, because short bytes cost less to copy than a second block costs to obtain.
class KBX_PLATFORM DataBlock {
 public:
  explicit DataBlock(std::size_t size);

  std::uint8_t* bytes() const noexcept { return _block.get() + kHead; }

  /// The first `length` bytes as an object, once; nothing is left here then. Room for many more
  /// bytes than these is given back.
  Ref<NSData> take(std::size_t length);

 private:
  struct Free {
    void operator()(std::uint8_t* block) const noexcept;
  };
  using Block = std::unique_ptr<std::uint8_t, Free>;

  // The object, and what is left to the alignment that the allocator promises.
  static constexpr std::size_t kHead = (sizeof(NSData) + 15) / 16 * 16;

  static Block allocate(std::size_t size);
  void shrink(std::size_t length);

  std::size_t _size;
  Block _block;
};

}  // namespace kbx
