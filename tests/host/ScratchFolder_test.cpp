#include "host/import/ScratchFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <optional>

#include "tests/support/FakeEnvironment.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using Place = ScratchFolder::Place;

/// Memory and disk are two folders of the test.
class ScratchFolderTest : public testing::Test {
 protected:
  ScratchFolderTest() {
    fs::create_directory(_folder / "memory");
    fs::create_directory(_folder / "disk");
    _environment.entries = {"XDG_RUNTIME_DIR=" + (_folder / "memory").string(),
                            "TMPDIR=" + (_folder / "disk").string()};
  }
  bool isEmpty(std::string_view name) const { return fs::is_empty(_folder / name); }

  TemporaryFolder _folder;
  FakeEnvironment _environment;
  ScopedService<Environment> _installed{_environment};
};

TEST_F(ScratchFolderTest, LiesWhereItIsWantedAndGoesWithAllThatIsInIt) {
  {
    const ScratchFolder memory(Place::Memory), disk(Place::Disk);
    EXPECT_EQ(fs::path(memory.path()).parent_path(), _folder / "memory");
    EXPECT_EQ(fs::path(disk.path()).parent_path(), _folder / "disk");
    fs::create_directory(memory.path() + "/inner");
    std::ofstream(memory.path() + "/inner/file") << "x";
  }
  EXPECT_TRUE(isEmpty("memory"));
  EXPECT_TRUE(isEmpty("disk"));
}

TEST_F(ScratchFolderTest, OnlyTheUserCanLookIntoIt) {
  const ScratchFolder scratch(Place::Memory);
  EXPECT_EQ(fs::status(scratch.path()).permissions(), fs::perms::owner_all);
}

TEST_F(ScratchFolderTest, FoldersThatCannotBeUsedArePassedOver) {
  for (auto entry : {"XDG_RUNTIME_DIR=/nowhere", "XDG_RUNTIME_DIR=relative", "XDG_RUNTIME_DIR="}) {
    _environment.entries = {entry};
    const ScratchFolder scratch(Place::Memory);
    EXPECT_EQ(scratch.failure(), 0);
    EXPECT_TRUE(fs::is_directory(scratch.path()));
  }
  _environment.entries = {"TMPDIR=/nowhere"};
  EXPECT_TRUE(ScratchFolder(Place::Disk).path().starts_with("/tmp/"));
}

TEST_F(ScratchFolderTest, WhatAKilledProcessLeftIsRemovedByTheNext) {
  fs::create_directory(_folder / "memory/ferncase-scratch-abcdef");
  _folder.write("memory/ferncase-scratch-abcdef/.temp-KBXEMLXFile-1.emlx", "left");
  const ScratchFolder scratch(Place::Memory);
  EXPECT_FALSE(fs::exists(_folder / "memory/ferncase-scratch-abcdef"));
}

TEST_F(ScratchFolderTest, AFolderInUseIsLeftAlone) {
  const ScratchFolder first(Place::Memory);
  std::ofstream(first.path() + "/file") << "x";
  const ScratchFolder second(Place::Memory);
  EXPECT_TRUE(fs::exists(first.path() + "/file"));
}

TEST_F(ScratchFolderTest, WhatOthersMadeIsLeftAlone) {
  fs::create_directory(_folder / "memory/ferncase-abcdef");
  fs::create_directory(_folder / "memory/ferncase-scratch-of-mine");
  _folder.write("memory/ferncase-scratch-afile1", "x");
  fs::create_directory(_folder / "disk/target");
  fs::create_directory_symlink(_folder / "disk/target", _folder / "memory/ferncase-scratch-alink1");
  const ScratchFolder scratch(Place::Memory);
  for (auto name :
       {"memory/ferncase-abcdef", "memory/ferncase-scratch-of-mine",
        "memory/ferncase-scratch-afile1", "memory/ferncase-scratch-alink1", "disk/target"})
    EXPECT_TRUE(fs::exists(_folder / name)) << name;
}

TEST_F(ScratchFolderTest, ClearingLeavesTheFolder) {
  ScratchFolder scratch(Place::Memory);
  fs::create_directory(scratch.path() + "/inner");
  std::ofstream(scratch.path() + "/.hidden") << "x";
  fs::create_symlink(_folder / "disk", scratch.path() + "/link");
  scratch.clear();
  EXPECT_TRUE(fs::is_empty(scratch.path()));
  EXPECT_TRUE(fs::exists(_folder / "disk"));
}

}  // namespace
}  // namespace kbx
