#include "host/index/IndexReport.h"

#include <gtest/gtest.h>

#include "tests/support/FakeClock.h"

namespace kbx {
namespace {

struct Streams {
  FakeClock clock{1000};
  ScopedService<Clock> installed{clock};
  StringOutput output, complaints;
  Diagnostics diagnostics{complaints};
  Console console{output, diagnostics};
};

TEST(IndexReport, TheSummaryNamesAllThatCanHappen) {
  EXPECT_EQ(summaryText({}), "0 added, 0 changed, 0 moved, 0 removed, 0 unchanged, 0 failed");
  EXPECT_EQ(summaryText({1, 2, 3, 4, 5, 6, 7}),
            "1 added, 2 changed, 3 moved, 4 removed, 5 unchanged, 6 failed, 7 failed before");
}

TEST(IndexReport, ATerminalIsShownHowFarTheWorkIs) {
  Streams streams;
  IndexReport report(streams.console, {.columns = 80});
  streams.clock.seconds = 1001;
  report.compared();
  report.begins(4);
  report.isDone(false);
  streams.clock.seconds = 1002;
  report.isDone(true);
  EXPECT_EQ(streams.complaints.text(),
            "1 done, 1 a second\r\x1B[K2 of 4 (50 %), 2 a second, 1 s left, 1 failed");
}

TEST(IndexReport, WithoutATerminalOnlyFailuresAndTheSummaryAreTold) {
  Streams streams;
  IndexReport report(streams.console, {});
  streams.clock.seconds = 2000;
  report.compared();
  report.begins(2);
  report.added("/a.eml");
  report.failed("/b.eml", posixError(5));
  report.isDone(true);
  report.summarize({.added = 1, .failed = 1});
  EXPECT_EQ(streams.output.text(), "");
  EXPECT_TRUE(streams.complaints.text().starts_with("ferncase: /b.eml: "));
  EXPECT_TRUE(streams.complaints.text().ends_with(
      "\nferncase: 1 added, 0 changed, 0 moved, 0 removed, 0 unchanged, 1 failed\n"));
}

TEST(IndexReport, EventsAreWrittenAtOnceAndOneALine) {
  Streams streams;
  IndexReport report(streams.console, {.hasEvents = true, .hasSummary = false});
  report.moved("/a\n.eml", "/\xE9.eml");
  report.summarize({.moved = 1});
  EXPECT_EQ(streams.output.text(),
            "{\"event\": \"moved\", \"path\": \"/\\udce9.eml\", \"from\": \"/a\\n.eml\"}\n"
            "{\"event\": \"done\", \"added\": 0, \"changed\": 0, \"moved\": 1, \"removed\": 0, "
            "\"unchanged\": 0, \"failed\": 0, \"failedBefore\": 0}\n");
  EXPECT_EQ(streams.complaints.text(), "");
}

}  // namespace
}  // namespace kbx
