// ByteBuffer: bytes that grow at their end and become a data object without a copy.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

#include "platform/objects/NSData.h"

namespace kbx {

/// Belongs to one thread at a time.
class ByteBuffer {
 public:
  ByteBuffer() = default;
  ~ByteBuffer() { std::free(_bytes); }
  ByteBuffer(const ByteBuffer&) = delete;
  ByteBuffer& operator=(const ByteBuffer&) = delete;

  std::size_t size() const noexcept { return _size; }
  std::string_view view() const noexcept { return {_bytes, _size}; }

  ByteBuffer& append(std::string_view bytes) {
    if (!bytes.empty()) std::memcpy(grow(bytes.size()), bytes.data(), bytes.size());
    return *this;
  }
  ByteBuffer& append(std::size_t count, char byte) {
    if (count > 0) std::memset(grow(count), byte, count);
    return *this;
  }
  /// Where `count` more bytes begin, which the caller writes.
  char* grow(std::size_t count) {
    if (count > _room - _size) reserve(std::max({_size + count, 2 * _room, std::size_t{256}}));
    return _bytes + std::exchange(_size, _size + count);
  }
  /// Makes room for so many bytes in all.
  void reserve(std::size_t room) {
    if (room <= _room) return;
    // Large blocks are moved by the system's page tables, not by copying.
    auto* bytes = static_cast<char*>(std::realloc(_bytes, room));
    if (!bytes) throw std::bad_alloc();
    _bytes = bytes, _room = room;
  }
  /// Keeps the room.
  void clear() noexcept { _size = 0; }
  /// The bytes so far, with the room that they came to have: a list is stored or sent and gone, and
  /// giving back what is not used costs more than it saves. The buffer is empty afterwards.
  Ref<NSData> take() {
    _room = 0;
    return NSData::dataWithBytesNoCopy(std::exchange(_bytes, nullptr), std::exchange(_size, 0));
  }

 private:
  char* _bytes = nullptr;  // of the C allocator
  std::size_t _size = 0, _room = 0;
};

}  // namespace kbx
