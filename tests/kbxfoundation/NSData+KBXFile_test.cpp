#include "NSData+KBXFile.h"

#include <gtest/gtest.h>

#include "NSError+KBX.h"
#include "tests/support/FailingFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(NSDataKBXFile, WhatWasWrittenIsReadWhole) {
  TemporaryFolder folder;
  const std::string bytes = std::string(100'000, 'x') + std::string("\0\xFF", 2);
  Ref<NSError> error;
  EXPECT_TRUE(kbxWriteToURL(kbx::data(bytes), folder.url("a"), &error));
  EXPECT_TRUE(kbxWriteToURL(data("new"), folder.url("b"), &error));
  EXPECT_TRUE(kbxWriteToURL(data("newer"), folder.url("b"), &error));
  EXPECT_EQ(text(kbxReadFromURL(folder.url("a"), &error)), bytes);
  EXPECT_EQ(text(kbxReadFromURL(folder.url("b"), &error)), "newer");
  EXPECT_EQ(error, nullptr);
}

TEST(NSDataKBXFile, AFailureIsThePlatformsErrorWithoutAFrame) {
  TemporaryFolder folder;
  Ref<NSError> error;
  EXPECT_EQ(kbxReadFromURL(folder.url("none"), &error), nullptr);
  ASSERT_TRUE(error);
  EXPECT_TRUE(kbxHasDomain(error, NSCocoaErrorDomain(), NSFileReadNoSuchFileError));
  EXPECT_EQ(error->userInfo()->objectForKey("KBXStackFrames"_ns), nullptr);
  error = nullptr;
  EXPECT_FALSE(kbxWriteToURL(data("a"), folder.url("none/a"), &error));
  ASSERT_TRUE(error);
  EXPECT_TRUE(kbxHasDomain(error, NSCocoaErrorDomain(), NSFileNoSuchFileError));
  EXPECT_EQ(error->userInfo()->objectForKey("KBXStackFrames"_ns), nullptr);
}

TEST(NSDataKBXFile, AFailedWriteLeavesTheFileAsItWas) {
  TemporaryFolder folder;
  auto url = folder.write("a", "old");
  FailingFiles files;
  files.fail(FailingFiles::Call::Write, ENOSPC);
  ScopedService<FileSystem> installed(files);
  Ref<NSError> error;
  EXPECT_FALSE(kbxWriteToURL(data("new"), url, &error));
  EXPECT_EQ(error->code(), NSFileWriteOutOfSpaceError);
  EXPECT_EQ(folder.read("a"), "old");
  EXPECT_EQ(folder.count(), 1u);
}

TEST(NSDataKBXFile, AMissingLocationIsError901) {
  Ref<NSError> error;
  EXPECT_EQ(kbxReadFromURL(nullptr, &error), nullptr);
  ASSERT_TRUE(error);
  EXPECT_TRUE(kbxHasDomain(error, KBXErrorDomain(), 901));
  EXPECT_EQ(text(error->localizedDescription()), "The requirement “url” was not satisfied.");
  error = nullptr;
  EXPECT_FALSE(kbxWriteToURL(data("a"), nullptr, &error));
  ASSERT_TRUE(error);
  EXPECT_TRUE(kbxHasDomain(error, KBXErrorDomain(), 901));
  EXPECT_FALSE(kbxWriteToURL(data("a"), nullptr, nullptr));
  EXPECT_FALSE(kbxWriteToURL(nullptr, nullptr, nullptr));
}

}  // namespace
}  // namespace kbx
