#include "host/workers/WorkerOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "tests/support/CommandRun.h"
#include "tests/support/FakeEnvironment.h"

namespace kbx {
namespace {

using testing::HasSubstr;

struct Applied {
  ImportSettings settings;
  bool hasLog;
};

Applied applied(std::vector<std::string> arguments) {
  CLI::App app;
  WorkerOptions options;
  options.declareOn(app);
  std::ranges::reverse(arguments);  // the parser takes the last one first
  app.parse(arguments);
  options.check();
  StringOutput output;
  Diagnostics log(output);
  ImportSettings settings;
  options.applyTo(settings, log);
  return {settings, settings.log == &log};
}

TEST(WorkerOptions, WithoutAnyTheSettingsStayAsTheyAre) {
  const auto [settings, hasLog] = applied({});
  EXPECT_EQ(settings.workers, 0u);
  EXPECT_TRUE(settings.isIsolated);
  EXPECT_EQ(settings.limits.seconds, 120u);
  EXPECT_EQ(settings.limits.processorSeconds, 60u);
  EXPECT_FALSE(hasLog);
}

TEST(WorkerOptions, EachGoesIntoTheSettings) {
  EXPECT_EQ(applied({"-j", "7"}).settings.workers, 7u);
  EXPECT_TRUE(applied({"--isolate=process"}).settings.isIsolated);
  EXPECT_FALSE(applied({"--isolate=none", "-j1"}).settings.isIsolated);
  const ImportLimits limits = applied({"--timeout=5"}).settings.limits;
  EXPECT_EQ(limits.seconds, 5u);
  EXPECT_EQ(limits.processorSeconds, 5u);
  EXPECT_TRUE(applied({"-v"}).hasLog);
  EXPECT_TRUE(applied({"--verbose"}).hasLog);
}

TEST(WorkerOptions, WaysThatMeanNothingAreRefusedByEachCommand) {
  FakeEnvironment environment({"HOME=/nowhere"});
  ScopedService<Environment> installed(environment);
  const char kWay[] = "--isolate is process or none";
  const char kContradiction[] = "--isolate=none excludes -j and --timeout";
  for (auto command : {"import", "index", "watch"})
    for (const auto& [options, reason] :
         std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"-j", "0"}, "-j"},
             {{"-j", "x"}, "-j"},
             {{"-j", "-1"}, "-j"},
             {{"-j", "257"}, "-j"},
             {{"--timeout=0"}, "--timeout"},
             {{"--timeout=86401"}, "--timeout"},
             {{"--isolate=some"}, kWay},
             {{"--isolate="}, kWay},
             {{"--isolate=none", "-j2"}, kContradiction},
             {{"--isolate=none", "--timeout=1"}, kContradiction}}) {
      std::vector<std::string> arguments{command, "/gone"};
      arguments.insert(arguments.end(), options.begin(), options.end());
      const auto [code, output, complaints] = answerTo(arguments);
      EXPECT_EQ(code, kMisused) << command << " " << options.back();
      EXPECT_THAT(complaints, HasSubstr(reason));
    }
}

}  // namespace
}  // namespace kbx
