// GrowingBytes: a byte buffer that is filled at its end and then becomes a data object.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

#include "platform/objects/NSData.h"

namespace kbx {

/// Grows through the C allocator, which moves large blocks without copying them, and gives its
/// block away without a copy.
class GrowingBytes {
 public:
  explicit GrowingBytes(std::size_t capacity = 0) { reserve(capacity); }
  ~GrowingBytes() { std::free(_bytes); }
  GrowingBytes(const GrowingBytes&) = delete;
  GrowingBytes& operator=(const GrowingBytes&) = delete;

  std::size_t size() const { return _size; }
  std::string_view view() const { return {_bytes, _size}; }

  void append(std::string_view bytes) {
    char* const place = room(bytes.size());
    if (!bytes.empty()) std::memcpy(place, bytes.data(), bytes.size());
    _size += bytes.size();
  }
  void append(char byte) {
    *room(1) = byte;
    ++_size;
  }
  void append(std::size_t count, char byte) {
    char* const place = room(count);
    if (count > 0) std::memset(place, byte, count);
    _size += count;
  }
  void removeLast() { --_size; }

  /// Space for so many bytes behind the end; added() says how many were stored there.
  char* room(std::size_t count) {
    if (_capacity - _size < count) reserve(_size + count);
    return _bytes + _size;
  }
  void added(std::size_t count) { _size += count; }

  /// The bytes as an object; this buffer is empty afterwards.
  Ref<NSData> take() {
    if (_size < _capacity / 2) shrink();
    const std::size_t size = std::exchange(_size, 0);
    _capacity = 0;
    return NSData::dataWithBytesNoCopy(std::exchange(_bytes, nullptr), size);
  }

 private:
  void reserve(std::size_t wanted) {
    if (wanted <= _capacity) return;
    resize(_bytes ? std::max(wanted, _capacity + _capacity / 2) : wanted);
  }
  void shrink() {
    if (_size > 0) resize(_size);
  }
  void resize(std::size_t capacity) {
    auto* const moved = static_cast<char*>(std::realloc(_bytes, capacity));
    if (!moved) throw std::bad_alloc();
    _bytes = moved;
    _capacity = capacity;
  }

  char* _bytes = nullptr;
  std::size_t _size = 0;
  std::size_t _capacity = 0;
};

}  // namespace kbx
