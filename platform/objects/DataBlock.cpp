#include "platform/objects/DataBlock.h"

#include <cstdlib>
#include <new>

namespace kbx {

void DataBlock::Free::operator()(std::uint8_t* block) const noexcept { std::free(block); }

DataBlock::Block DataBlock::allocate(std::size_t size) {
  void* const block = size <= PTRDIFF_MAX - kHead ? std::malloc(kHead + size) : nullptr;
  if (!block) throw std::bad_alloc();
  return Block(static_cast<std::uint8_t*>(block));
}

DataBlock::DataBlock(std::size_t size) : _size(size), _block(allocate(size)) {}

void DataBlock::shrink(std::size_t length) {
  void* const smaller = std::realloc(_block.get(), kHead + length);
  if (!smaller) return;  // then the whole block stays as it is
  static_cast<void>(_block.release());
  _block.reset(static_cast<std::uint8_t*>(smaller));
}

Ref<NSData> DataBlock::take(std::size_t length) {
  if (length < _size - _size / 8) shrink(length);
  std::uint8_t* const own = bytes();
  auto* const data = ::new (_block.release()) NSData(own, length);
  data->_isOneBlock = true;
  return Ref<NSData>::adopt(data);
}

}  // namespace kbx
