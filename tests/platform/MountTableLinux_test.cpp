#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "platform/volumes/linux/MountInfo.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

TEST(MountTableLinux, ALineTellsOfAMount) {
  const auto mounts = mountsInMountInfo(
      "22 1 8:1 / / rw,relatime shared:1 - ext4 /dev/sda1 rw\n"
      "36 22 8:17 /sub /media/My\\040Disk\\134 rw master:1 shared:2 - ext4 /dev/disk\\0401 rw\n"
      "37 22 0:21 / /proc rw - proc proc rw");
  ASSERT_EQ(mounts.size(), 3u);
  EXPECT_EQ(mounts[0].mountPoint, "/");
  EXPECT_EQ(mounts[0].device, "8:1");
  EXPECT_EQ(mounts[0].source, "/dev/sda1");
  EXPECT_EQ(mounts[1].mountPoint, "/media/My Disk\\");
  EXPECT_EQ(mounts[1].source, "/dev/disk 1");
  EXPECT_EQ(mounts[2].source, "proc");
}

TEST(MountTableLinux, LinesOfAnotherFormAreLeftOut) {
  EXPECT_TRUE(mountsInMountInfo("").empty());
  EXPECT_TRUE(
      mountsInMountInfo("\n\n  \n1\n1 2\n1 2 3:4\n1 2 3:4 /\n1 2 3:4 / relative\n").empty());
  const auto cut = mountsInMountInfo("1 2 3:4 / /a\\04 rw");
  ASSERT_EQ(cut.size(), 1u) << "without what is mounted";
  EXPECT_EQ(cut[0].mountPoint, "/a\\04");
  EXPECT_EQ(cut[0].source, "");
}

TEST(MountTableLinux, RandomBytesAreReadWithinTheirBounds) {
  std::mt19937 random(11);
  constexpr std::string_view kBytes = "/ \\0- \n7a:";
  for (int round = 0; round < 20000; ++round) {
    std::string text(random() % 60, '\0');
    for (char& byte : text) byte = kBytes[random() % kBytes.size()];
    for (const auto& mount : mountsInMountInfo(text)) EXPECT_EQ(mount.mountPoint.front(), '/');
  }
}

TEST(MountTableLinux, TheRootOfThisMachineIsMounted) {
  if (!std::filesystem::exists("/proc/self/mountinfo")) GTEST_SKIP() << "no /proc here";
  for (const auto& mount : MountTable::current().mounts())
    EXPECT_TRUE(mount.mountPoint.starts_with('/') && !mount.device.empty());
  EXPECT_FALSE(MountTable::current().mounts().empty());
}

TEST(MountTableLinux, ALabelIsTheLinkThatLeadsToTheDevice) {
  TemporaryFolder folder;
  std::filesystem::create_directory(folder / "by-label");
  folder.write("sda1", "");
  folder.write("sdb1", "");
  std::filesystem::create_symlink("../gone", folder / "by-label/Gone");
  std::filesystem::create_symlink("../sdb1", folder / "by-label/My\\x20Disk\\x2");
  const std::string labels = (folder / "by-label").string();
  EXPECT_EQ(labelInFolder(labels, (folder / "sdb1").string()), "My Disk\\x2");
  EXPECT_EQ(labelInFolder(labels, (folder / "sda1").string()), "");
  EXPECT_EQ(labelInFolder(labels, (folder / "gone").string()), "");
  EXPECT_EQ(labelInFolder((folder / "none").string(), (folder / "sda1").string()), "");
}

}  // namespace
}  // namespace kbx
