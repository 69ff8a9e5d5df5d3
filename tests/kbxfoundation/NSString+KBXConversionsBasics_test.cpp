#include "NSString+KBXConversionsBasics.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "NSError+KBX.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(NSStringKBXConversionsBasics, TextBecomesBytesInItsEncoding) {
  Ref<NSError> error;
  EXPECT_EQ(text(kbxDataUsingEncoding("é"_ns, NSUTF8StringEncoding, &error)), "é");
  EXPECT_EQ(text(kbxDataUsingEncoding("é"_ns, NSISOLatin1StringEncoding, &error)), "\xE9");
  EXPECT_EQ(text(kbxDataUsingEncoding(""_ns, NSASCIIStringEncoding, &error)), "");
  EXPECT_EQ(error, nullptr);
}

TEST(NSStringKBXConversionsBasics, WhatWouldBeLostIsError501WithoutAFrame) {
  auto receiver = string("Жa");
  Ref<NSError> error;
  EXPECT_EQ(kbxDataUsingEncoding(receiver, NSISOLatin1StringEncoding, &error), nullptr);
  ASSERT_NE(error, nullptr);
  EXPECT_TRUE(kbxHasDomain(error, KBXErrorDomain(), 501));
  EXPECT_EQ(text(error->userInfo()->allKeys()->componentsJoinedByString(" "_ns)),
            "KBXString KBXStringEncoding NSLocalizedFailureReason");
  EXPECT_TRUE(isSame(error->userInfo()->objectForKey("KBXString"_ns), receiver.get()));
  auto* encoding = cast<NSNumber>(error->userInfo()->objectForKey("KBXStringEncoding"_ns));
  ASSERT_NE(encoding, nullptr);
  EXPECT_EQ(encoding->kind(), NSNumber::Kind::Unsigned);
  EXPECT_EQ(encoding->unsignedIntegerValue(), 5u);
  EXPECT_EQ(text(error->localizedFailureReason()), "Error encoding data from string.");
}

TEST(NSStringKBXConversionsBasics, ALoneSurrogateHasNoUTF8) {
  Ref<NSError> error;
  auto lone = NSString::stringWithUTF16(std::u16string{0xD83D});
  EXPECT_EQ(kbxDataUsingEncoding(lone, NSUTF8StringEncoding, &error), nullptr);
  EXPECT_TRUE(kbxHasDomain(error, KBXErrorDomain(), 501));
  EXPECT_EQ(text(kbxDataUsingEncoding(lone, NSNonLossyASCIIStringEncoding, nullptr)), "\\ud83d");
}

TEST(NSStringKBXConversionsBasics, NobodyNeedsToAskForTheError) {
  EXPECT_EQ(kbxDataUsingEncoding("Ж"_ns, NSASCIIStringEncoding, nullptr), nullptr);
}

TEST(NSStringKBXConversionsBasics, AnAbsentTextIsNoError) {
  Ref<NSError> error;
  EXPECT_EQ(kbxDataUsingEncoding(nullptr, NSUTF8StringEncoding, &error), nullptr);
  EXPECT_EQ(error, nullptr);
}

TEST(NSStringKBXConversionsBasics, AFileURLAsksWhetherThePathIsAFolder) {
  TemporaryFolder folder;
  auto path = folder.url()->path();
  EXPECT_TRUE(kbxFileURL(path)->hasDirectoryPath());
  EXPECT_FALSE(kbxFastFileURL(path)->hasDirectoryPath());
  EXPECT_TRUE(isEqual(kbxFastFileURL(path)->path(), path));
  auto file = folder.write("é.eml", "")->path();
  EXPECT_FALSE(kbxFileURL(file)->hasDirectoryPath());
  EXPECT_TRUE(isEqual(kbxFileURL(file)->path(), file));
}

TEST(NSStringKBXConversionsBasics, NoPathHasNoURL) {
  for (NSString* path : {static_cast<NSString*>(nullptr), ""_ns}) {
    EXPECT_EQ(kbxFileURL(path), nullptr);
    EXPECT_EQ(kbxFastFileURL(path), nullptr);
  }
}

}  // namespace
}  // namespace kbx
