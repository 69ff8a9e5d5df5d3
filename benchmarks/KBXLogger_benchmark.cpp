// A logging site whose area is off against an empty function, and against asking the logger anew.
#include <benchmark/benchmark.h>

#include "KBXLog.h"
#include "platform/objects/NSNumber.h"

namespace kbx {
namespace {

constexpr LogSite kSite("KBXFoundation/Source/X", 1, "-[X name]");

[[gnu::noinline]] void empty(int value) { benchmark::DoNotOptimize(value); }

[[gnu::noinline]] void site(int value) {
  KBX_LOG_AREA("KBXBenchmarkArea", kSite, "%d"_ns, value);
  benchmark::DoNotOptimize(value);
}

/// What a site means, without what it remembers.
[[gnu::noinline]] void question(int value) {
  Ref<KBXLogger> logger = KBXLogger::sharedLogger();
  if (logger->isEnabledForArea("KBXBenchmarkArea"_ns))
    logger->logFileFormat(kSite.file, kSite.line, kSite.function, "KBXBenchmarkArea"_ns, "%d"_ns,
                          value);
  benchmark::DoNotOptimize(value);
}

/// With a shared logger that has other areas on.
template <auto call>
void areaOff(benchmark::State& state) {
  auto defaults =
      NSDictionary::dictionaryWithPairs({{"KBXOtherArea"_ns, NSNumber::numberWithBool(true)}});
  KBXLogger::setSharedLogger(KBXLogger::initWithDefaultsDictionary(defaults));
  int value = 0;
  for (auto _ : state) call(++value);
  KBXLogger::setSharedLogger(nullptr);
}

BENCHMARK(areaOff<empty>)->Name("empty");
BENCHMARK(areaOff<site>)->Name("site");
BENCHMARK(areaOff<question>)->Name("question");

}  // namespace
}  // namespace kbx
