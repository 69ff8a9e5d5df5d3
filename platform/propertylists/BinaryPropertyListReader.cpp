#include "platform/propertylists/BinaryPropertyListReader.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNumber.h"
#include "platform/propertylists/BinaryPropertyList.h"
#include "platform/propertylists/NSKeyedArchiverUID.h"
#include "platform/text/UTF8.h"

namespace kbx {
namespace {

constexpr std::uint64_t kFreeValues = 250'000;
constexpr std::uint64_t kValuesPerByte = 4;
constexpr std::uint64_t kFreeContent = 16'000'000;
constexpr std::uint64_t kContentPerByte = 1024;
/// What one more copy of a container counts, in values: an empty one takes some hundred bytes,
/// and a single byte refers to it.
constexpr std::uint64_t kValuesOfCopy = 16;

template <std::size_t size>
std::uint64_t wordOf(const char* bytes) {
  std::uint64_t word = 0;
  for (std::size_t i = 0; i < size; ++i) word = word << 8 | static_cast<std::uint8_t>(bytes[i]);
  return word;
}

/// A number of up to eight bytes, the high one first; of more only the low eight count.
inline std::uint64_t wordOf(std::string_view bytes) {
  switch (bytes.size()) {  // the usual sizes, which need no loop
    case 1:
      return wordOf<1>(bytes.data());
    case 2:
      return wordOf<2>(bytes.data());
    case 3:
      return wordOf<3>(bytes.data());
    case 4:
      return wordOf<4>(bytes.data());
    case 8:
      return wordOf<8>(bytes.data());
    default:
      std::uint64_t word = 0;
      for (char byte : bytes) word = word << 8 | static_cast<std::uint8_t>(byte);
      return word;
  }
}

/// The part of an object that lies behind what was read already.
class Cursor {
 public:
  Cursor(std::string_view bytes, std::size_t at) : _bytes(bytes), _at(at) {}

  /// The next bytes; absent when there are not so many.
  std::optional<std::string_view> take(std::uint64_t length) {
    if (length > _bytes.size() - _at) return std::nullopt;
    const auto part = _bytes.substr(_at, length);
    _at += length;
    return part;
  }
  /// The next bytes as `count` pieces of `size` each.
  std::optional<std::string_view> take(std::uint64_t count, std::size_t size) {
    return count > _bytes.size() ? std::nullopt : take(count * size);
  }

 private:
  const std::string_view _bytes;
  std::size_t _at;
};

/// What a value costs when it is written out with all that it refers to.
struct Cost {
  std::uint64_t values = 0;
  std::uint64_t content = 0;  // bytes
};

/// An object that was met: its value when it is finished, absent while it is being read. Lists of
/// many small objects take much of their time to fill this table, so it is small.
struct Known {
  NSObject* value = nullptr;  // owned by what refers to it
  std::uint32_t cost = 0;     // of a container the index of its cost, else the bytes of its content
  std::uint16_t height = 0;   // levels of containers, its own counted
  bool isMet = false;
};

/// Whether references of archives may occur.
enum class Use { PropertyList, Archive };

class Reader {
 public:
  Reader(std::string_view bytes, bool isMutable, Use use)
      : _bytes(bytes), _isMutable(isMutable), _use(use) {}
  PropertyListReading read();

 private:
  Ref<NSObject> fail(std::string_view what, std::size_t at);
  bool readTrailer();
  bool spend(Cost cost, std::size_t at);
  std::size_t offsetOf(std::uint64_t object) const;
  std::optional<std::uint64_t> takeLength(Cursor& cursor, std::uint8_t low) const;

  Ref<NSObject> object(std::uint64_t index, std::size_t level);
  Ref<NSObject> anyObject(std::uint64_t index, std::size_t level);
  Ref<NSObject> sharedObject(const Known& known, std::size_t at, std::size_t level);
  void remember(Known& known, NSObject* value, std::size_t height, Cost cost);
  bool descend(std::size_t level, std::size_t at);
  Ref<NSObject> objectAt(std::size_t at, std::size_t level);
  Ref<NSObject> shortNumber(std::size_t at) const;
  Ref<NSObject> leaf(BinaryKind kind, std::uint8_t low, Cursor cursor, std::size_t at);
  Ref<NSObject> reference(std::uint8_t low, Cursor cursor, std::size_t at);
  Ref<NSObject> text(BinaryKind kind, std::string_view content, std::size_t at);
  Ref<NSObject> container(BinaryKind kind, std::uint64_t count, Cursor cursor, std::size_t at,
                          std::size_t level);
  Ref<NSObject> array(std::string_view references, std::size_t level);
  Ref<NSObject> dictionary(std::string_view references, std::size_t at, std::size_t level);

