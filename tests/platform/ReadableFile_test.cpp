#include "platform/files/ReadableFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "platform/objects/NSData.h"
#include "platform/objects/NSError.h"
#include "tests/support/FailingFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

TEST(ReadableFile, IsOpenForReadingFromTheStart) {
  TemporaryFolder folder;
  const ReadableFile file(folder.write("a", "abc"), nullptr);
  ASSERT_TRUE(file.isOpen());
  EXPECT_EQ(file.size(), 3u);
  char bytes[8];
  EXPECT_EQ(FileSystem::current().read(file.descriptor(), bytes, sizeof bytes), 3);
}

TEST(ReadableFile, TheLimitIsPartOfWhatCanBeRead) {
  TemporaryFolder folder;
  folder.write("a", "");
  std::filesystem::resize_file(folder / "a", ReadableFile::kLargest);
  EXPECT_TRUE(ReadableFile(folder.url("a"), nullptr).isOpen());
  std::filesystem::resize_file(folder / "a", ReadableFile::kLargest + 1);
  Ref<NSError> error;
  EXPECT_FALSE(ReadableFile(folder.url("a"), &error).isOpen());
  EXPECT_EQ(error->code(), NSFileReadTooLargeError);
}

TEST(ReadableFile, TheErrorIsThatOfReading) {
  TemporaryFolder folder;
  for (auto name : {"missing", ".", "/dev/null"}) {
    Ref<NSError> error, readingError;
    EXPECT_FALSE(ReadableFile(folder.url(name), &error).isOpen());
    EXPECT_FALSE(ReadableFile(folder.url(name), nullptr).isOpen());
    NSData::dataWithContentsOfURL(folder.url(name), NSDataReadingNone, &readingError);
    EXPECT_TRUE(isEqual(error, readingError)) << name;
  }
}

TEST(ReadableFile, WhatCannotBeOpenedOrLookedAtIsAnError) {
  TemporaryFolder folder;
  auto url = folder.write("a", "abc");
  for (auto call : {FailingFiles::Call::Open, FailingFiles::Call::Status}) {
    FailingFiles files;
    files.fail(call, EACCES);
    ScopedService<FileSystem> installed(files);
    Ref<NSError> error;
    EXPECT_FALSE(ReadableFile(url, &error).isOpen());
    EXPECT_EQ(error->code(), NSFileReadNoPermissionError);
  }
}

}  // namespace
}  // namespace kbx
