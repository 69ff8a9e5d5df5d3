#include "KBXLogWriter.h"

#include <gtest/gtest.h>

#include "platform/objects/NSClass.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(KBXLogWriter, PrefixAndMessageAreJoinedByOneBlank) {
  auto writer = KBXLogWriter::init();
  EXPECT_EQ(text(writer->combinePrefix("[Parser]"_ns, "abc"_ns)), "[Parser] abc");
}

TEST(KBXLogWriter, AnEmptyPrefixLeavesALeadingBlank) {
  EXPECT_EQ(text(KBXLogWriter::init()->combinePrefix(""_ns, "abc"_ns)), " abc");
}

TEST(KBXLogWriter, NothingInTheTextsIsAFormat) {
  EXPECT_EQ(text(KBXLogWriter::init()->combinePrefix("%d"_ns, "%@ %s"_ns)), "%d %@ %s");
}

TEST(KBXLogWriter, TheBaseWritesNothingAndRaises) {
  auto exception =
      raisedBy([] { KBXLogWriter::init()->writePrefix(""_ns, "abc"_ns, "Parser"_ns); });
  ASSERT_TRUE(exception);
  EXPECT_EQ(text(exception->name()), "NSInvalidArgumentException");
  EXPECT_TRUE(exception->reason()->hasPrefix(
      "-[KBXLogWriter writePrefix:message:area:]: unrecognized selector sent to instance"_ns));
}

}  // namespace
}  // namespace kbx
