#include "platform/objects/NSString.h"

#include <algorithm>
#include <mutex>
#include <unordered_map>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSException.h"
#include "platform/objects/SeededHash.h"
#include "platform/text/StringBuilder.h"
#include "platform/text/UTF8.h"
#include "platform/text/UnitSearch.h"

namespace kbx {

KBX_CLASS(NSString)
KBX_ADOPTS(NSString, NSCoding)

namespace {

// From how many bytes on text that is not ASCII stays in UTF-8. Measured: of 1 kB, to convert takes
// two to seven times as long as to check and keep, and to convert later a third more than at once.
// Below, what can be won is less than what is lost on names and keys, whose units are asked for at
// once.
constexpr std::size_t kLeastKeptUTF8 = 1024;

template <class Units>
class StoredString final : public NSString {
 public:
  explicit StoredString(Units units) : _stored(std::move(units)) {
    setUnits(std::basic_string_view<typename Units::value_type>(_stored));
  }

 private:
  const Units _stored;
};

template <class Units>
Ref<NSString> stored(Units units) {
  return Ref<NSString>::adopt(new StoredString<Units>(std::move(units)));
}

/// ASCII text over the buffer that it came in.
class SharedString final : public NSString {
 public:
  explicit SharedString(NSData* bytes) : _bytes(bytes) { setUnits(bytes->view()); }

 private:
  NSData* sharedBytes() const noexcept override { return _bytes; }

  const Ref<NSData> _bytes;
};

/// Text over the buffer of valid UTF-8 that it came in. What is read, handed on and written again
/// is never converted.
class KeptUTF8 final : public NSString {
 public:
  explicit KeptUTF8(NSData* bytes) : _bytes(bytes) { deferUnits(); }

 private:
  NSData* sharedBytes() const noexcept override { return _bytes; }
  void makeUnits() const override {
    std::call_once(_isConverted, [this] {
      _converted = utf16FromUTF8(_bytes->view()).value();
      setDeferredUnits(_converted);
    });
  }

