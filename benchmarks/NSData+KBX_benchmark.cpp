// Searching bytes against the C library's search, and normalising line breaks against copying, on
// the same bytes in the same run. The answers are compared before anything is measured.
#include "NSData+KBX.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace kbx {
namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

// ---- Inputs --------------------------------------------------------------------------------

/// Lines of words in any order: a header, then paragraphs of lines of various lengths with a blank
/// line behind each. Branch predictors learn a text that repeats itself by heart.
std::string mail(std::size_t size, std::string_view lineBreak) {
  constexpr std::string_view kWords[] = {"the",     "of",       "message", "Received:", "from",
                                         "library", "document", "a",       "to",        "and",
                                         "sender",  "organise", "with",    "2024",      "importer"};
  std::mt19937 random(size & 0xFFFF);
  std::string result = "Subject: benchmark" + std::string(lineBreak);
  std::size_t lineLength = 0;
  while (result.size() < size) {
    const auto word = kWords[random() % std::size(kWords)];
    result.append(word).append(" ");
    lineLength += word.size() + 1;
    if (lineLength < 40 + random() % 40) continue;
    result.append(lineBreak);
    if (random() % 8 == 0) result.append(lineBreak);
    lineLength = 0;
  }
  return result;
}

std::string base64(std::size_t size, std::string_view lineBreak) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::mt19937 random(size & 0xFFFF);
  std::string result;
  while (result.size() < size) {
    for (int i = 0; i < 76; ++i) result += kDigits[random() % 64];
    result += lineBreak;
  }
  return result;
}

std::string repeated(std::string_view unit, std::size_t size) {
  std::string result;
  while (result.size() < size) result += unit;
  return result;
}

// ---- Searching -----------------------------------------------------------------------------

struct Search {
  std::string bytes, pattern;
};

/// What is looked for stands at the end, or nowhere.
Search searchOf(int kind, std::size_t size) {
  switch (kind) {
    case 0:
      return {mail(size, "\r\n") + "boundary=frontier", "boundary=frontier"};
    case 1:
      return {mail(size, "\r\n"), "the importer of it"};
    case 2:
      return {mail(size, "\r\n") + "\n\nx", "\n\n"};
    case 3:
      return {base64(size, "\r\n") + "------=_Part", "------=_Part"};
    case 4:
      return {base64(size, "\r\n"), "QUJDRA=="};
    case 5:
      return {repeated("a", size), std::string(63, 'a') + "b"};
    case 6:
      return {repeated("a", size), "b" + std::string(63, 'a')};
    case 7:
      return {repeated("a", size), std::string(32, 'a') + "b" + std::string(31, 'a')};
    case 8:
      return {repeated("a", size), "aabaa"};
    case 9:
      return {repeated("a", size), std::string(2000, 'a') + "b" + std::string(2000, 'a')};
    default:
      return {repeated("ab", size), repeated("ab", 2000) + "b" + repeated("ab", 2000)};
  }
}

constexpr const char* kSearches[] = {
    "mail, at its end", "mail, nowhere",      "mail, blank line",    "base64, at its end",
    "base64, nowhere",  "aaaa, aa...ab",      "aaaa, ba...aa",       "aaaa, a...b...a",
    "aaaa, aabaa",      "aaaa, long a..b..a", "abab, long ab..b..ab"};

std::size_t here(NSData* bytes, NSData* pattern) { return kbxRangeOfData(bytes, pattern).location; }

std::size_t libcMemmem(NSData* bytes, NSData* pattern) {
  const void* found = memmem(bytes->bytes(), bytes->length(), pattern->bytes(), pattern->length());
  if (!found) return NSNotFound;
  return static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) - bytes->bytes());
}

template <std::size_t (*Find)(NSData*, NSData*)>
void rangeOfData(benchmark::State& state) {
  const Search search =
      searchOf(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
  const auto bytes = NSData::dataWithBytes(search.bytes);
  const auto pattern = NSData::dataWithBytes(search.pattern);
  require(here(bytes, pattern) == libcMemmem(bytes, pattern));
  for (auto _ : state) benchmark::DoNotOptimize(Find(bytes, pattern));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes->length()));
  state.SetLabel(kSearches[state.range(0)]);
}

void searches(benchmark::internal::Benchmark* benchmark) {
  for (int kind = 0; kind < static_cast<int>(std::size(kSearches)); ++kind)
    for (int size : {1 << 10, 1 << 20}) benchmark->Args({kind, size});
}

BENCHMARK(rangeOfData<here>)->Apply(searches);
BENCHMARK(rangeOfData<libcMemmem>)->Apply(searches);  // the peer

// ---- Line breaks ---------------------------------------------------------------------------

std::string linesOf(int kind, std::size_t size) {
  switch (kind) {
    case 0:
      return mail(size, "\n");
    case 1:
      return mail(size, "\r\n");
    case 2:
      return base64(size, "\r\n");
    case 3:
      return mail(size, "\r");
    default:
      return repeated("\r\n", size);
  }
}

constexpr const char* kLines[] = {"mail, LF", "mail, CR LF", "base64, CR LF", "mail, CR",
                                  "CR LF alone"};

Ref<NSData> copy(NSData* bytes) { return NSData::dataWithBytes(bytes->view()); }

Ref<NSData> twoPasses(NSData* bytes) {
  const auto pair = kbxDataWithCString("\r\n"), carriageReturn = kbxDataWithCString("\r");
  const auto feed = kbxDataWithCString("\n");
  return kbxDataByReplacingData(kbxDataByReplacingData(bytes, pair, feed), carriageReturn, feed);
}

template <Ref<NSData> (*Normalize)(NSData*)>
void lineBreaks(benchmark::State& state) {
  const auto bytes = NSData::dataWithBytes(
      linesOf(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1))));
  require(isEqual(kbxDataByNormalizingLineBreaks(bytes), twoPasses(bytes)));
  for (auto _ : state) benchmark::DoNotOptimize(Normalize(bytes));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes->length()));
  state.SetLabel(kLines[state.range(0)]);
}

/// Into memory that is there already: what copying costs without the new buffer that a result is.
void memcpyAlone(benchmark::State& state) {
  const std::string bytes =
      linesOf(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
  std::vector<char> room(bytes.size());
  for (auto _ : state) {
    std::memcpy(room.data(), bytes.data(), bytes.size());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
  state.SetLabel(kLines[state.range(0)]);
}

void texts(benchmark::internal::Benchmark* benchmark) {
  for (int kind = 0; kind < static_cast<int>(std::size(kLines)); ++kind)
    for (int size : {1 << 12, 1 << 16, 1 << 20, 1 << 24}) benchmark->Args({kind, size});
}

BENCHMARK(lineBreaks<kbxDataByNormalizingLineBreaks>)->Apply(texts);
BENCHMARK(lineBreaks<twoPasses>)->Apply(texts);
BENCHMARK(lineBreaks<copy>)->Apply(texts);  // the peer: memcpy into a new buffer
BENCHMARK(memcpyAlone)
    ->Args({0, 1 << 12})
    ->Args({0, 1 << 16})
    ->Args({0, 1 << 20})
    ->Args({0, 1 << 24});

}  // namespace
}  // namespace kbx
