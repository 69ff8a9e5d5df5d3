// ByteBlock: room for bytes that becomes a buffer object without a copy.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>

#include "platform/objects/NSData.h"

namespace kbx {

/// A block of the C allocator that somebody fills and then gives away.
class ByteBlock {
 public:
  explicit ByteBlock(std::size_t size)
      : _size(size), _bytes(static_cast<std::uint8_t*>(std::malloc(size ? size : 1))) {
    if (!_bytes) throw std::bad_alloc();
  }

  std::uint8_t* bytes() const noexcept { return _bytes.get(); }

  /// The first `length` bytes as an object, which keeps the block.
  Ref<NSData> take(std::size_t length) {
    if (length < _size - _size / 8) shrink(length);
    return NSData::dataWithBytesNoCopy(_bytes.release(), length);
  }

 private:
  struct Free {
    void operator()(void* block) const noexcept { std::free(block); }
  };

  void shrink(std::size_t length) {
    void* smaller = std::realloc(_bytes.get(), length ? length : 1);
    if (!smaller) return;  // then the whole block stays as it is
    static_cast<void>(_bytes.release());
    _bytes.reset(static_cast<std::uint8_t*>(smaller));
  }

  std::size_t _size;
  std::unique_ptr<std::uint8_t, Free> _bytes;
};

}  // namespace kbx
