// Property lists for tests: short ways to write, read and make them.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSNumber.h"
#include "platform/propertylists/NSPropertyListSerialization.h"
#include "tests/support/Text.h"

namespace kbx::test {

inline constexpr auto kXML = NSPropertyListXMLFormat_v1_0;
inline constexpr auto kBinary = NSPropertyListBinaryFormat_v1_0;

/// The bytes of a list; the description of the error when it cannot be written.
inline std::string written(NSObject* list, NSPropertyListFormat format) {
  Ref<NSError> error;
  auto data = NSPropertyListSerialization::dataWithPropertyList(list, format, 0, &error);
  return data ? std::string(data->view()) : error->localizedDescription()->lossyUTF8();
}

/// The list in the bytes; absent, with the error, when they hold none.
inline Ref<NSObject> read(std::string_view bytes, Ref<NSError>* error = nullptr,
                          NSPropertyListReadOptions options = NSPropertyListImmutable) {
  auto data = NSData::dataWithBytes(bytes);
  return NSPropertyListSerialization::propertyListWithData(data, options, nullptr, error);
}

/// What the reader says is wrong with the bytes; "" when nothing is.
inline std::string fault(std::string_view bytes) {
  Ref<NSError> error;
  if (read(bytes, &error)) return "";
  if (error->code() != NSPropertyListReadCorruptError) return "another code";
  return error->localizedDescription()->lossyUTF8();
}

/// As many containers inside each other, the innermost empty.
inline Ref<NSObject> nested(std::size_t levels) {
  Ref<NSObject> list = NSArray::array();
  for (std::size_t i = 1; i < levels; ++i) list = NSArray::arrayWithObjects({list.get()});
  return list;
}

/// Makes a tree out of a number: the same one each time.
class RandomList {
 public:
  explicit RandomList(std::uint32_t seed) : _random(seed) {}

  Ref<NSObject> list(unsigned levels = 5) {
    const auto kind = below(levels ? 9 : 7);
    if (kind == 7) return array(levels - 1);
    return kind == 8 ? dictionary(levels - 1) : leaf(kind);
  }
  Ref<NSObject> dictionary(unsigned levels) {
    auto entries = NSMutableDictionary::dictionary();
    for (auto count = below(12); count > 0; --count) {
      auto value = list(levels);
      entries->setObjectForKey(value, text());
    }
    return entries->copy();
  }

 private:
  std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(_random() % limit); }
  Ref<NSObject> array(unsigned levels) {
    NSArray::Elements elements;
    for (auto count = below(20); count > 0; --count) elements.push_back(list(levels));
    return NSArray::arrayWithElements(std::move(elements));
  }
  Ref<NSString> text() {
    constexpr std::u16string_view kPieces[] = {u"a",      u"Key", u"<&>\"'", u"\r\n",         u"\t",
                                               u" ",      u"é",   u"日本",   u"\xD83D\xDE00", u"ß",
                                               u"\xFFFD", u"9"};
    std::u16string units;
    for (auto count = below(9); count > 0; --count) units += kPieces[below(std::size(kPieces))];
    return NSString::stringWithUTF16(units);
  }
  Ref<NSObject> data() {
    std::string bytes;
    for (auto count = below(300); count > 0; --count) bytes += static_cast<char>(below(256));
    return NSData::dataWithBytes(bytes);
  }
  Ref<NSObject> leaf(std::uint32_t kind) {
    const std::uint64_t bits = _random() >> below(64);
    switch (kind) {
      case 0:
        return NSNumber::numberWithInteger(static_cast<std::int64_t>(bits));
      case 1:
        return NSNumber::numberWithUnsignedInteger(bits);
      case 2:
        return NSNumber::numberWithDouble(static_cast<double>(bits) / 1024 / (1 + below(1000)));
      case 3:
        return NSNumber::numberWithBool(bits & 1);
      case 4:
        return NSDate::dateWithTimeIntervalSinceReferenceDate(static_cast<double>(bits >> 28) -
                                                              1e10);
      case 5:
        return data();
      default:
        return text();
    }
  }

  std::mt19937_64 _random;
};

}  // namespace kbx::test
