#include <gtest/gtest.h>

#include "platform/files/NSFileManager.h"
#include "platform/objects/NSArray.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/FakeFiles.h"
#include "tests/support/FakeMountTable.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

class NSFileManagerDisplayedPath : public testing::Test {
 protected:
  NSFileManagerDisplayedPath() {
    for (const char* path : {"/home", "/home/ada", "/media", "/media/ada", "/media/ada/BACKUP",
                             "/media/ada/BACKUP/old", "/srv", "/srv/x"})
      files.folder(path);
    files.link("/home/dangling", "gone");
    volumes.labels["/dev/sda1"] = "System";
    volumes.labels["/dev/sdb1"] = "Letters";
  }
  static std::string shown(NSString* path) {
    auto names = NSFileManager::defaultManager()->componentsToDisplayForPath(path);
    return names ? text(names->componentsJoinedByString("|"_ns)) : "none";
  }

  FakeFiles files;
  FakeMountTable volumes{{{"/", "8:1", "/dev/sda1"},
                          {"/media/ada/BACKUP", "8:17", "/dev/sdb1"},
                          {"/srv", "8:33", "/dev/sdc1"}}};
  FakeEnvironment environment;
  ScopedService<Environment> installed{environment};
};

TEST_F(NSFileManagerDisplayedPath, APathIsShownFromItsVolumeOn) {
  EXPECT_EQ(shown("/home/ada"_ns), "System|home|ada");
  EXPECT_EQ(shown("/"_ns), "System");
  EXPECT_EQ(shown("/media/ada/BACKUP/old"_ns), "Letters|old");
  EXPECT_EQ(shown("/media/ada/BACKUP"_ns), "Letters");
  EXPECT_EQ(shown("/media/ada"_ns), "System|media|ada");
  EXPECT_EQ(shown("/home//ada/../ada/."_ns), "System|home|ada");
}

TEST_F(NSFileManagerDisplayedPath, OnlyMediaStandForThemselves) {
  EXPECT_EQ(shown("/srv/x"_ns), "System|srv|x");
}

TEST_F(NSFileManagerDisplayedPath, AVolumeWithoutALabelIsARootOrItsPlace) {
  volumes.labels.clear();
  EXPECT_EQ(shown("/home"_ns), "/|home");
  EXPECT_EQ(shown("/media/ada/BACKUP/old"_ns), "BACKUP|old");
}

TEST_F(NSFileManagerDisplayedPath, WhatIsNotThereHasNoNames) {
  EXPECT_EQ(shown("/home/eve"_ns), "none");
  EXPECT_EQ(shown("home"_ns), "none");
  EXPECT_EQ(shown(""_ns), "none");
  EXPECT_EQ(shown(nullptr), "none");
  EXPECT_EQ(shown("/home/dangling"_ns), "System|home|dangling") << "a link is there itself";
}

}  // namespace
}  // namespace kbx
