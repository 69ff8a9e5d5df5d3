#include "host/import/ImportLog.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/support/Text.h"

namespace kbx {
namespace {

using Lines = std::vector<std::string>;

Lines linesOf(const ImportLog::Recording& recording) {
  Lines lines;
  for (const auto& line : recording.lines()) lines.push_back(text(line));
  return lines;
}

TEST(ImportLog, ARecordingKeepsWhatIsLoggedWhileItLives) {
  ImportLog log(nullptr);
  ScopedService<ClassicLog> installed(log);
  NSLog("before"_ns);
  const ImportLog::Recording recording;
  NSLog("a %d"_ns, 1);
  NSLog("b"_ns);
  EXPECT_EQ(linesOf(recording), (Lines{"a 1", "b"}));
}

TEST(ImportLog, TheInnermostRecordingKeepsTheLines) {
  ImportLog log(nullptr);
  ScopedService<ClassicLog> installed(log);
  const ImportLog::Recording outer;
  {
    const ImportLog::Recording inner;
    NSLog("inner"_ns);
    EXPECT_EQ(linesOf(inner), Lines{"inner"});
  }
  NSLog("outer"_ns);
  EXPECT_EQ(linesOf(outer), Lines{"outer"});
}

TEST(ImportLog, EachThreadHasItsOwnLines) {
  ImportLog log(nullptr);
  ScopedService<ClassicLog> installed(log);
  const ImportLog::Recording mine;
  std::thread other([] {
    const ImportLog::Recording theirs;
    NSLog("theirs"_ns);
    EXPECT_EQ(linesOf(theirs), Lines{"theirs"});
  });
  other.join();
  NSLog("mine"_ns);
  EXPECT_EQ(linesOf(mine), Lines{"mine"});
}

TEST(ImportLog, OnlyTheLastLinesAreKept) {
  ImportLog log(nullptr);
  ScopedService<ClassicLog> installed(log);
  const ImportLog::Recording recording;
  for (int i = 0; i < 1000; ++i) NSLog("%d"_ns, i);
  EXPECT_EQ(recording.lines().size(), 64u);
  EXPECT_EQ(text(recording.lines().back()), "999");
}

TEST(ImportLog, LinesAreShownToWhoAskedForThem) {
  StringOutput output;
  Diagnostics diagnostics(output);
  ImportLog log(&diagnostics);
  ScopedService<ClassicLog> installed(log);
  NSLog("seen"_ns);
  EXPECT_EQ(output.text(), "log: seen\n");
}

}  // namespace
}  // namespace kbx
