#include "platform/files/BoundedFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>

#include "tests/support/FailingFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

TEST(BoundedFile, AFileIsReadWholeOrNotAtAll) {
  TemporaryFolder folder;
  const std::string bytes(200'000, 'x');
  folder.write("a", bytes);
  const std::string path = (folder / "a").string();
  EXPECT_EQ(contentsOfFile(path, bytes.size()), bytes);
  EXPECT_EQ(contentsOfFile(path, bytes.size() - 1), std::nullopt);
  EXPECT_EQ(contentsOfFile((folder / "none").string(), 10), std::nullopt);
}

TEST(BoundedFile, AnEmptyFileHasContents) {
  TemporaryFolder folder;
  folder.write("a", "");
  EXPECT_EQ(contentsOfFile((folder / "a").string(), 0), "");
}

TEST(BoundedFile, APipeAndAFolderAreNotRead) {
  TemporaryFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(contentsOfFile((folder / "pipe").string(), 10), std::nullopt);
  EXPECT_EQ(contentsOfFile(folder.path().string(), 10), std::nullopt);
}

TEST(BoundedFile, AFailingReadGivesNothing) {
  TemporaryFolder folder;
  folder.write("a", std::string(100'000, 'x'));
  FailingFiles files;
  files.fail(FailingFiles::Call::Read, EIO, 1);
  ScopedService<FileSystem> installed(files);
  EXPECT_EQ(contentsOfFile((folder / "a").string(), 1 << 20), std::nullopt);
}

}  // namespace
}  // namespace kbx
