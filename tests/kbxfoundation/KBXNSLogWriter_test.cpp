#include "KBXNSLogWriter.h"

#include <gmock/gmock.h>

#include "platform/objects/NSClass.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/RecordingUnifiedLog.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using testing::ElementsAre;

TEST(KBXNSLogWriter, AnEntryIsOneLineOfTheClassicLog) {
  RecordingLog log;
  KBXNSLogWriter::init()->writePrefix("Importer"_ns, "abc"_ns, nullptr);
  EXPECT_THAT(log.lines(), ElementsAre("Importer abc"));
}

TEST(KBXNSLogWriter, TheAreaDoesNotMatter) {
  RecordingLog log;
  RecordingUnifiedLog unified;
  auto writer = KBXNSLogWriter::init();
  writer->writePrefix(""_ns, "abc"_ns, "Parser"_ns);
  EXPECT_THAT(log.lines(), ElementsAre(" abc"));
  EXPECT_TRUE(unified.created().empty());
}

TEST(KBXNSLogWriter, APercentSignIsText) {
  RecordingLog log;
  KBXNSLogWriter::init()->writePrefix("100%"_ns, "%d %@ %n"_ns, nullptr);
  EXPECT_THAT(log.lines(), ElementsAre("100% %d %@ %n"));
}

TEST(KBXNSLogWriter, AMessageOfAnyLengthIsOneEntry) {
  RecordingLog log;
  std::string message(100000, 'x');
  message.append("\n").append(100000, 'y');
  KBXNSLogWriter::init()->writePrefix("p"_ns, string(message), nullptr);
  EXPECT_THAT(log.lines(), ElementsAre("p " + message));
}

TEST(KBXNSLogWriter, ItIsAWriter) {
  EXPECT_TRUE(KBXNSLogWriter::init()->isKindOfClass(KBXLogWriter::classObject()));
}

}  // namespace
}  // namespace kbx
