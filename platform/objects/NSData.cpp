#include "platform/objects/NSData.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "platform/objects/DataBlock.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/objects/NSString.h"
#include "platform/objects/SeededHash.h"

namespace kbx {

KBX_CLASS(NSData)
KBX_CLASS(NSMutableData)
KBX_ADOPTS(NSData, NSCoding)

namespace {

constexpr std::size_t kShownWhole = 24;  // bytes that a description shows without an ellipsis

void appendHex(std::string& text, std::string_view bytes) {
  constexpr char digits[] = "0123456789abcdef";
  for (unsigned char byte : bytes) text += digits[byte >> 4], text += digits[byte & 15];
}

}  // namespace

NSData::~NSData() {
  if (!_owner && !_isOneBlock) std::free(_bytes);
}

void* NSData::operator new(std::size_t size) {
  void* const block = std::malloc(size);
  if (!block) throw std::bad_alloc();
  return block;
}

void NSData::operator delete(void* object) noexcept { std::free(object); }

Ref<NSData> NSData::data() { return dataWithBytesNoCopy(nullptr, 0); }

Ref<NSData> NSData::dataWithBytes(const void* bytes, std::size_t length) {
  if (length == 0) return data();
  DataBlock block(length);
  std::memcpy(block.bytes(), bytes, length);
  return block.take(length);
}

Ref<NSData> NSData::dataWithBytes(std::string_view bytes) {
  return dataWithBytes(bytes.data(), bytes.size());
}

Ref<NSData> NSData::dataWithBytesNoCopy(void* bytes, std::size_t length) {
  return Ref<NSData>::adopt(new NSData(static_cast<std::uint8_t*>(bytes), length));
}

Ref<NSData> NSData::dataWithData(NSData* data) {
  if (!data) return nullptr;
  if (cast<NSMutableData>(data)) return dataWithBytes(data->view());
  auto result = dataWithBytesNoCopy(data->_bytes, data->_length);
  result->_owner = data->_owner ? data->_owner : Ref<NSData>(data);  // no chain of owners
  return result;
}

Ref<NSData> NSData::subdataWithRange(NSRange range) const {
  if (range.location > _length || range.length > _length - range.location)
    raiseRange("-[NSData subdataWithRange:]: range " + NSStringFromRange(range)->lossyUTF8() +
               " exceeds data length " + std::to_string(_length));
  return dataWithBytes(view().substr(range.location, range.length));
}

Ref<NSData> NSData::copy() { return static_cast<NSData*>(copyObject().get()); }

Ref<NSMutableData> NSData::mutableCopy() const {
  auto result = NSMutableData::dataWithCapacity(_length);
  result->appendBytes(view());
  return result;
}

Ref<NSString> NSData::description() const {
  std::string text = "{length = " + std::to_string(_length) + ", bytes = 0x";
  if (_length <= kShownWhole) {
    appendHex(text, view());
  } else {
    appendHex(text, view().substr(0, kShownWhole - 8));
    text += " ... ";
    appendHex(text, view().substr(_length - 8));
  }
  return NSString::stringWithUTF8(text + "}");
}

bool NSData::isEqual(NSObject* other) const {
  auto* data = cast<NSData>(other);
  return data && data->view() == view();
}

std::size_t NSData::hash() const {
  // All of the bytes: a stranger's keys would differ where no hash looks.
  return seededHash(view());
}

Ref<NSMutableData> NSMutableData::data() { return Ref<NSMutableData>::adopt(new NSMutableData); }

Ref<NSMutableData> NSMutableData::dataWithCapacity(std::size_t capacity) {
  auto result = data();
  result->reserve(capacity);
  return result;
}

Ref<NSMutableData> NSMutableData::dataWithLength(std::size_t length) {
  auto result = data();
  result->setLength(length);
  return result;
}

void NSMutableData::reserve(std::size_t capacity) {
  if (capacity <= _capacity) return;
  if (capacity > PTRDIFF_MAX) throw std::bad_alloc();
  void* block = std::realloc(_bytes, capacity);
  if (!block) throw std::bad_alloc();
  _bytes = static_cast<std::uint8_t*>(block);
  _capacity = capacity;
}

void NSMutableData::grow(std::size_t length) {
  // By half at least, so that a buffer that grows by small pieces is not copied for each of them.
  if (length > _capacity) reserve(std::max(length, _capacity + _capacity / 2));
}

void NSMutableData::setLength(std::size_t length) {
  grow(length);
  if (length > _length) std::memset(_bytes + _length, 0, length - _length);
  _length = length;
}

void NSMutableData::appendBytes(const void* bytes, std::size_t length) {
  if (length == 0) return;
  if (length > SIZE_MAX - _length) throw std::bad_alloc();
  // The bytes may lie inside this very buffer, which growing moves.
  const auto* from = static_cast<const std::uint8_t*>(bytes);
  const bool isInside = _bytes && from >= _bytes && from < _bytes + _length;
  const std::size_t offset = isInside ? static_cast<std::size_t>(from - _bytes) : 0;
  grow(_length + length);
  std::memmove(_bytes + _length, isInside ? _bytes + offset : from, length);
  _length += length;
}

void NSMutableData::appendData(NSData* data) {
  if (data) appendBytes(data->bytes(), data->length());
}

Ref<NSObject> NSMutableData::copyObject() { return NSData::dataWithBytes(view()); }

}  // namespace kbx