  std::string_view _bytes;
  const bool _isMutable;
  const Use _use;
  std::string _fault;
  std::size_t _offsetSize = 0;
  std::size_t _referenceSize = 0;
  std::uint64_t _count = 0;
  std::uint64_t _top = 0;
  std::uint64_t _table = 0;
  std::string_view _objects;  // the file up to the table, so that offsets stay what they are
  std::vector<Known> _known;
  std::vector<Cost> _costs;             // of containers
  std::vector<Ref<NSObject>> _entries;  // keys and values: a dictionary may let go of equal ones
  Cost _spent;
  std::size_t _deepest = 0;  // levels of containers met so far, within the object being read
};

Ref<NSObject> Reader::fail(std::string_view what, std::size_t at) {
  if (_fault.empty()) _fault = std::string(what) + " at byte " + std::to_string(at);
  return nullptr;
}

bool Reader::readTrailer() {
  if (_bytes.size() < kBinaryHead.size() + kBinaryTrailerLength) return false;
  const std::size_t end = _bytes.size() - kBinaryTrailerLength;
  const auto trailer = _bytes.substr(end);
  _offsetSize = static_cast<std::uint8_t>(trailer[6]);
  _referenceSize = static_cast<std::uint8_t>(trailer[7]);
  _count = wordOf(trailer.substr(8, 8));
  _top = wordOf(trailer.substr(16, 8));
  _table = wordOf(trailer.substr(24, 8));
  const auto isSize = [](std::size_t size) { return size >= 1 && size <= 8; };
  if (!isSize(_offsetSize) || !isSize(_referenceSize) || _top >= _count) return false;
  if (_table <= kBinaryHead.size() || _table > end) return false;
  _objects = _bytes.substr(0, _table);
  return _count <= (end - _table) / _offsetSize;
}

/// Adds to what the whole list costs so far; false when that is too much.
bool Reader::spend(Cost cost, std::size_t at) {
  _spent.values += cost.values;
  _spent.content += cost.content;
  if (_spent.values <= kFreeValues + kValuesPerByte * _bytes.size() &&
      _spent.content <= kFreeContent + kContentPerByte * _bytes.size())
    return true;
  fail("shared objects make too large a list", at);
  return false;
}

std::size_t Reader::offsetOf(std::uint64_t object) const {
  return wordOf(_bytes.substr(_table + object * _offsetSize, _offsetSize));
}

/// The length of an object: the low bits of its marker, or the integer object that follows.
std::optional<std::uint64_t> Reader::takeLength(Cursor& cursor, std::uint8_t low) const {
  if (low != kLongLength) return low;
  auto marker = cursor.take(1);
  if (!marker) return std::nullopt;
  const auto byte = static_cast<std::uint8_t>(marker->front());
  if (byte >> 4 != static_cast<std::uint8_t>(BinaryKind::Integer) || (byte & 0xF) > 3)
    return std::nullopt;
  auto bytes = cursor.take(std::uint64_t{1} << (byte & 0xF));
  return bytes ? std::optional(wordOf(*bytes)) : std::nullopt;
}

Ref<NSNumber> integerOf(std::string_view bytes) {
  const std::uint64_t word = wordOf(bytes);
  // Eight bytes are signed; sixteen must fit into eight of one kind or the other.
  const bool isNegative = word >> 63;
  if (bytes.size() == 16) {
    const std::uint64_t high = wordOf(bytes.substr(0, 8));
    if (high == 0 && isNegative) return NSNumber::numberWithUnsignedInteger(word);
    if (high != (isNegative ? UINT64_MAX : 0)) return nullptr;
  }
  return NSNumber::numberWithInteger(static_cast<std::int64_t>(word));
}

double realOf(std::string_view bytes) {
  const std::uint64_t word = wordOf(bytes);
  if (bytes.size() == 8) return std::bit_cast<double>(word);
  return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(word)));
}

Ref<NSString> stringOfUTF16(std::string_view bytes) {
  std::u16string units(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i)
    units[i] = static_cast<char16_t>(static_cast<std::uint8_t>(bytes[2 * i]) << 8 |
                                     static_cast<std::uint8_t>(bytes[2 * i + 1]));
  return NSString::stringByTakingUTF16(std::move(units));
}

Ref<NSObject> Reader::text(BinaryKind kind, std::string_view content, std::size_t at) {
  if (!spend({0, content.size()}, at)) return nullptr;
  if (kind == BinaryKind::Data) return NSData::dataWithBytes(content);
  if (kind == BinaryKind::UTF16) return stringOfUTF16(content);
  if (asciiPrefixLength(content) < content.size())
    return fail("an ASCII string holds other bytes", at);
  return NSString::stringWithUTF8(content);
}