  const Ref<NSData> _bytes;
  mutable std::once_flag _isConverted;
  mutable std::u16string _converted;
};

template <class A, class B>
bool areSame(std::span<const A> a, std::span<const B> b) {
  return std::ranges::equal(
      a, b, {}, [](A unit) { return static_cast<char16_t>(unit); },
      [](B unit) { return static_cast<char16_t>(unit); });
}

/// Calls visitor(range) with each piece between the separators, at least one. A separator that is
/// absent or empty separates nothing.
template <class Visitor>
void forEachPiece(const NSString& text, const NSString* separator, Visitor visitor) {
  std::size_t from = 0;
  if (separator && separator->length() > 0) {
    const UnitSearch search(text, *separator);
    for (std::size_t at; (at = search.next(from)) < text.length(); from = at + separator->length())
      visitor(NSRange{from, at - from});
  }
  visitor(NSRange{from, text.length() - from});
}

template <class Units>
Ref<NSString> stringOfUnits(Units units) {
  return NSString::stringWithUTF16({units.data(), units.size()});
}
template <>
Ref<NSString> stringOfUnits(std::span<const char> units) {
  return stored(std::string(units.data(), units.size()));
}

}  // namespace

NSString::~NSString() = default;

void NSString::setUnits(std::string_view ascii) {
  // An empty buffer may have no address, which the C library's functions do not take.
  _units.store(ascii.empty() ? "" : ascii.data(), std::memory_order_relaxed);
  _length = ascii.size(), _wide = false;
}
void NSString::setUnits(std::u16string_view units) {
  _units.store(units.data(), std::memory_order_relaxed);
  _length = units.size(), _wide = true;
}
void NSString::deferUnits() {
  _units.store(nullptr, std::memory_order_relaxed);
  _wide = true;
}
void NSString::setDeferredUnits(std::u16string_view units) const {
  _length = units.size();
  _units.store(units.data(), std::memory_order_release);  // what tells the others that both are set
}

Ref<NSString> NSString::string() { return ""_ns; }

Ref<NSString> NSString::stringWithUTF8(std::string_view bytes) {
  const std::size_t ascii = asciiPrefixLength(bytes);
  if (ascii == bytes.size()) return stored(std::string(bytes));
  if (bytes.size() >= kLeastKeptUTF8) {
    if (!isUTF8(bytes.substr(ascii))) return nullptr;
    return Ref<NSString>::adopt(new KeptUTF8(NSData::dataWithBytes(bytes)));
  }
  auto units = utf16FromUTF8(bytes);
  return units ? stored(std::move(*units)) : nullptr;
}

Ref<NSString> NSString::stringByTakingUTF8(std::string bytes) {
  if (asciiPrefixLength(bytes) == bytes.size()) return stored(std::move(bytes));
  return stringWithUTF8(std::string_view(bytes));
}

Ref<NSString> NSString::stringWithUTF8(NSData* bytes) {
  if (!bytes) return nullptr;
  const std::string_view view = bytes->view();
  const std::size_t ascii = asciiPrefixLength(view);
  if (ascii < view.size() && view.size() < kLeastKeptUTF8) return stringWithUTF8(view);
  if (!isUTF8(view.substr(ascii))) return nullptr;
  // A mutable buffer may change or move; copy() makes one that does not.
  const Ref<NSData> kept = bytes->copy();
  if (ascii == view.size()) return Ref<NSString>::adopt(new SharedString(kept));
  return Ref<NSString>::adopt(new KeptUTF8(kept));
}

Ref<NSString> NSString::stringWithLossyUTF8(std::string_view bytes) {
  if (auto string = stringWithUTF8(bytes)) return string;
  return stored(utf16FromLossyUTF8(bytes));
}

Ref<NSString> NSString::stringWithUTF16(std::u16string_view units) {
  if (asciiPrefixLength(units) == units.size())
    return stored(std::string(units.begin(), units.end()));
  return stored(std::u16string(units));
}

Ref<NSString> NSString::stringByTakingUTF16(std::u16string units) {
  if (asciiPrefixLength(units) == units.size()) return stringWithUTF16(units);
  return stored(std::move(units));
}

Ref<NSString> NSString::stringWithUTF8String(const char* text) {
  return text ? stringWithUTF8(std::string_view(text)) : nullptr;
}

NSString* NSString::constant(std::string_view literal) {
  static auto* const lock = new std::mutex;
  static auto* const constants = new std::unordered_map<std::string, NSString*>;
  std::lock_guard held(*lock);
  auto [place, isNew] = constants->try_emplace(std::string(literal), nullptr);
  if (isNew) place->second = stringWithUTF8(literal).leak();
  return place->second;
}

char16_t NSString::characterAtIndex(std::size_t index) const {
  if (index >= length()) raiseRange("-[NSString characterAtIndex:]: Range or index out of bounds");
  return visitUnits([=](auto units) { return static_cast<char16_t>(units[index]); });
}

std::optional<std::string_view> NSString::keptUTF8() const {
  if (!_wide) return unitBytes();
  if (const NSData* bytes = sharedBytes()) return bytes->view();
  return std::nullopt;
}

std::optional<std::string> NSString::UTF8String() const {
  if (const auto bytes = keptUTF8()) return std::string(*bytes);
  return utf8FromUTF16({static_cast<const char16_t*>(units()), _length});
}

std::string NSString::lossyUTF8() const {
  if (auto text = UTF8String()) return *std::move(text);
  return lossyUTF8FromUTF16({static_cast<const char16_t*>(units()), _length});
}

Ref<NSData> NSString::UTF8Data() const {
  if (NSData* bytes = sharedBytes()) return bytes;
  if (!_wide) return NSData::dataWithBytes(unitBytes());
  const auto text = UTF8String();
  return text ? NSData::dataWithBytes(*text) : nullptr;
}

NSComparisonResult NSString::compare(NSString* other) const {
  if (!other) return NSOrderedDescending;
  auto order = visitUnits([&](auto mine) {
    return other->visitUnits([&](auto theirs) {
      return std::lexicographical_compare_three_way(
          mine.begin(), mine.end(), theirs.begin(), theirs.end(),
          [](auto a, auto b) { return static_cast<char16_t>(a) <=> static_cast<char16_t>(b); });
    });
  });
  return order < 0 ? NSOrderedAscending : order > 0 ? NSOrderedDescending : NSOrderedSame;
}

bool NSString::hasPrefix(NSString* prefix) const {
  // Of valid UTF-8 the bytes tell as well, and nothing is converted for it.
  const auto mine = keptUTF8(), wantedBytes = prefix ? prefix->keptUTF8() : std::nullopt;
  if (mine && wantedBytes) return !wantedBytes->empty() && mine->starts_with(*wantedBytes);
  if (!prefix || prefix->length() == 0 || prefix->length() > length()) return false;
  return visitUnits([=](auto units) {
    return prefix->visitUnits(
        [=](auto wanted) { return areSame(units.first(wanted.size()), wanted); });
  });
}

bool NSString::hasSuffix(NSString* suffix) const {
  if (!suffix || suffix->length() == 0 || suffix->length() > length()) return false;
  return visitUnits([=](auto units) {
    return suffix->visitUnits(
        [=](auto wanted) { return areSame(units.last(wanted.size()), wanted); });
  });
}

NSRange NSString::rangeOfString(NSString* text) const {
  if (!text || text->length() == 0) return kRangeNotFound;
  const std::size_t found = UnitSearch(*this, *text).next(0);
  return found == length() ? kRangeNotFound : NSRange{found, text->length()};
}

Ref<NSString> NSString::substringWithRange(NSRange range) const {
  if (range.location > length() || range.length > length() - range.location)
    raiseRange("-[NSString substringWithRange:]: Range or index out of bounds");
  return visitUnits(
      [=](auto units) { return stringOfUnits(units.subspan(range.location, range.length)); });
}

Ref<NSString> NSString::substringFromIndex(std::size_t index) const {
  if (index > length()) raiseRange("-[NSString substringFromIndex:]: Index out of bounds");
  return substringWithRange({index, length() - index});
}

Ref<NSString> NSString::substringToIndex(std::size_t index) const {
  return substringWithRange({0, index});
}

Ref<NSString> NSString::stringByAppendingString(NSString* other) const {
  if (!other) raiseInvalidArgument("-[NSString stringByAppendingString:]: nil argument");
  return StringBuilder().append(const_cast<NSString*>(this)).append(other).take();
}

Ref<NSString> NSString::stringByReplacingOccurrences(NSString* target,
                                                     NSString* replacement) const {
  StringBuilder text;
  forEachPiece(*this, target, [&](NSRange piece) {
    if (piece.location) text.append(replacement);
    text.append(*this, piece);
  });
  return text.take();
}

Ref<NSArray> NSString::componentsSeparatedByString(NSString* separator) const {
  NSArray::Elements pieces;
  forEachPiece(*this, separator,
               [&](NSRange piece) { pieces.push_back(substringWithRange(piece)); });
  return NSArray::arrayWithElements(std::move(pieces));
}

Ref<NSString> NSString::lastPathComponent() const {
  return visitUnits([](auto units) -> Ref<NSString> {
    std::size_t end = units.size();
    while (end > 1 && units[end - 1] == '/') --end;
    std::size_t start = end;
    while (start > 0 && units[start - 1] != '/') --start;
    if (end == 1 && units[0] == '/') start = 0;
    return stringOfUnits(units.subspan(start, end - start));
  });
}

Ref<NSString> NSString::description() const { return const_cast<NSString*>(this); }

bool NSString::isEqual(NSObject* other) const {
  auto* string = cast<NSString>(other);
  if (!string || string->_wide != _wide) return false;
  // Equal text has equal bytes where it is kept in the same form.
  const auto mine = keptUTF8(), theirs = string->keptUTF8();
  return mine && theirs ? *mine == *theirs : unitBytes() == string->unitBytes();
}

std::size_t NSString::hash() const { return seededHash(unitBytes()); }

std::string_view NSString::unitBytes() const {
  const auto* first = static_cast<const char*>(units());
  return {first, _length * (_wide ? sizeof(char16_t) : 1)};
}

}  // namespace kbx
