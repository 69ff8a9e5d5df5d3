#include "host/workers/Values.h"

#include <cstdint>
#include <cstring>
#include <utility>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"

namespace kbx {
namespace {

constexpr std::size_t kDeepest = 512;

enum class Tag : char {
  Null = 'n',
  False = 'f',
  True = 't',
  Signed = 'i',
  Unsigned = 'u',
  Real = 'r',
  Date = 'd',
  Data = 'b',
  UTF8 = 'c',
  UTF16 = 'w',  // the length counts units
  Array = 'a',
  Dictionary = 'm'  // keys and values by turns; the length counts pairs
};

class Writer {
 public:
  explicit Writer(ByteSink& sink) : _sink(sink) {}

  /// Levels are bounded by the check of the answer.
  void value(NSObject* object);
  void text(NSString* text);
  void dictionary(NSDictionary* dictionary);

 private:
  void tag(Tag tag) {
    const char byte = static_cast<char>(tag);
    _sink.append({&byte, 1});
  }
  template <class Number>
  void raw(Number number) {
    _sink.append({reinterpret_cast<const char*>(&number), sizeof number});
  }
  template <class Element>
  void run(Tag kind, const Element* elements, std::size_t count) {
    tag(kind);
    raw(std::uint64_t{count});
    _sink.append({reinterpret_cast<const char*>(elements), count * sizeof(Element)});
  }
  void number(NSNumber* number);
  void array(NSArray* array);

  ByteSink& _sink;
};

class StringSink final : public ByteSink {
 public:
  explicit StringSink(std::string& bytes) : _bytes(bytes) {}
  void append(std::string_view bytes) override { _bytes.append(bytes); }

 private:
  std::string& _bytes;
};

class CountingSink final : public ByteSink {
 public:
  void append(std::string_view bytes) override { count += bytes.size(); }
  std::uint64_t count = 0;
};

void Writer::text(NSString* text) {
  if (const auto kept = text->keptUTF8()) return run(Tag::UTF8, kept->data(), kept->size());
  text->visitUnits([this](auto units) {
    run(sizeof units[0] == 1 ? Tag::UTF8 : Tag::UTF16, units.data(), units.size());
  });
}

void Writer::number(NSNumber* number) {
  switch (number->kind()) {
    case NSNumber::Kind::Boolean:
      return tag(number->boolValue() ? Tag::True : Tag::False);
    case NSNumber::Kind::Signed:
      tag(Tag::Signed);
      return raw(number->integerValue());
    case NSNumber::Kind::Unsigned:
      tag(Tag::Unsigned);
      return raw(number->unsignedIntegerValue());
    case NSNumber::Kind::Real:
      tag(Tag::Real);
      return raw(number->doubleValue());
  }
}

void Writer::array(NSArray* array) {
  tag(Tag::Array);
  raw(std::uint64_t{array->count()});
  for (const auto& element : *array) value(element);
}

void Writer::dictionary(NSDictionary* dictionary) {
  tag(Tag::Dictionary);
  raw(std::uint64_t{dictionary->count()});
  for (const auto& [key, object] : *dictionary) {
    value(key);
    value(object);
  }
}

void Writer::value(NSObject* object) {
  if (auto* string = cast<NSString>(object)) return text(string);
  if (auto* count = cast<NSNumber>(object)) return number(count);
  if (auto* list = cast<NSArray>(object)) return array(list);
  if (auto* entries = cast<NSDictionary>(object)) return dictionary(entries);
  if (auto* data = cast<NSData>(object)) return run(Tag::Data, data->bytes(), data->length());
  auto* date = cast<NSDate>(object);
  if (!date) return tag(Tag::Null);
  tag(Tag::Date);
  raw(date->timeIntervalSinceReferenceDate());
}

class Reader {
 public:
  explicit Reader(std::string_view bytes) : _bytes(bytes) {}

  /// Absent for anything that Writer does not write.
  Ref<NSObject> value(std::size_t level);
  bool isAtEnd() const { return _bytes.empty(); }

 private:
  /// False when there are not so many bytes.
  template <class Number>
  bool take(Number* number) {
    if (_bytes.size() < sizeof *number) return false;
    std::memcpy(number, _bytes.data(), sizeof *number);
    _bytes.remove_prefix(sizeof *number);
    return true;
  }
  /// A length and that many elements of a size.
  bool takeRun(std::size_t size, std::string_view* run);
  /// A number of values, each of which takes a byte at least.
  bool takeCount(std::uint64_t* count) { return take(count) && *count <= _bytes.size(); }
  Ref<NSObject> leaf(Tag tag);
  Ref<NSObject> text16();
  Ref<NSObject> array(std::size_t level);
  Ref<NSObject> dictionary(std::size_t level);

