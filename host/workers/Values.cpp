#include "host/workers/Values.h"

#include <cstdlib>
#include <cstring>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "platform/propertylists/NSPropertyListSerialization.h"

namespace kbx {
namespace {

// The mark at the start. In the form that is written around, a text is data of its units behind
// 'T', data is data behind 'D', a dictionary one of its keys and its values, and an empty one the
// null marker.
constexpr char kPlain = 'p';
constexpr char kAround = 'a';
constexpr char kText = 'T';
constexpr char kData = 'D';

NSString* keysName() { return "k"_ns; }
NSString* valuesName() { return "v"_ns; }

Ref<NSObject> around(NSObject* value);

Ref<NSData> marked(char mark, const void* bytes, std::size_t size) {
  std::string joined(1, mark);
  joined.append(static_cast<const char*>(bytes), size);
  return NSData::dataWithBytes(joined);
}

Ref<NSData> aroundText(NSString* text) {
  return text->visitUnits([](auto units) {
    const std::u16string wide(units.begin(), units.end());
    return marked(kText, wide.data(), wide.size() * sizeof(char16_t));
  });
}

Ref<NSDictionary> aroundDictionary(NSDictionary* dictionary) {
  NSArray::Elements keys, values;
  for (const auto& [key, value] : *dictionary) {
    keys.push_back(around(key));
    values.push_back(around(value));
  }
  return NSDictionary::dictionaryWithPairs(
      {{keysName(), NSArray::arrayWithElements(std::move(keys)).get()},
       {valuesName(), NSArray::arrayWithElements(std::move(values)).get()}});
}

/// Levels are bounded by the check of the answer.
Ref<NSObject> around(NSObject* value) {
  if (auto* text = cast<NSString>(value)) return aroundText(text);
  if (auto* data = cast<NSData>(value)) return marked(kData, data->bytes(), data->length());
  if (cast<NSNull>(value)) return NSDictionary::dictionary();
  if (auto* dictionary = cast<NSDictionary>(value)) return aroundDictionary(dictionary);
  auto* array = cast<NSArray>(value);
  if (!array) return value;
  NSArray::Elements elements;
  for (const auto& element : *array) elements.push_back(around(element));
  return NSArray::arrayWithElements(std::move(elements));
}

/// Absent for what around() never makes. Levels are bounded by the reader of property lists.
Ref<NSObject> back(NSObject* value);

Ref<NSObject> backFromData(NSData* data) {
  const std::string_view bytes = data->view();
  if (bytes.empty()) return nullptr;
  const std::string_view rest = bytes.substr(1);
  if (bytes.front() == kData) return NSData::dataWithBytes(rest);
  if (bytes.front() != kText) return nullptr;
  std::u16string units(rest.size() / sizeof(char16_t), u'\0');
  std::memcpy(units.data(), rest.data(), units.size() * sizeof(char16_t));
  return NSString::stringByTakingUTF16(std::move(units));
}

Ref<NSObject> backFromDictionary(NSDictionary* dictionary) {
  if (dictionary->count() == 0) return NSNull::null();
  auto* keys = cast<NSArray>(dictionary->objectForKey(keysName()));
  auto* values = cast<NSArray>(dictionary->objectForKey(valuesName()));
  if (!keys || !values || keys->count() != values->count()) return nullptr;
  auto found = NSMutableDictionary::dictionary();
  for (std::size_t i = 0; i < keys->count(); ++i) {
    auto key = back(keys->objectAtIndex(i)), value = back(values->objectAtIndex(i));
    if (!cast<NSString>(key) || !value) return nullptr;
    found->setObjectForKey(value, key);
  }
  return found;
}

Ref<NSObject> back(NSObject* value) {
  if (auto* data = cast<NSData>(value)) return backFromData(data);
  if (auto* dictionary = cast<NSDictionary>(value)) return backFromDictionary(dictionary);
  auto* array = cast<NSArray>(value);
  if (!array) return cast<NSString>(value) ? nullptr : value;
  NSArray::Elements elements;
  for (const auto& element : *array) {
    elements.push_back(back(element));
    if (!elements.back()) return nullptr;
  }
  return NSArray::arrayWithElements(std::move(elements));
}

std::string marked(char mark, NSDictionary* list) {
  auto bytes = NSPropertyListSerialization::dataWithPropertyList(
      list, NSPropertyListBinaryFormat_v1_0, 0, nullptr);
  if (!bytes) return {};
  std::string joined;
  joined.reserve(1 + bytes->length());
  return joined.append(1, mark).append(bytes->view());
}

NSString* domainName() { return "domain"_ns; }
NSString* codeName() { return "code"_ns; }
NSString* descriptionName() { return "description"_ns; }

}  // namespace

std::string bytesOfValues(NSDictionary* values) {
  std::string bytes = marked(kPlain, values);
  return bytes.empty() ? marked(kAround, aroundDictionary(values)) : bytes;
}

Ref<NSDictionary> valuesOfBytes(std::string_view bytes) {
  if (bytes.empty()) return nullptr;
  auto list = NSPropertyListSerialization::propertyListWithData(
      NSData::dataWithBytes(bytes.substr(1)), NSPropertyListImmutable, nullptr, nullptr);
  auto* dictionary = cast<NSDictionary>(list);
  if (!dictionary || bytes.front() == kPlain) return dictionary;
  if (bytes.front() != kAround) return nullptr;
  return cast<NSDictionary>(backFromDictionary(dictionary));
}

std::string bytesOfError(NSError* error) {
  return bytesOfValues(NSDictionary::dictionaryWithPairs(
      {{domainName(), error->domain()},
       {codeName(), NSNumber::numberWithInteger(error->code()).get()},
       {descriptionName(), error->localizedDescription().get()}}));
}

Ref<NSError> errorOfBytes(std::string_view bytes) {
  auto values = valuesOfBytes(bytes);
  if (!values) return nullptr;
  auto* domain = cast<NSString>(values->objectForKey(domainName()));
  auto* code = cast<NSNumber>(values->objectForKey(codeName()));
  auto* description = cast<NSString>(values->objectForKey(descriptionName()));
  if (!domain || !code || !description) return nullptr;
  return NSError::errorWithDomain(
      domain, code->integerValue(),
      NSDictionary::dictionaryWithPairs({{NSLocalizedDescriptionKey(), description}}));
}

}  // namespace kbx
