#include "host/watch/WatchedNames.h"

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;

TEST(WatchedNames, UnfinishedWorkIsKnownByItsName) {
  for (auto name : {".a.eml", ".temp-KBXEMLXFile-1.emlx", "a.eml~", "1690.M1.host~", "a.eml.part",
                    "a.crdownload", "."})
    EXPECT_TRUE(isTemporaryName(name)) << name;
  for (auto name : {"a.eml", "1690.M1.host:2,S", "part", "a.part.eml", ""})
    EXPECT_FALSE(isTemporaryName(name)) << name;
}

TEST(WatchedNames, MessagesAreKnownByTheirNameOrByTheirMaildir) {
  TemporaryFolder folder;
  for (auto name : {"box/cur", "box/new", "box/tmp", "other/cur"})
    fs::create_directories(folder / name);
  struct Case {
    const char* path;
    bool isMessage;
  };
  for (auto [path, isMessage] : {Case{"a.eml", true},
                                 {"b.EMLX", true},
                                 {"c.txt", false},
                                 {"box/cur/1690.M1.host:2,S", true},
                                 {"box/tmp/1690.M1", false},
                                 {"other/cur/1690.M1", false},
                                 {"other/cur/1.eml", true}})
    EXPECT_EQ(isWatchedFile((folder / path).string()), isMessage) << path;
}

TEST(WatchedNames, HiddenFoldersHoldMailWhenTheyAreMaildirs) {
  TemporaryFolder folder;
  for (auto name : {".Sent/cur", ".Sent/tmp", ".git/objects"})
    fs::create_directories(folder / name);
  EXPECT_TRUE(isWatchedFolder((folder / ".Sent").string()));
  EXPECT_FALSE(isWatchedFolder((folder / ".git").string()));
  EXPECT_TRUE(isWatchedFolder((folder / "plain").string()));
}

TEST(WatchedNames, WhatIsBeingDeliveredLiesInTheTmpOfAMaildirAlone) {
  TemporaryFolder folder;
  for (auto name : {"box/new", "box/tmp", "plain/tmp"}) fs::create_directories(folder / name);
  EXPECT_TRUE(isDeliveryFolder((folder / "box/tmp").string()));
  EXPECT_FALSE(isDeliveryFolder((folder / "box/new").string()));
  EXPECT_FALSE(isDeliveryFolder((folder / "plain/tmp").string()));
}

}  // namespace
}  // namespace kbx