  std::string_view _bytes;  // those that are left
};

bool Reader::takeRun(std::size_t size, std::string_view* run) {
  std::uint64_t count;
  if (!take(&count) || count > _bytes.size() / size) return false;
  *run = _bytes.substr(0, count * size);
  _bytes.remove_prefix(count * size);
  return true;
}

Ref<NSObject> Reader::text16() {
  std::string_view run;
  if (!takeRun(sizeof(char16_t), &run)) return nullptr;
  std::u16string units(run.size() / sizeof(char16_t), u'\0');
  std::memcpy(units.data(), run.data(), run.size());
  return NSString::stringByTakingUTF16(std::move(units));
}

Ref<NSObject> Reader::leaf(Tag tag) {
  std::int64_t integer;
  std::uint64_t natural;
  double real;
  std::string_view run;
  switch (tag) {
    case Tag::Null:
      return NSNull::null();
    case Tag::False:
    case Tag::True:
      return NSNumber::numberWithBool(tag == Tag::True);
    case Tag::Signed:
      return take(&integer) ? NSNumber::numberWithInteger(integer) : nullptr;
    case Tag::Unsigned:
      return take(&natural) ? NSNumber::numberWithUnsignedInteger(natural) : nullptr;
    case Tag::Real:
      return take(&real) ? NSNumber::numberWithDouble(real) : nullptr;
    case Tag::Date:
      return take(&real) ? NSDate::dateWithTimeIntervalSinceReferenceDate(real) : nullptr;
    case Tag::Data:
      return takeRun(1, &run) ? NSData::dataWithBytes(run) : nullptr;
    case Tag::UTF8:
      return takeRun(1, &run) ? NSString::stringWithUTF8(run) : nullptr;
    case Tag::UTF16:
      return text16();
    default:
      return nullptr;
  }
}

Ref<NSObject> Reader::array(std::size_t level) {
  std::uint64_t count;
  if (level > kDeepest || !takeCount(&count)) return nullptr;
  NSArray::Elements elements;
  for (; count > 0; --count) {
    auto element = value(level + 1);
    if (!element) return nullptr;
    elements.push_back(std::move(element));
  }
  return NSArray::arrayWithElements(std::move(elements));
}

Ref<NSObject> Reader::dictionary(std::size_t level) {
  std::uint64_t count;
  if (level > kDeepest || !takeCount(&count)) return nullptr;
  auto entries = NSMutableDictionary::dictionary();
  for (; count > 0; --count) {
    auto key = value(level + 1), object = value(level + 1);
    if (!cast<NSString>(key) || !object) return nullptr;
    entries->setObjectForKey(object, key);
  }
  return entries;
}

Ref<NSObject> Reader::value(std::size_t level) {
  char tag;
  if (!take(&tag)) return nullptr;
  if (Tag{tag} == Tag::Array) return array(level);
  return Tag{tag} == Tag::Dictionary ? dictionary(level) : leaf(Tag{tag});
}

template <class Kind>
Ref<Kind> whole(std::string_view bytes) {
  Reader reader(bytes);
  auto value = reader.value(1);
  return reader.isAtEnd() ? Ref<Kind>(cast<Kind>(value)) : nullptr;
}

NSString* domainName() { return "domain"_ns; }
NSString* codeName() { return "code"_ns; }
NSString* descriptionName() { return "description"_ns; }

}  // namespace

void writeValues(ByteSink& sink, NSDictionary* values) { Writer(sink).dictionary(values); }

std::uint64_t sizeOfValues(NSDictionary* values) {
  CountingSink sink;
  writeValues(sink, values);
  return sink.count;
}

void appendValues(std::string& bytes, NSDictionary* values) {
  StringSink sink(bytes);
  writeValues(sink, values);
}

Ref<NSDictionary> valuesOfBytes(std::string_view bytes) { return whole<NSDictionary>(bytes); }

std::string bytesOfError(NSError* error) {
  std::string bytes;
  appendValues(bytes, NSDictionary::dictionaryWithPairs(
                          {{domainName(), error->domain()},
                           {codeName(), NSNumber::numberWithInteger(error->code()).get()},
                           {descriptionName(), error->localizedDescription().get()}}));
  return bytes;
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

std::string bytesOfText(NSString* text) {
  std::string bytes;
  StringSink sink(bytes);
  Writer(sink).text(text);
  return bytes;
}

Ref<NSString> textOfBytes(std::string_view bytes) { return whole<NSString>(bytes); }

}  // namespace kbx