Ref<NSObject> Reader::reference(std::uint8_t low, Cursor cursor, std::size_t at) {
  if (_use != Use::Archive) return fail("a reference that only archives have", at);
  auto bytes = low < sizeof(std::uint64_t) ? cursor.take(low + std::uint64_t{1}) : std::nullopt;
  if (!bytes) return fail("a reference without a number", at);
  return NSKeyedArchiverUID::UIDWithValue(wordOf(*bytes));
}

/// A number, a date or a boolean: what has its length in its marker.
Ref<NSObject> Reader::leaf(BinaryKind kind, std::uint8_t low, Cursor cursor, std::size_t at) {
  if (kind == BinaryKind::Simple && (low == kBinaryTrue || low == kBinaryFalse))
    return NSNumber::numberWithBool(low == kBinaryTrue);
  if (kind == BinaryKind::Identifier) return reference(low, cursor, at);
  const bool isInteger = kind == BinaryKind::Integer && low <= 4;
  const bool isReal = kind == BinaryKind::Real && (low == 2 || low == 3);
  const bool isDate = kind == BinaryKind::Date && low == 3;
  if (!isInteger && !isReal && !isDate) return fail("an object of unknown kind", at);
  auto bytes = cursor.take(std::uint64_t{1} << low);
  if (!bytes) return fail("an object that reaches past the others", at);
  if (isReal) return NSNumber::numberWithDouble(realOf(*bytes));
  if (isDate) return NSDate::dateWithTimeIntervalSinceReferenceDate(realOf(*bytes));
  if (Ref<NSObject> number = integerOf(*bytes)) return number;
  return fail("an integer of more than 64 bits", at);
}

/// The number at an offset; absent for one that is long or last and for all else, sound or not.
Ref<NSObject> Reader::shortNumber(std::size_t at) const {
  if (at < kBinaryHead.size() || at >= _objects.size()) return nullptr;
  if (_objects.size() - at <= sizeof(std::uint64_t)) return nullptr;
  const auto marker = static_cast<std::uint8_t>(_objects[at]);
  const std::uint64_t word = wordOf<8>(_objects.data() + at + 1);
  // One way for four sizes: which one comes next nobody could predict.
  constexpr std::uint8_t kInteger = 0x10, kDouble = 0x23;
  if ((marker & ~3) == kInteger)
    return NSNumber::numberWithInteger(
        static_cast<std::int64_t>(word >> (64 - (8 << (marker & 3)))));
  return marker == kDouble ? NSNumber::numberWithDouble(std::bit_cast<double>(word)) : nullptr;
}

/// The object with that number, read once, except containers that may change.
inline Ref<NSObject> Reader::object(std::uint64_t index, std::size_t level) {
  // What anyObject() would do with a number that is new: there may be so many that steps count.
  if (index < _count && !_known[index].isMet && _spent.values < kFreeValues + _bytes.size()) {
    if (auto number = shortNumber(offsetOf(index))) {
      ++_spent.values;
      _known[index] = {.value = number, .isMet = true};
      return number;
    }
  }
  return anyObject(index, level);
}

Ref<NSObject> Reader::array(std::string_view references, std::size_t level) {
  NSArray::Elements elements;
  elements.reserve(references.size() / _referenceSize);
  for (std::size_t at = 0; at < references.size(); at += _referenceSize) {
    auto element = object(wordOf(references.substr(at, _referenceSize)), level);
    if (!element) return nullptr;
    elements.push_back(std::move(element));
  }
  return arrayThatMayChange(std::move(elements), _isMutable);
}

Ref<NSObject> Reader::dictionary(std::string_view references, std::size_t at, std::size_t level) {
  auto entries = NSMutableDictionary::dictionary();
  const std::size_t half = references.size() / 2;
  for (std::size_t i = 0; i < half; i += _referenceSize) {
    auto key = object(wordOf(references.substr(i, _referenceSize)), level);
    if (key && !cast<NSString>(key)) return fail("a dictionary with a key that is no string", at);
    auto value = key ? object(wordOf(references.substr(half + i, _referenceSize)), level) : nullptr;
    if (!value) return nullptr;
    entries->setObjectForKey(value, key);
    _entries.push_back(std::move(key));
    _entries.push_back(std::move(value));
  }
  return dictionaryThatMayChange(entries, _isMutable);
}

