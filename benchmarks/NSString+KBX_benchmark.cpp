// The search that leaves out case against ICU's string search, on the same text in the same run.
#include "NSString+KBXSearching.h"

#include <benchmark/benchmark.h>
#include <unicode/usearch.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace kbx {
namespace {

struct Sample {
  const char* language;
  std::string_view words;
  std::string_view wanted;  // stands at the end of the text alone, in another case
  std::string_view end;
};
constexpr Sample kSamples[] = {
    {"ASCII", "Received: from mail.example.org by mx with ESMTP id for the Subject To Re: hello",
     "x-message-flag", "X-Message-Flag"},
    {"German", "Über größere Straßen führen Wege nach Köln und München, schöne Grüße von Jürgen",
     "straßenbahn", "STRASSENBAHN"},
    {"Russian", "Съешь же ещё этих мягких французских булок, да выпей чаю в доме у реки",
     "привет мир", "ПРИВЕТ МИР"},
    {"Greek", "Ξεσκεπάζω την ψυχοφθόρα σου βδελυγμία και τα άλλα που ήταν εδώ", "οδυσσευς",
     "ΟΔΥΣΣΕΥΣ"},
    {"Japanese", "いろはにほへと ちりぬるを 東京都 日本語の文章です カタカナも 使います",
     "ＡＢＣ商事", "ａｂｃ商事"},
    {"Korean", "모든 국민은 법 앞에 평등하다 누구든지 성별 종교 또는 사회적 신분에", "한글abc",
     "한글ABC"},
    {"decomposed",
     "cafe\u0301 re\u0301sume\u0301 nai\u0308ve u\u0308ber fac\u0327ade e\u0301te\u0301",
     "de\u0301ja\u0300", "DÉJÀ"},
};

/// Words of the sample in any order, about `size` bytes, then what is wanted.
Ref<NSString> makeText(const Sample& sample, std::int64_t size) {
  std::vector<std::string> words;
  std::istringstream stream{std::string(sample.words)};
  for (std::string word; stream >> word;) words.push_back(word);
  std::mt19937 random(1);
  std::string text;
  while (text.size() < static_cast<std::size_t>(size)) text += words[random() % words.size()] + " ";
  return NSString::stringWithUTF8(text.append(sample.end));
}

class SearchHere {
 public:
  SearchHere(NSString* text, NSString* wanted) : _text(text), _wanted(wanted) {}
  bool find() { return kbxCaseInsensitiveContainsString(_text, _wanted); }

 private:
  NSString* _text;
  NSString* _wanted;
};

/// ICU's search at the strength that leaves out case alone. Texts are widened and the pattern is
/// prepared beforehand, which favours it.
class SearchByICU {
 public:
  SearchByICU(NSString* text, NSString* wanted) : _text(unitsOf(text)), _wanted(unitsOf(wanted)) {
    UErrorCode status = U_ZERO_ERROR;
    _collator.reset(ucol_open("", &status));
    ucol_setStrength(_collator.get(), UCOL_SECONDARY);
    ucol_setAttribute(_collator.get(), UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
    _search.reset(usearch_openFromCollator(
        _wanted.data(), static_cast<std::int32_t>(_wanted.size()), _text.data(),
        static_cast<std::int32_t>(_text.size()), _collator.get(), nullptr, &status));
    if (U_FAILURE(status)) std::abort();
  }
  bool find() {
    UErrorCode status = U_ZERO_ERROR;
    return usearch_first(_search.get(), &status) != USEARCH_DONE;
  }

 private:
  static std::u16string unitsOf(NSString* string) {
    return string->visitUnits(
        [](auto units) { return std::u16string(units.begin(), units.end()); });
  }

  const std::u16string _text, _wanted;
  std::unique_ptr<UCollator, decltype(&ucol_close)> _collator{nullptr, &ucol_close};
  std::unique_ptr<UStringSearch, decltype(&usearch_close)> _search{nullptr, &usearch_close};
};

/// Both find what stands at the end and miss what is nowhere. A sharp s is no two letters to ICU,
/// so there it looks for the text as it stands.
std::string_view wantedBy(const Sample& sample, bool isICU) {
  const bool hasSharpS = sample.wanted.find("ß") != std::string_view::npos;
  return isICU && hasSharpS ? sample.end : sample.wanted;
}

template <class Search>
void search(benchmark::State& state, const Sample& sample, bool isICU) {
  const Ref<NSString> text = makeText(sample, state.range(0));
  const Ref<NSString> wanted = NSString::stringWithUTF8(wantedBy(sample, isICU));
  if (!Search(text, wanted).find() || Search(text, "nowhere at all"_ns).find()) {
    std::cerr << "a wrong answer: " << sample.language << '\n';
    std::abort();
  }
  Search searching(text, wanted);
  for (auto _ : state) benchmark::DoNotOptimize(searching.find());
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

const bool registered = [] {
  for (const Sample& sample : kSamples) {
    for (std::int64_t size : {1 << 6, 1 << 10, 1 << 14, 1 << 20}) {
      const std::string name = std::string("search/") + sample.language;
      benchmark::RegisterBenchmark((name + "/here").c_str(), [&sample](benchmark::State& state) {
        search<SearchHere>(state, sample, false);
      })->Arg(size);
      benchmark::RegisterBenchmark((name + "/ICU").c_str(), [&sample](benchmark::State& state) {
        search<SearchByICU>(state, sample, true);
      })->Arg(size);
    }
  }
  return true;
}();

}  // namespace
}  // namespace kbx
