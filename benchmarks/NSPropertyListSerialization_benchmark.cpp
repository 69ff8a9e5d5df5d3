// Writing and reading property lists of about 1 MB in both forms against libplist, the same list in
// the same run. The answers are compared before anything is measured.
#include "platform/propertylists/NSPropertyListSerialization.h"

#include <benchmark/benchmark.h>
#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSNumber.h"

namespace kbx {
namespace {

constexpr std::size_t kSize = 1 << 20;

using Plist = std::unique_ptr<void, decltype(&plist_free)>;

void require(bool condition) {
  if (!condition) std::abort();
}

// ---- Inputs --------------------------------------------------------------------------------

enum Kind { Messages, Texts, Numbers, Data };

constexpr const char* kKinds[] = {"messages", "texts", "numbers", "data"};

class Maker {
 public:
  Ref<NSObject> record(Kind kind) {
    switch (kind) {
      case Texts:
        return text(30 + _random() % 200);
      case Numbers:
        return number();
      case Data:
        return data(1000 + _random() % 4000);
      default:
        return message();
    }
  }

 private:
  /// Words in any order, one text of eight with letters beyond ASCII.
  Ref<NSString> text(std::size_t size) {
    constexpr std::string_view kWords[] = {"the",  "of",  "message", "R&D", "from", "library",
                                           "mail", "and", "sender",  "a",   "2024", "importer"};
    std::string result = _random() % 8 == 0 ? "Grüße aus Łódź " : "";
    while (result.size() < size) result.append(kWords[_random() % std::size(kWords)]).append(" ");
    return NSString::stringWithUTF8(result);
  }
  Ref<NSData> data(std::size_t size) {
    std::string bytes;
    while (bytes.size() < size) bytes += static_cast<char>(_random());
    return NSData::dataWithBytes(bytes);
  }
  Ref<NSNumber> number() {
    const auto bits = static_cast<std::int64_t>(_random() >> (1 + _random() % 60));
    return _random() % 4 == 0 ? NSNumber::numberWithDouble(static_cast<double>(bits) / 1024)
                              : NSNumber::numberWithInteger(bits);
  }
  Ref<NSObject> message() {
    auto entries = NSMutableDictionary::dictionary();
    auto set = [&](NSString* key, const Ref<NSObject>& value) {
      entries->setObjectForKey(value, key);
    };
    set("kMDItemSubject"_ns, text(40));
    set("kMDItemAuthors"_ns, NSArray::arrayWithObjects({text(12).get(), text(15).get()}));
    set("kMDItemTextContent"_ns, text(100 + _random() % 300));
    set("kMDItemContentCreationDate"_ns, NSDate::dateWithTimeIntervalSinceReferenceDate(
                                             static_cast<double>(_random() % 700'000'000)));
    set("flags"_ns, number());
    set("size"_ns, number());
    set("isRead"_ns, NSNumber::numberWithBool(_random() % 2));
    set("digest"_ns, data(32));
    return entries->copy();
  }

  std::mt19937_64 _random{1};
};

Ref<NSData> write(NSObject* list, NSPropertyListFormat format) {
  return NSPropertyListSerialization::dataWithPropertyList(list, format, 0, nullptr);
}

Ref<NSObject> read(NSData* bytes) {
  return NSPropertyListSerialization::propertyListWithData(bytes, 0, nullptr, nullptr);
}

Ref<NSArray> listOf(Kind kind, std::size_t count) {
  Maker maker;
  NSArray::Elements records;
  for (std::size_t i = 0; i < count; ++i) records.push_back(maker.record(kind));
  return NSArray::arrayWithElements(std::move(records));
}

/// A list whose file in this form is about 1 MB.
Ref<NSArray> listOf(Kind kind, NSPropertyListFormat format) {
  constexpr std::size_t kSample = 128;
  return listOf(kind, kSample * kSize / write(listOf(kind, kSample), format)->length());
}

// ---- The peer ------------------------------------------------------------------------------

Plist peerRead(std::string_view bytes, NSPropertyListFormat format) {
  plist_t list = nullptr;
  const auto size = static_cast<std::uint32_t>(bytes.size());
  if (format == NSPropertyListXMLFormat_v1_0)
    plist_from_xml(bytes.data(), size, &list);
  else
    plist_from_bin(bytes.data(), size, &list);
  return {list, &plist_free};
}

struct PeerBytes {
  PeerBytes(void* list, NSPropertyListFormat format) {
    if (format == NSPropertyListXMLFormat_v1_0)
      plist_to_xml(list, &bytes, &size);
    else
      plist_to_bin(list, &bytes, &size);
  }
  ~PeerBytes() { std::free(bytes); }
  PeerBytes(const PeerBytes&) = delete;
  PeerBytes& operator=(const PeerBytes&) = delete;

  char* bytes = nullptr;
  std::uint32_t size = 0;
};

/// Both read the bytes of both. The peer's XML has real numbers of fewer digits, so the lists are
/// compared by what they are in binary.
void requireSameAnswers(NSObject* list, NSData* bytes, NSPropertyListFormat format) {
  require(isEqual(read(bytes), list));
  const Plist peers = peerRead(bytes->view(), format);
  require(peers != nullptr);
  const PeerBytes binary(peers.get(), NSPropertyListBinaryFormat_v1_0);
  require(isEqual(read(NSData::dataWithBytes(std::string_view(binary.bytes, binary.size))), list));
}

// ---- Benchmarks ----------------------------------------------------------------------------

struct Input {
  explicit Input(benchmark::State& state)
      : format(static_cast<NSPropertyListFormat>(state.range(0))),
        list(listOf(static_cast<Kind>(state.range(1)), format)),
        bytes(write(list, format)) {
    requireSameAnswers(list, bytes, format);
    state.SetLabel(std::string(format == NSPropertyListXMLFormat_v1_0 ? "XML, " : "binary, ") +
                   kKinds[state.range(1)]);
  }
  void setBytes(benchmark::State& state) const {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes->length()));
  }

  const NSPropertyListFormat format;
  const Ref<NSArray> list;
  const Ref<NSData> bytes;
};

void writing(benchmark::State& state) {
  const Input input(state);
  for (auto _ : state) benchmark::DoNotOptimize(write(input.list, input.format));
  input.setBytes(state);
}

void writingWithLibplist(benchmark::State& state) {
  const Input input(state);
  const Plist list = peerRead(input.bytes->view(), input.format);
  for (auto _ : state) benchmark::DoNotOptimize(PeerBytes(list.get(), input.format).bytes);
  input.setBytes(state);
}

void reading(benchmark::State& state) {
  const Input input(state);
  for (auto _ : state) benchmark::DoNotOptimize(read(input.bytes));
  input.setBytes(state);
}

void readingWithLibplist(benchmark::State& state) {
  const Input input(state);
  for (auto _ : state) benchmark::DoNotOptimize(peerRead(input.bytes->view(), input.format).get());
  input.setBytes(state);
}

void lists(benchmark::internal::Benchmark* benchmark) {
  for (auto format : {NSPropertyListXMLFormat_v1_0, NSPropertyListBinaryFormat_v1_0})
    for (Kind kind : {Messages, Texts, Numbers, Data})
      benchmark->Args({static_cast<std::int64_t>(format), kind});
  benchmark->ArgNames({"format", "kind"})->Unit(benchmark::kMillisecond);
}

BENCHMARK(writing)->Apply(lists);
BENCHMARK(writingWithLibplist)->Apply(lists);  // the peer
BENCHMARK(reading)->Apply(lists);
BENCHMARK(readingWithLibplist)->Apply(lists);  // the peer

}  // namespace
}  // namespace kbx
