// Arena: memory for many small things that die together.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>
#include <vector>

namespace kbx {

/// Gives out memory that lives as long as the arena. Nothing given out is destroyed, so only
/// trivially destructible things may live there. One thread at a time.
class Arena {
 public:
  Arena() = default;
  Arena(Arena&&) = default;
  Arena& operator=(Arena&&) = default;

  template <class T>
  T* make() {
    static_assert(std::is_trivially_destructible_v<T>);
    return new (allocate(sizeof(T), alignof(T))) T();
  }

  template <class T>
  T* makeArray(std::size_t count) {
    static_assert(std::is_trivially_destructible_v<T>);
    return new (allocate(sizeof(T) * count, alignof(T))) T[count];
  }

  char* bytes(std::size_t count) { return static_cast<char*>(allocate(count, 1)); }

  std::string_view copy(std::string_view text) {
    char* const place = bytes(text.size());
    if (!text.empty()) std::memcpy(place, text.data(), text.size());
    return {place, text.size()};
  }

 private:
  void* allocate(std::size_t size, std::size_t alignment) {
    std::size_t start = (_used + alignment - 1) & ~(alignment - 1);
    if (start + size > _capacity) {
      addBlock(size);
      start = 0;
    }
    _used = start + size;
    return _block + start;
  }

  // Blocks grow with the content: a letter of a few lines costs a page, a large one few
  // calls of the allocator.
  void addBlock(std::size_t size) {
    constexpr std::size_t kFirst = 4096;
    constexpr std::size_t kLargest = std::size_t{1} << 20;
    const std::size_t grown = _capacity == 0 ? kFirst : std::min(_capacity * 2, kLargest);
    _capacity = std::max(grown, size);
    _blocks.push_back(std::make_unique_for_overwrite<std::byte[]>(_capacity));
    _block = _blocks.back().get();
  }

  std::vector<std::unique_ptr<std::byte[]>> _blocks;
  std::byte* _block = nullptr;
  std::size_t _capacity = 0;
  std::size_t _used = 0;
};

}  // namespace kbx