/// Takes note of the number of levels; false when there are too many.
bool Reader::descend(std::size_t level, std::size_t at) {
  _deepest = std::max(_deepest, level);
  if (level <= kDeepestPropertyList) return true;
  fail("more than " + std::to_string(kDeepestPropertyList) + " levels of containers", at);
  return false;
}

Ref<NSObject> Reader::container(BinaryKind kind, std::uint64_t count, Cursor cursor, std::size_t at,
                                std::size_t level) {
  if (!descend(level + 1, at)) return nullptr;
  const std::size_t parts = kind == BinaryKind::Dictionary ? 2 : 1;
  auto references = cursor.take(count, parts * _referenceSize);
  if (!references) return fail("a container that reaches past the objects", at);
  return kind == BinaryKind::Array ? array(*references, level + 1)
                                   : dictionary(*references, at, level + 1);
}

/// The object at the offset; absent, with a fault, when there is none.
Ref<NSObject> Reader::objectAt(std::size_t at, std::size_t level) {
  if (at < kBinaryHead.size() || at >= _objects.size())
    return fail("an object that lies outside the objects", at);
  if (!spend({1, 0}, at)) return nullptr;
  const auto marker = static_cast<std::uint8_t>(_objects[at]);
  const auto kind = static_cast<BinaryKind>(marker >> 4);
  const auto low = static_cast<std::uint8_t>(marker & 0xF);
  const bool isContainer = kind == BinaryKind::Array || kind == BinaryKind::Dictionary;
  const bool isText =
      kind == BinaryKind::Data || kind == BinaryKind::ASCII || kind == BinaryKind::UTF16;
  Cursor cursor(_objects, at + 1);
  if (!isContainer && !isText) return leaf(kind, low, cursor, at);
  auto length = takeLength(cursor, low);
  if (!length) return fail("an object without a length", at);
  if (isContainer) return container(kind, *length, cursor, at, level);
  auto content = cursor.take(*length, kind == BinaryKind::UTF16 ? 2 : 1);
  return content ? text(kind, *content, at) : fail("an object that reaches past the others", at);
}

/// A finished object at one more place, which costs and deepens the list as if it were another.
Ref<NSObject> Reader::sharedObject(const Known& known, std::size_t at, std::size_t level) {
  const Cost cost = known.height > 0 ? _costs[known.cost] : Cost{1, known.cost};
  return spend(cost, at) && descend(level + known.height, at) ? known.value : nullptr;
}

void Reader::remember(Known& known, NSObject* value, std::size_t height, Cost cost) {
  known.value = value;
  known.height = static_cast<std::uint16_t>(height);
  known.cost = static_cast<std::uint32_t>(
      std::min<std::uint64_t>(height > 0 ? _costs.size() : cost.content, UINT32_MAX));
  if (height > 0) _costs.push_back(cost);
}

Ref<NSObject> Reader::anyObject(std::uint64_t index, std::size_t level) {
  if (index >= _count) return fail("a reference to no object", _table);
  const std::size_t at = offsetOf(index);
  Known& known = _known[index];
  if (known.isMet && !known.value) return fail("a container that holds itself", at);
  if (known.value && !(_isMutable && known.height > 0)) return sharedObject(known, at, level);
  const bool isCopy = known.isMet;
  known = {.isMet = true};
  const Cost before = _spent;
  if (isCopy && !spend({kValuesOfCopy, 0}, at)) return nullptr;
  const std::size_t deepestBefore = std::exchange(_deepest, level);
  auto value = objectAt(at, level);
  remember(known, value, _deepest - level,
           {_spent.values - before.values, _spent.content - before.content});
  _deepest = std::max(_deepest, deepestBefore);
  return value;
}

PropertyListReading Reader::read() {
  if (!readTrailer()) {
    fail("a trailer that does not fit the file",
         _bytes.size() - std::min(_bytes.size(), kBinaryTrailerLength));
    return {nullptr, std::move(_fault)};
  }
  _known.resize(_count);
  auto list = object(_top, 0);
  return {std::move(list), std::move(_fault)};
}

}  // namespace

bool isBinaryPropertyList(std::string_view bytes) { return bytes.starts_with("bplist"); }

PropertyListReading propertyListFromBinary(std::string_view bytes, bool isMutable) {
  if (!bytes.starts_with(kBinaryHead)) return {nullptr, "another version at byte 6"};
  return Reader(bytes, isMutable, Use::PropertyList).read();
}

PropertyListReading archiveFromBinary(std::string_view bytes) {
  if (!bytes.starts_with(kBinaryHead)) return {nullptr, "no archive of the binary form at byte 0"};
  return Reader(bytes, false, Use::Archive).read();
}

}  // namespace kbx
