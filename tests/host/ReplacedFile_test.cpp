#include "host/export/ReplacedFile.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "tests/support/FailingFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

using Call = FailingFiles::Call;

TEST(ReplacedFile, WhatWasThereStaysUntilTheNewOneIsComplete) {
  TemporaryFolder folder;
  folder.write("out", "old");
  Ref<NSError> error;
  auto file = ReplacedFile::open((folder / "out").string(), &error);
  ASSERT_TRUE(file);
  file->output().write("new");
  file->output().flush();
  EXPECT_EQ(folder.read("out"), "old");
  EXPECT_TRUE(file->finish(&error));
  EXPECT_EQ(folder.read("out"), "new");
  file.reset();
  EXPECT_EQ(folder.count(), 1u);
}

TEST(ReplacedFile, WhatIsNotFinishedLeavesNothing) {
  TemporaryFolder folder;
  Ref<NSError> error;
  ReplacedFile::open((folder / "out").string(), &error)->output().write("part");
  EXPECT_EQ(folder.count(), 0u);
}

TEST(ReplacedFile, WhateverFailsTheOldFileStaysAndTheReasonIsTold) {
  for (Call call : {Call::Write, Call::Flush, Call::Close, Call::Rename}) {
    TemporaryFolder folder;
    folder.write("out", "old");
    FailingFiles files;
    const ScopedService<FileSystem> installed(files);
    Ref<NSError> error;
    auto file = ReplacedFile::open((folder / "out").string(), &error);
    ASSERT_TRUE(file);
    file->output().write("new");
    files.fail(call, ENOSPC);
    EXPECT_FALSE(file->finish(&error));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), NSFileWriteOutOfSpaceError);
    file.reset();
    EXPECT_EQ(folder.read("out"), "old");
    EXPECT_EQ(folder.count(), 1u);
  }
}

TEST(ReplacedFile, AFolderThatIsNotThereIsAnError) {
  TemporaryFolder folder;
  Ref<NSError> error;
  EXPECT_FALSE(ReplacedFile::open((folder / "gone/out").string(), &error));
  EXPECT_TRUE(error);
}

TEST(ReplacedFile, ADeviceIsWrittenToItself) {
  Ref<NSError> error;
  auto file = ReplacedFile::open("/dev/null", &error);
  ASSERT_TRUE(file);
  file->output().write("x");
  EXPECT_TRUE(file->finish(&error));
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

}  // namespace
}  // namespace kbx
