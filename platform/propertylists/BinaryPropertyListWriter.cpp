#include "platform/propertylists/BinaryPropertyListWriter.h"

#include <bit>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSNumber.h"
#include "platform/objects/SeededHash.h"
#include "platform/propertylists/BinaryPropertyList.h"
#include "platform/propertylists/ByteBuffer.h"
#include "platform/propertylists/NSKeyedArchiverUID.h"
#include "platform/propertylists/SortedEntries.h"

namespace kbx {
namespace {

void appendWord(ByteBuffer& bytes, std::uint64_t word, std::size_t size) {
  char letters[8];
  for (std::size_t i = 0; i < size; ++i)
    letters[i] = static_cast<char>(word >> (8 * (size - 1 - i)) & 0xFF);
  bytes.append({letters, size});
}

/// How many bytes hold the number: 1, 2, 4 or 8.
std::size_t sizeOf(std::uint64_t number) {
  std::size_t size = 1;
  while (size < 8 && number >> (8 * size)) size *= 2;
  return size;
}

void appendMarker(ByteBuffer& bytes, BinaryKind kind, std::size_t low) {
  bytes.append(1, static_cast<char>(static_cast<std::size_t>(kind) << 4 | low));
}

void appendNatural(ByteBuffer& bytes, std::uint64_t number) {
  const std::size_t size = sizeOf(number);
  appendMarker(bytes, BinaryKind::Integer, static_cast<std::size_t>(std::countr_zero(size)));
  appendWord(bytes, number, size);
}

void appendHead(ByteBuffer& bytes, BinaryKind kind, std::size_t length) {
  appendMarker(bytes, kind, length < kLongLength ? length : kLongLength);
  if (length >= kLongLength) appendNatural(bytes, length);
}

void appendReal(ByteBuffer& bytes, BinaryKind kind, double number) {
  appendMarker(bytes, kind, 3);
  appendWord(bytes, std::bit_cast<std::uint64_t>(number), 8);
}

void appendInteger(ByteBuffer& bytes, const NSNumber& number) {
  const std::uint64_t word = number.unsignedIntegerValue();
  const bool isUnsigned = number.kind() == NSNumber::Kind::Unsigned;
  if (!(word >> 63)) return appendNatural(bytes, word);
  // Eight bytes are signed, so a large unsigned number needs sixteen.
  appendMarker(bytes, BinaryKind::Integer, isUnsigned ? 4 : 3);
  if (isUnsigned) appendWord(bytes, 0, 8);
  appendWord(bytes, word, 8);
}

void appendNumber(ByteBuffer& bytes, const NSNumber& number) {
  if (number.isBoolean())
    bytes.append(1, static_cast<char>(number.boolValue() ? kBinaryTrue : kBinaryFalse));
  else if (number.kind() == NSNumber::Kind::Real)
    appendReal(bytes, BinaryKind::Real, number.doubleValue());
  else
    appendInteger(bytes, number);
}

void appendText(ByteBuffer& bytes, const NSString& text) {
  appendHead(bytes, text.isASCII() ? BinaryKind::ASCII : BinaryKind::UTF16, text.length());
  text.visitUnits([&](auto units) {
    if constexpr (sizeof(units[0]) == 1)
      bytes.append({units.data(), units.size()});
    else
      for (char16_t unit : units) appendWord(bytes, unit, sizeof unit);
  });
}

void appendReference(ByteBuffer& bytes, const NSKeyedArchiverUID& reference) {
  const std::size_t size = sizeOf(reference.value());
  appendMarker(bytes, BinaryKind::Identifier, size - 1);
  appendWord(bytes, reference.value(), size);
}

void appendLeaf(ByteBuffer& bytes, NSObject* value) {
  if (auto* text = cast<NSString>(value)) {
    appendText(bytes, *text);
  } else if (auto* number = cast<NSNumber>(value)) {
    appendNumber(bytes, *number);
  } else if (auto* date = cast<NSDate>(value)) {
    appendReal(bytes, BinaryKind::Date, date->timeIntervalSinceReferenceDate());
  } else if (auto* reference = cast<NSKeyedArchiverUID>(value)) {
    appendReference(bytes, *reference);
  } else {
    auto* data = cast<NSData>(value);
    appendHead(bytes, BinaryKind::Data, data->length());
    bytes.append(data->view());
  }
}

/// How many bytes a text or data holds, without its head; 0 for other leaves.
std::size_t contentSize(NSObject* value) {
  if (auto* text = cast<NSString>(value)) return text->length() * (text->isASCII() ? 1 : 2);
  auto* data = cast<NSData>(value);
  return data ? data->length() : 0;
}

/// An object of the file: a short leaf with its bytes, a long one, or a container with what it
/// refers to.
struct Item {
  std::string leaf{};
  NSObject* longLeaf = nullptr;  // borrowed; its bytes are made where they belong
  BinaryKind kind = BinaryKind::Array;
  std::vector<std::size_t> references{};
};

class Writer {
 public:
  Ref<NSData> write(NSObject* list);

