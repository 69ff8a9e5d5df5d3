// UTF-8 to UTF-16 and back against ICU's converters, on the same text in the same run.
#include <benchmark/benchmark.h>
#include <unicode/ustring.h>

#include <cstdint>
#include <cstdlib>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/UTF8.h"

namespace kbx {
namespace {

std::u16string decodeHere(std::string_view bytes) { return *utf16FromUTF8(bytes); }

std::string encodeHere(std::u16string_view units) { return *utf8FromUTF16(units); }

std::u16string decodeICU(std::string_view bytes) {
  std::u16string units(bytes.size(), u'\0');
  std::int32_t length = 0;
  UErrorCode failure = U_ZERO_ERROR;
  u_strFromUTF8(units.data(), static_cast<std::int32_t>(units.size()), &length, bytes.data(),
                static_cast<std::int32_t>(bytes.size()), &failure);
  units.resize(static_cast<std::size_t>(length));
  return units;
}

std::string encodeICU(std::u16string_view units) {
  std::string bytes(3 * units.size(), '\0');
  std::int32_t length = 0;
  UErrorCode failure = U_ZERO_ERROR;
  u_strToUTF8(bytes.data(), static_cast<std::int32_t>(bytes.size()), &length, units.data(),
              static_cast<std::int32_t>(units.size()), &failure);
  bytes.resize(static_cast<std::size_t>(length));
  return bytes;
}

/// Words of the sentence in any order, about `size` bytes: branch predictors learn a text that
/// repeats itself by heart.
std::string text(std::string_view sentence, std::size_t size, unsigned seed) {
  std::vector<std::string> words;
  std::istringstream stream{std::string(sentence)};
  for (std::string word; stream >> word;) words.push_back(word);
  std::mt19937 random(seed);
  std::string result;
  while (result.size() < size) result += words[random() % words.size()] + " ";
  return result;
}

/// As many texts of `size` bytes as make 256 kB, for the same reason.
std::vector<std::string> texts(std::string_view sentence, std::int64_t size) {
  std::vector<std::string> result;
  for (unsigned i = 0; i < (1 << 18) / size; ++i)
    result.push_back(text(sentence, static_cast<std::size_t>(size), i));
  return result;
}

/// Converts each text in turn.
template <class Text, class Convert>
void run(benchmark::State& state, const std::vector<Text>& texts, Convert convert) {
  std::size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(convert(texts[next]));
    next = next + 1 == texts.size() ? 0 : next + 1;
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

template <auto decode>
void fromUTF8(benchmark::State& state, std::string_view sentence) {
  const auto bytes = texts(sentence, state.range(0));
  for (const auto& one : bytes)
    if (decodeHere(one) != decodeICU(one)) std::abort();
  run(state, bytes, decode);
}

template <auto encode>
void toUTF8(benchmark::State& state, std::string_view sentence) {
  std::vector<std::u16string> units;
  for (const auto& one : texts(sentence, state.range(0))) {
    units.push_back(decodeICU(one));
    if (encodeHere(units.back()) != one || encodeICU(units.back()) != one) std::abort();
  }
  run(state, units, encode);
}

struct Sentence {
  const char* name;
  std::string_view text;
};

constexpr Sentence kSentences[] = {
    {"ascii", "The quick brown fox jumps over the lazy dog, twice a day."},
    {"accents", "Les élèves français se réveillent très tôt, où qu'ils soient, même à Noël."},
    {"cyrillic", "Съешь же ещё этих мягких французских булок, да выпей чаю."},
    {"cjk", "電子郵件的內容 可以用很多種 語言寫成， 這裡只是一個例子。 2026年 11月"},
    {"emoji", "See you there 🎉🎉 don't be late 😀 and bring 🍰!"},
};

void add(std::string name, void (*run)(benchmark::State&, std::string_view),
         const Sentence& sentence) {
  name += std::string("/") + sentence.name;
  benchmark::RegisterBenchmark(name.c_str(), run, sentence.text)->Arg(1 << 10)->Arg(1 << 18);
}

[[maybe_unused]] const bool isRegistered = [] {
  for (const Sentence& sentence : kSentences) {
    add("decode", fromUTF8<decodeHere>, sentence);
    add("decodeICU", fromUTF8<decodeICU>, sentence);
    add("encode", toUTF8<encodeHere>, sentence);
    add("encodeICU", toUTF8<encodeICU>, sentence);
  }
  return true;
}();

}  // namespace
}  // namespace kbx
