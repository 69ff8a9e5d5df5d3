#include "host/console/Diagnostics.h"

#include <gtest/gtest.h>

#include "host/console/FerncaseErrors.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

struct Said {
  StringOutput output;
  Diagnostics diagnostics{output};
};

TEST(Diagnostics, AFailureIsOneLineWhateverItsPathAndReasonHold) {
  Said said;
  said.diagnostics.failure("a\nferncase: b\x1B[1m\xE9.eml", "no\nwonder \u202E\\"_ns);
  EXPECT_EQ(said.output.text(),
            "ferncase: a\\nferncase: b\\u001b[1m\\xe9.eml: no\\nwonder \\u202e\\\\\n");
}

TEST(Diagnostics, AnEmptyPathCanBeSeen) {
  Said said;
  said.diagnostics.failure("", "No."_ns);
  EXPECT_EQ(said.output.text(), "ferncase: '': No.\n");
}

TEST(Diagnostics, AFailureOfNoPathIsTheErrorsDescription) {
  Said said;
  said.diagnostics.failure(ferncaseError(FerncaseNoMessagesError, "No\nmail."));
  EXPECT_EQ(said.output.text(), "ferncase: No\\nmail.\n");
}

TEST(Diagnostics, AMessageIsOneLine) {
  Said said;
  said.diagnostics.message("unknown option --a\nb");
  EXPECT_EQ(said.output.text(), "ferncase: unknown option --a\\nb\n");
}

TEST(Diagnostics, OurOwnLinesStayAsTheyAre) {
  Said said;
  said.diagnostics.text("Usage:\n  one\n");
  EXPECT_EQ(said.output.text(), "Usage:\n  one\n");
}

TEST(Diagnostics, FurtherLinesOfTheLogAreIndented) {
  Said said;
  said.diagnostics.log("one\nferncase: two\x1B"_ns);
  EXPECT_EQ(said.output.text(), "log: one\n    ferncase: two\\u001b\n");
}

TEST(Diagnostics, TheStatusStaysBelowOtherLines) {
  Said said;
  said.diagnostics.status("1 done");
  said.diagnostics.message("x");
  said.diagnostics.log("y"_ns);
  said.diagnostics.status("2 done");
  said.diagnostics.status("");
  said.diagnostics.message("z");
  const std::string erase = "\r\x1B[K";
  EXPECT_EQ(said.output.text(), "1 done" + erase + "ferncase: x\n1 done" + erase +
                                    "log: y\n1 done" + erase + "2 done" + erase + "ferncase: z\n");
}

}  // namespace
}  // namespace kbx
