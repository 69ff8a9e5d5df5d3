#include "platform/messages/EMLXFile.h"

#include <gtest/gtest.h>

#include "platform/objects/NSData.h"
#include "platform/objects/NSError.h"
#include "platform/propertylists/NSPropertyListSerialization.h"
#include "tests/support/EMLX.h"
#include "tests/support/FailingReads.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

constexpr std::string_view kFlagsList =
    "<plist version=\"1.0\"><dict><key>flags</key><integer>17</integer></dict></plist>";

struct Reading {
  std::string message;
  std::uint64_t size = 0;
  std::string flags;
};

Reading read(std::string_view bytes) {
  TemporaryFolder folder;
  EMLXFile file(folder.write("m.emlx", bytes), nullptr);
  Reading reading;
  for (auto piece = file.nextPiece(); !piece.empty(); piece = file.nextPiece())
    reading.message += piece;
  reading.size = file.messageSize();
  reading.flags = text(file.properties()->objectForKey("flags"_ns));
  return reading;
}

TEST(EMLXFile, GivesAsManyBytesAsTheCountLineSaysAndTheListBehind) {
  const Reading reading = read("5\nhello" + std::string(kFlagsList));
  EXPECT_EQ(reading.message, "hello");
  EXPECT_EQ(reading.size, 5u);
  EXPECT_EQ(reading.flags, "17");
}

TEST(EMLXFile, AcceptsBlanksBehindTheCount) {
  for (std::string line : {"5     \n", "5\t\n", "5\r\n", "005\n"})
    EXPECT_EQ(read(line + "hello" + std::string(kFlagsList)).flags, "17") << line;
}

TEST(EMLXFile, ReadsABinaryListAsWell) {
  auto list = NSPropertyListSerialization::dataWithPropertyList(
      NSDictionary::dictionaryWithPairs({{"flags"_ns, "17"_ns}}), NSPropertyListBinaryFormat_v1_0,
      0, nullptr);
  EXPECT_EQ(read("5\nhello" + std::string(list->view())).flags, "17");
}

TEST(EMLXFile, AFileWithoutACountLineIsAMessageAlone) {
  for (std::string bytes : {"Subject: a\n\nb\n", "5 apples\n", "12", "-3\nhello", ""})
    EXPECT_EQ(read(bytes).message, bytes);
}

TEST(EMLXFile, AFileThatIsShorterThanItSaysEndsEarlyAndHasNoList) {
  const Reading reading = read("99999999999999999999999999\nhello");
  EXPECT_EQ(reading.message, "hello");
  EXPECT_EQ(reading.flags, "(null)");
}

TEST(EMLXFile, AnEmptyMessageIsFollowedByItsList) {
  const Reading reading = read("0\n" + std::string(kFlagsList));
  EXPECT_EQ(reading.message, "");
  EXPECT_EQ(reading.flags, "17");
}

TEST(EMLXFile, AListThatCannotBeReadIsEmpty) {
  for (std::string list : {"", "\n", "<plist", "<plist><array/></plist>", "no list"})
    EXPECT_EQ(read("5\nhello" + list).flags, "(null)") << list;
}

TEST(EMLXFile, TheListIsFoundWithoutReadingTheMessageFirst) {
  TemporaryFolder folder;
  const std::string message(200000, 'x');
  EMLXFile file(folder.write("m.emlx", emlx(message, kFlagsList)), nullptr);
  EXPECT_EQ(text(file.properties()->objectForKey("flags"_ns)), "17");
}

TEST(EMLXFile, MessagesLongerThanAPieceArriveWhole) {
  std::string message;
  for (int i = 0; i < 40000; ++i) message += std::to_string(i) + "\n";
  EXPECT_EQ(read(emlx(message, kFlagsList)).message, message);
  EXPECT_EQ(read(emlx(message, kFlagsList)).flags, "17");
}

TEST(EMLXFile, IsNotOpenWhereThereIsNoFile) {
  TemporaryFolder folder;
  Ref<NSError> error;
  EXPECT_FALSE(EMLXFile(folder.url("missing.emlx"), &error).isOpen());
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code(), 260);
}

TEST(EMLXFile, WhatCannotBeReadToItsEndIsAFailureAndNoShorterMessage) {
  forEachFailingRead([](NSURL* url) {
    EMLXFile file(url, nullptr);
    EXPECT_FALSE(file.failure());
    EXPECT_EQ(file.properties()->count(), 0u);
    ASSERT_TRUE(file.failure());
    EXPECT_EQ(text(file.failure()->localizedDescription()),
              "The file “m.emlx” couldn’t be opened: Input/output error.");
    EXPECT_EQ(file.nextPiece(), "");
  });
}

}  // namespace
}  // namespace kbx
