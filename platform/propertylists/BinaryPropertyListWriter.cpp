#include "platform/propertylists/BinaryPropertyListWriter.h"

#include <bit>
#include <unordered_map>
#include <vector>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSNumber.h"
#include "platform/propertylists/BinaryPropertyList.h"
#include "platform/propertylists/SortedEntries.h"

namespace kbx {
namespace {

void appendWord(std::string& bytes, std::uint64_t word, std::size_t size) {
  for (std::size_t i = size; i-- > 0;) bytes += static_cast<char>(word >> (8 * i) & 0xFF);
}

/// How many bytes hold the number: 1, 2, 4 or 8.
std::size_t sizeOf(std::uint64_t number) {
  std::size_t size = 1;
  while (size < 8 && number >> (8 * size)) size *= 2;
  return size;
}

void appendMarker(std::string& bytes, BinaryKind kind, std::size_t low) {
  bytes += static_cast<char>(static_cast<std::size_t>(kind) << 4 | low);
}

void appendNatural(std::string& bytes, std::uint64_t number) {
  const std::size_t size = sizeOf(number);
  appendMarker(bytes, BinaryKind::Integer, static_cast<std::size_t>(std::countr_zero(size)));
  appendWord(bytes, number, size);
}

void appendHead(std::string& bytes, BinaryKind kind, std::size_t length) {
  appendMarker(bytes, kind, length < kLongLength ? length : kLongLength);
  if (length >= kLongLength) appendNatural(bytes, length);
}

void appendReal(std::string& bytes, BinaryKind kind, double number) {
  appendMarker(bytes, kind, 3);
  appendWord(bytes, std::bit_cast<std::uint64_t>(number), 8);
}

void appendInteger(std::string& bytes, const NSNumber& number) {
  const std::uint64_t word = number.unsignedIntegerValue();
  const bool isUnsigned = number.kind() == NSNumber::Kind::Unsigned;
  if (!(word >> 63)) return appendNatural(bytes, word);
  // Eight bytes are signed, so a large unsigned number needs sixteen.
  appendMarker(bytes, BinaryKind::Integer, isUnsigned ? 4 : 3);
  if (isUnsigned) appendWord(bytes, 0, 8);
  appendWord(bytes, word, 8);
}

void appendNumber(std::string& bytes, const NSNumber& number) {
  if (number.isBoolean())
    bytes += static_cast<char>(number.boolValue() ? kBinaryTrue : kBinaryFalse);
  else if (number.kind() == NSNumber::Kind::Real)
    appendReal(bytes, BinaryKind::Real, number.doubleValue());
  else
    appendInteger(bytes, number);
}

void appendText(std::string& bytes, const NSString& text) {
  appendHead(bytes, text.isASCII() ? BinaryKind::ASCII : BinaryKind::UTF16, text.length());
  text.visitUnits([&](auto units) {
    for (auto unit : units) appendWord(bytes, static_cast<char16_t>(unit), sizeof unit);
  });
}

std::string encodedLeaf(NSObject* value) {
  std::string bytes;
  if (auto* text = cast<NSString>(value)) {
    appendText(bytes, *text);
  } else if (auto* number = cast<NSNumber>(value)) {
    appendNumber(bytes, *number);
  } else if (auto* date = cast<NSDate>(value)) {
    appendReal(bytes, BinaryKind::Date, date->timeIntervalSinceReferenceDate());
  } else {
    auto* data = cast<NSData>(value);
    appendHead(bytes, BinaryKind::Data, data->length());
    bytes += data->view();
  }
  return bytes;
}

// Bytes up to which equal leaves are one object. Readers, ours among them, refuse a file whose
// objects would grow to much more than the file; of long leaves each has to be there.
constexpr std::size_t kLongestShared = 256;

/// An object of the file: a leaf with its bytes, or a container with what it refers to.
struct Item {
  std::string leaf{};
  BinaryKind kind = BinaryKind::Array;
  std::vector<std::size_t> references{};
};

class Writer {
 public:
  std::string write(NSObject* list);

 private:
  std::size_t add(NSObject* value);
  std::size_t addLeaf(NSObject* value);
  std::size_t addContainer(BinaryKind kind, const std::vector<NSObject*>& values);
  void appendItem(const Item& item);
  void appendTable(std::size_t top);

  std::vector<Item> _items;
  std::unordered_map<std::string, std::size_t>
      _leaves;  // the place of each short one, by its bytes
  std::vector<std::size_t> _offsets;
  std::string _bytes;
};

std::size_t Writer::addLeaf(NSObject* value) {
  std::string leaf = encodedLeaf(value);
  const std::size_t place = _items.size();
  if (leaf.size() <= kLongestShared) {
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

void Writer::appendItem(const Item& item) {
  _offsets.push_back(_bytes.size());
  if (!item.leaf.empty()) {
    _bytes += item.leaf;
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

std::string Writer::write(NSObject* list) {
  const std::size_t top = add(list);
  _bytes = kBinaryHead;
  for (const Item& item : _items) appendItem(item);
  appendTable(top);
  return std::move(_bytes);
}

}  // namespace

std::string binaryFromPropertyList(NSObject* list) { return Writer().write(list); }

}  // namespace kbx
