#include "host/import/StandardInput.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "platform/files/SystemFiles.h"
#include "platform/objects/NSData.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

/// A file system whose standard input holds what a test wants.
class FakeInput final : public SystemFiles {
 public:
  std::int64_t read(int descriptor, void* buffer, std::size_t size) override {
    if (descriptor != 0) return SystemFiles::read(descriptor, buffer, size);
    if (failure) return -failure;
    const std::size_t count = std::min(size, remaining);
    std::fill_n(static_cast<char*>(buffer), count, 'x');
    remaining -= count;
    return static_cast<std::int64_t>(count);
  }
  std::int64_t write(int descriptor, const void* bytes, std::size_t size) override {
    if (writes == 0) return -ENOSPC;
    --writes;
    return isStored ? SystemFiles::write(descriptor, bytes, size) : static_cast<std::int64_t>(size);
  }

  std::size_t remaining = 0;      // bytes to read, all of them "x"
  int failure = 0;                // of reading
  std::size_t writes = SIZE_MAX;  // that find room on the disk
  bool isStored = true;
};

TEST(StandardInput, IsCopiedToAFileThatGoesWithTheObject) {
  FakeInput files;
  files.remaining = 100'000;
  ScopedService<FileSystem> installed(files);
  Ref<NSURL> url;
  {
    Ref<NSError> error;
    const StandardInput input(&error);
    url = input.url();
    ASSERT_TRUE(url);
    EXPECT_TRUE(url->fileSystemRepresentation().ends_with(".eml"));
    auto bytes = NSData::dataWithContentsOfURL(url, NSDataReadingNone, &error);
    EXPECT_EQ(text(bytes), std::string(100'000, 'x'));
  }
  auto folder = url->URLByDeletingLastPathComponent();
  EXPECT_FALSE(std::filesystem::exists(folder->fileSystemRepresentation()));
}

TEST(StandardInput, NothingIsAnEmptyFile) {
  FakeInput files;
  ScopedService<FileSystem> installed(files);
  const StandardInput input(nullptr);
  ASSERT_TRUE(input.url());
  EXPECT_EQ(text(NSData::dataWithContentsOfURL(input.url(), NSDataReadingNone, nullptr)), "");
}

/// The code of the error of an input that cannot be copied; 0 for one that can.
std::int64_t codeOfFailure(FakeInput& files) {
  ScopedService<FileSystem> installed(files);
  Ref<NSError> error;
  const StandardInput input(&error);
  return input.url() ? 0 : error->code();
}

TEST(StandardInput, WhatCannotBeReadIsAReadingError) {
  FakeInput files;
  files.failure = EIO;
  EXPECT_EQ(codeOfFailure(files), NSFileReadUnknownError);
}

TEST(StandardInput, AFullDiskIsAWritingError) {
  FakeInput files;
  files.remaining = 1'000'000;
  files.writes = 3;
  EXPECT_EQ(codeOfFailure(files), NSFileWriteOutOfSpaceError);
}

TEST(StandardInput, AnEndlessStreamIsTooLarge) {
  FakeInput files;
  files.remaining = SIZE_MAX;
  files.isStored = false;
  EXPECT_EQ(codeOfFailure(files), NSFileReadTooLargeError);
}

}  // namespace
}  // namespace kbx