 private:
  std::size_t add(NSObject* value);
  std::size_t addLeaf(NSObject* value);
  std::size_t addContainer(BinaryKind kind, const std::vector<NSObject*>& values);
  std::size_t estimatedSize() const;
  void appendItem(const Item& item);
  void appendTable(std::size_t top);

  std::vector<Item> _items;
  std::unordered_map<std::string, std::size_t, SeededHash>
      _leaves;  // the place of each short one, by its bytes
  std::vector<std::size_t> _offsets;
  ByteBuffer _leaf;  // the room in which each short one is made
  ByteBuffer _bytes;
};

std::size_t Writer::addLeaf(NSObject* value) {
  const std::size_t place = _items.size();
  if (contentSize(value) > kLongestSharedLeaf) {
    _items.push_back({.longLeaf = value});
    return place;
  }
  _leaf.clear();
  appendLeaf(_leaf, value);
  std::string leaf(_leaf.view());
  if (leaf.size() <= kLongestSharedLeaf) {
    auto [found, isNew] = _leaves.try_emplace(leaf, place);
    if (!isNew) return found->second;
  }
  _items.push_back({.leaf = std::move(leaf)});
  return place;
}

std::size_t Writer::addContainer(BinaryKind kind, const std::vector<NSObject*>& values) {
  const std::size_t place = _items.size();
  _items.push_back({.kind = kind});
  std::vector<std::size_t> references;
  references.reserve(values.size());
  for (NSObject* value : values) references.push_back(add(value));
  _items[place].references = std::move(references);
  return place;
}

std::size_t Writer::add(NSObject* value) {
  if (cast<NSString>(value)) return addLeaf(value);  // what most values and all keys are
  std::vector<NSObject*> values;
  if (auto* array = cast<NSArray>(value)) {
    for (const auto& element : *array) values.push_back(element);
    return addContainer(BinaryKind::Array, values);
  }
  auto* dictionary = cast<NSDictionary>(value);
  if (!dictionary) return addLeaf(value);
  const auto entries = sortedEntries(dictionary);
  for (const auto* entry : entries) values.push_back(entry->key);
  for (const auto* entry : entries) values.push_back(entry->value);
  return addContainer(BinaryKind::Dictionary, values);
}

/// A little more than the file will be.
std::size_t Writer::estimatedSize() const {
  constexpr std::size_t kLongestHead = 10;
  const std::size_t referenceSize = sizeOf(_items.size());
  std::size_t size = kBinaryHead.size() + kBinaryTrailerLength;
  for (const Item& item : _items)
    size += kLongestHead + item.leaf.size() + item.references.size() * referenceSize +
            (item.longLeaf ? contentSize(item.longLeaf) : 0);
  return size + _items.size() * sizeOf(size);
}

void Writer::appendItem(const Item& item) {
  _offsets.push_back(_bytes.size());
  if (item.longLeaf) return appendLeaf(_bytes, item.longLeaf);
  if (!item.leaf.empty()) {
    _bytes.append(item.leaf);
    return;
  }
  const std::size_t parts = item.kind == BinaryKind::Dictionary ? 2 : 1;
  appendHead(_bytes, item.kind, item.references.size() / parts);
  for (std::size_t place : item.references) appendWord(_bytes, place, sizeOf(_items.size()));
}

void Writer::appendTable(std::size_t top) {
  const std::size_t start = _bytes.size();
  const std::size_t size = sizeOf(start);
  for (std::size_t offset : _offsets) appendWord(_bytes, offset, size);
  _bytes.append(6, '\0');
  appendWord(_bytes, size, 1);
  appendWord(_bytes, sizeOf(_items.size()), 1);
  appendWord(_bytes, _items.size(), 8);
  appendWord(_bytes, top, 8);
  appendWord(_bytes, start, 8);
}

Ref<NSData> Writer::write(NSObject* list) {
  const std::size_t top = add(list);
  _bytes.reserve(estimatedSize());
  _bytes.append(kBinaryHead);
  for (const Item& item : _items) appendItem(item);
  appendTable(top);
  return _bytes.take();
}

}  // namespace

Ref<NSData> binaryFromPropertyList(NSObject* list) { return Writer().write(list); }

std::string binaryFromLeaf(NSObject* leaf) {
  ByteBuffer bytes;
  appendLeaf(bytes, leaf);
  return std::string(bytes.view());
}

}  // namespace kbx
