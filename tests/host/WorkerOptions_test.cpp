#include "host/workers/WorkerOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "tests/support/CommandRun.h"
#include "tests/support/FakeEnvironment.h"

namespace kbx {
namespace {

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
  expectRefused({"import", "index", "watch"},
                {{{"-j", "0"}, "-j"},
                 {{"-j", "x"}, "-j"},
                 {{"-j", "-1"}, "-j"},
                 {{"-j", "257"}, "-j"},
                 {{"--timeout=0"}, "--timeout"},
                 {{"--timeout=86401"}, "--timeout"},
                 {{"--isolate=some"}, kWay},
                 {{"--isolate="}, kWay},
                 {{"--isolate=none", "-j2"}, kContradiction},
                 {{"--isolate=none", "--timeout=1"}, kContradiction}});
}

}  // namespace
}  // namespace kbx
