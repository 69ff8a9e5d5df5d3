#include "platform/volumes/Volumes.h"

#include <gtest/gtest.h>

#include "tests/support/FakeFiles.h"
#include "tests/support/FakeMountTable.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

std::string deviceOf(const std::string& path) {
  const auto mount = mountHolding(path);
  return mount ? mount->device : "none";
}

TEST(Volumes, TheDeepestMountHoldsAnItem) {
  FakeMountTable volumes{{{"/data", "1", ""}, {"/", "0", ""}, {"/data/in", "2", ""}}};
  FakeFiles files;
  struct Case {
    const char *path, *device;
  };
  for (auto [path, device] : {Case{"/", "0"},
                              {"/a", "0"},
                              {"/data", "1"},
                              {"/data/x", "1"},
                              {"/database", "0"},
                              {"/data/in/x/y", "2"},
                              {"/data/inside", "1"}})
    EXPECT_EQ(deviceOf(path), device) << path;
}

TEST(Volumes, OfSeveralMountsOnOnePlaceTheLastCounts) {
  FakeMountTable volumes{{{"/", "0", ""}, {"/a", "1", ""}, {"/a", "2", ""}}};
  FakeFiles files;
  EXPECT_EQ(deviceOf("/a/x"), "2");
}

TEST(Volumes, LinksOnTheWayAreFollowedAndTheLastIsNot) {
  FakeMountTable volumes{{{"/", "0", ""}, {"/disk", "1", ""}}};
  FakeFiles files;
  files.folder("/disk");
  files.link("/link", "/disk");
  files.link("/loop", "loop");
  EXPECT_EQ(deviceOf("/link/a"), "1");
  EXPECT_EQ(deviceOf("/link"), "0");
  EXPECT_EQ(deviceOf("/loop/a"), "none");
  EXPECT_TRUE(isMountPoint("/disk"));
  EXPECT_FALSE(isMountPoint("/link"));
  EXPECT_FALSE(isMountPoint("/disk/a"));
}

TEST(Volumes, WithoutATableNothingIsKnown) {
  FakeMountTable volumes;
  FakeFiles files;
  EXPECT_EQ(deviceOf("/a"), "none");
  EXPECT_FALSE(isMountPoint("/"));
}

TEST(Volumes, AVolumeIsCalledByItsLabelOrItsPlace) {
  FakeMountTable volumes;
  volumes.labels["/dev/sdb1"] = "Letters";
  EXPECT_EQ(text(nameOfVolume({"/media/x", "8:17", "/dev/sdb1"})), "Letters");
  EXPECT_EQ(text(nameOfVolume({"/media/x", "8:18", "/dev/sdb2"})), "x");
  EXPECT_EQ(nameOfVolume({"/", "8:1", "/dev/sda1"}), nullptr);
  EXPECT_EQ(nameOfVolume({"/media/\xFF", "1", ""})->characterAtIndex(0), 0xDCFF);
}

}  // namespace
}  // namespace kbx
