// Raw import of a message through the driver, beside what no import can do without: reading the
// file and checking that it is UTF-8, the check by simdjson. Then the same with the host's output,
// into a device that takes everything; and what it would cost to ask for the units of the text.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <simdjson.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "KBXEMLXFile.h"
#include "host/console/Output.h"
#include "host/results/Results.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSString.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

constexpr std::size_t kSize = 10'000'000;

/// A message of lines made of the words in an order without a pattern.
std::string message(std::initializer_list<std::string_view> words) {
  std::mt19937 random(1);
  std::string text = "From: a@example.org\r\nSubject: Benchmark\r\n\r\n";
  for (std::size_t line = 0; text.size() < kSize;) {
    const std::string_view word = *(words.begin() + random() % words.size());
    text.append(word);
    line += word.size() + 1;
    text += line > 70 ? "\r\n" : " ";
    if (line > 70) line = 0;
  }
  return text;
}

std::string asciiMessage() {
  return message({"the", "message", "attribute", "of", "index", "a", "document", "(see", "below)",
                  "organiser,", "which", "finds", "and", "1843", "http://example.org/x?y=z"});
}

std::string mixedMessage() {
  return message({"the", "Straße", "zażółć", "gęślą", "日本語の文章", "письмо", "attribute",
                  "index", "naïve", "😀", "Ελληνικά", "and", "of", "a", "“quoted”"});
}

std::string foreignMessage() {
  return message({"Съешь", "ещё", "этих", "мягких", "французских", "булок,", "да", "выпей", "чаю.",
                  "電子郵件的內容可以用很多種語言寫成，", "這裡只是一個例子。"});
}

struct MessageFile {
  explicit MessageFile(const std::string& bytes) : url(folder.write("message.eml", bytes)) {}
  TemporaryFolder folder;
  Ref<NSURL> url;
};

using Bytes = std::unique_ptr<char, decltype(&std::free)>;

/// The bytes of the file, when they are UTF-8.
Bytes readAndValidate(const char* path, std::size_t* length) {
  const int descriptor = ::open(path, O_RDONLY | O_CLOEXEC);
  struct stat status {};
  ::fstat(descriptor, &status);
  const auto size = static_cast<std::size_t>(status.st_size);
  Bytes bytes(static_cast<char*>(std::malloc(size)), &std::free);
  for (*length = 0; *length < size;)
    *length += static_cast<std::size_t>(::read(descriptor, bytes.get() + *length, size - *length));
  ::close(descriptor);
  if (!simdjson::validate_utf8(bytes.get(), size)) bytes.reset();
  return bytes;
}

void checkSameAnswer(const MessageFile& file) {
  std::size_t length = 0;
  const Bytes bytes = readAndValidate(file.url->fileSystemRepresentation().c_str(), &length);
  auto attributes = KBXEMLXFile::metadataForEMLURL(file.url, false, nullptr);
  auto* text = cast<NSString>(attributes->objectForKey(fromCF(kMDItemTextContent)));
  if (!bytes || !text || text->UTF8String() != std::string(bytes.get(), length)) std::abort();
}

void import(benchmark::State& state, const std::string& bytes) {
  const MessageFile file(bytes);
  checkSameAnswer(file);
  for (auto _ : state)
    benchmark::DoNotOptimize(KBXEMLXFile::metadataForEMLURL(file.url, false, nullptr));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}

void baseline(benchmark::State& state, const std::string& bytes) {
  const MessageFile file(bytes);
  std::size_t length = 0;
  for (auto _ : state)
    benchmark::DoNotOptimize(
        readAndValidate(file.url->fileSystemRepresentation().c_str(), &length));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}

void importAndPrint(benchmark::State& state, const std::string& bytes,
                    std::unique_ptr<Results> (*makeResults)(Output&)) {
  const MessageFile file(bytes);
  const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  for (auto _ : state) {
    DescriptorOutput output(nowhere);
    const auto results = makeResults(output);
    results->begin();
    results->delivered("message.eml", KBXEMLXFile::metadataForEMLURL(file.url, false, nullptr));
    results->end();
  }
  ::close(nowhere);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}

void importAndUnits(benchmark::State& state, const std::string& bytes) {
  const MessageFile file(bytes);
  for (auto _ : state) {
    auto attributes = KBXEMLXFile::metadataForEMLURL(file.url, false, nullptr);
    auto* text = cast<NSString>(attributes->objectForKey(fromCF(kMDItemTextContent)));
    benchmark::DoNotOptimize(text->length());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}

std::unique_ptr<Results> text(Output& output) { return makeTextResults(output, false); }

void add(const std::string& name, const std::string& bytes) {
  const auto with = [&](const char* what, auto run, auto... more) {
    benchmark::RegisterBenchmark((what + name).c_str(), run, bytes, more...)
        ->Unit(benchmark::kMillisecond);
  };
  with("baseline/", baseline);
  with("import/", import);
  with("importAndPrint/json/", importAndPrint, makeLineResults);
  with("importAndPrint/text/", importAndPrint, text);
  with("importAndUnits/", importAndUnits);
}

[[maybe_unused]] const bool isRegistered = [] {
  add("ascii", asciiMessage());
  add("mixed", mixedMessage());
  add("foreign", foreignMessage());
  return true;
}();

}  // namespace
}  // namespace kbx
