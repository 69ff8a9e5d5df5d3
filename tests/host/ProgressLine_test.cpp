#include "host/console/ProgressLine.h"

#include <gtest/gtest.h>

#include "tests/support/FakeClock.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

struct Shown {
  FakeClock clock{1000};
  ScopedService<Clock> installed{clock};
  StringOutput output;
  Diagnostics diagnostics{output};
};

constexpr char kErase[] = "\r\x1B[K";

TEST(ProgressLine, AShortCommandShowsNone) {
  Shown shown;
  {
    ProgressLine progress(shown.diagnostics, 80);
    shown.clock.seconds = 1000.4;
    progress.count(true);
  }
  EXPECT_EQ(shown.output.text(), "");
}

TEST(ProgressLine, TheLineTellsDoneRateAndFailuresAndIsTakenAway) {
  Shown shown;
  {
    ProgressLine progress(shown.diagnostics, 80);
    for (int i = 0; i < 99; ++i) progress.count(true);
    shown.clock.seconds = 1000.5;
    progress.count(true);
    EXPECT_EQ(shown.output.text(), "100 done, 200 a second");
    shown.clock.seconds = 1000.55;
    progress.count(true);
    EXPECT_EQ(shown.output.text(), "100 done, 200 a second") << "not more often than can be read";
    shown.clock.seconds = 1002;
    progress.count(false);
    EXPECT_EQ(shown.output.text(),
              "100 done, 200 a second" + std::string(kErase) + "102 done, 51 a second, 1 failed");
  }
  EXPECT_TRUE(shown.output.text().ends_with("1 failed" + std::string(kErase)));
}

TEST(ProgressLine, WhereTheNumberIsKnownTheLineTellsWhatIsLeft) {
  struct Case {
    std::uint64_t total;
    double seconds;
    const char* line;
  };
  for (auto [total, seconds, line] :
       {Case{400, 2, "100 of 400 (25 %), 50 a second, 6 s left, 1 failed"},
        {100, 2, "100 of 100 (100 %), 50 a second, 0 s left, 1 failed"},
        {50, 2, "100 of 100 (100 %), 50 a second, 0 s left, 1 failed"},  // more turned up
        {0, 2, "100 of 100 (100 %), 50 a second, 0 s left, 1 failed"},
        {10'000, 10, "100 of 10000 (1 %), 10 a second, 17 min left, 1 failed"},
        {100'000, 10, "100 of 100000 (0 %), 10 a second, 3 h left, 1 failed"}}) {
    Shown shown;
    ProgressLine progress(shown.diagnostics, 80);
    for (int i = 0; i < 1000; ++i) progress.count(false);  // of what came before
    shown.clock.seconds = 1001;
    progress.expect(total);
    for (int i = 0; i < 99; ++i) progress.count(true);
    shown.clock.seconds = 1001 + seconds;
    progress.count(false);
    EXPECT_EQ(shown.output.text(), line);
  }
}

TEST(ProgressLine, WithoutATerminalNothingIsSaid) {
  Shown shown;
  {
    ProgressLine progress(shown.diagnostics, 0);
    shown.clock.seconds = 2000;
    progress.count(false);
  }
  EXPECT_EQ(shown.output.text(), "");
}

TEST(ProgressLine, ANarrowTerminalGetsWhatFitsIt) {
  Shown shown;
  ProgressLine progress(shown.diagnostics, 9);
  shown.clock.seconds = 1001;
  progress.count(true);
  EXPECT_EQ(shown.output.text(), "1 done, ");
}

TEST(ProgressLine, AClockThatIsSetBackDoesNotMatter) {
  Shown shown;
  ProgressLine progress(shown.diagnostics, 80);
  shown.clock.seconds = 10;
  progress.count(true);
  EXPECT_EQ(shown.output.text(), "");
}

}  // namespace
}  // namespace kbx
