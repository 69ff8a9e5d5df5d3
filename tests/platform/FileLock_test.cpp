#include "platform/files/FileLock.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <optional>

#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

constexpr std::chrono::milliseconds kAtOnce{0};

TEST(FileLock, OneHolderKeepsOthersOut) {
  TemporaryFolder folder;
  const std::string path = folder / "lock";
  std::optional<FileLock> first(std::in_place, path, kAtOnce);
  EXPECT_TRUE(first->isHeld());
  const FileLock second(path, kAtOnce);
  EXPECT_FALSE(second.isHeld());
  EXPECT_EQ(second.result(), -EWOULDBLOCK);
  first.reset();
  EXPECT_TRUE(FileLock(path, kAtOnce).isHeld());
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST(FileLock, FilesAreLockedEachForItself) {
  TemporaryFolder folder;
  const FileLock first(folder / "a", kAtOnce), second(folder / "b", kAtOnce);
  EXPECT_TRUE(first.isHeld());
  EXPECT_TRUE(second.isHeld());
}

TEST(FileLock, AFileThatCannotBeMadeIsNotHeld) {
  TemporaryFolder folder;
  EXPECT_EQ(FileLock(folder / "none/lock", kAtOnce).result(), -ENOENT);
  std::filesystem::create_symlink("elsewhere", folder / "link");
  EXPECT_EQ(FileLock(folder / "link", kAtOnce).result(), -ELOOP);
}

}  // namespace
}  // namespace kbx
