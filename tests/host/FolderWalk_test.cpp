#include "host/index/FolderWalk.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "tests/support/FakeFolders.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

using testing::ElementsAre;

class FolderWalkTest : public testing::Test {
 protected:
  void makeFolder(std::string_view name) { std::filesystem::create_directories(_folder / name); }
  void makeFile(std::string_view name) {
    std::filesystem::create_directories((_folder / name).parent_path());
    _folder.write(name, "x");
  }
  std::string path(std::string_view name) const { return (_folder / name).string(); }
  std::string relative(const std::string& found) const {
    return found.substr(std::min(found.size(), _folder.path().string().size() + 1));
  }
  /// What is found below the folder; a failure has its number in front.
  std::vector<std::string> walk(std::string_view root = "",
                                FolderWalk::Root kind = FolderWalk::Root::Named) {
    std::vector<std::string> paths;
    FolderWalk walk(root.empty() ? _folder.path().string() : path(root), kind);
    while (auto found = walk.next())
      paths.push_back((found->failure ? std::to_string(found->failure) + " " : "") +
                      relative(found->path));
    return paths;
  }

  TemporaryFolder _folder;
};

TEST_F(FolderWalkTest, MessagesAreFoundInTheOrderOfTheirPaths) {
  for (auto name : {"b.eml", "a/z.emlx", "a.eml", "a/b/c.EML", "a0/x.eml", "a-/x.eml", "Z.eml"})
    makeFile(name);
  const auto paths = walk();
  EXPECT_THAT(paths, ElementsAre("Z.eml", "a-/x.eml", "a.eml", "a/b/c.EML", "a/z.emlx", "a0/x.eml",
                                 "b.eml"));
  EXPECT_TRUE(std::ranges::is_sorted(paths));
}

TEST_F(FolderWalkTest, BytesAreOrderedWithoutASign) {
  for (auto name : {"\xE9.eml", "z.eml", "\x7F.eml"}) makeFile(name);
  EXPECT_THAT(walk(), ElementsAre("z.eml", "\x7F.eml", "\xE9.eml"));
}

TEST_F(FolderWalkTest, OtherFilesAndHiddenNamesArePassedOver) {
  for (auto name :
       {"a.txt", "a.eml~", ".a.eml", ".git/a.eml", ".temp-KBXEMLXFile-1.emlx", "a.eml.part", "eml"})
    makeFile(name);
  ASSERT_EQ(::mkfifo(path("pipe.eml").c_str(), 0600), 0);
  makeFolder("folder.eml");
  EXPECT_THAT(walk(), ElementsAre());
}

TEST_F(FolderWalkTest, AMaildirHasMessagesWithoutEndingsAndHiddenFolders) {
  for (auto name : {"box/cur/1:2,S", "box/new/2", "box/.Sent/cur/3:2,", "box/cur/.hidden",
                    "box/dovecot.index", "box/.Sent/maildirfolder"})
    makeFile(name);
  for (auto name : {"box/tmp", "box/.Sent/tmp", "box/.Sent/new"}) makeFolder(name);
  makeFile("box/tmp/4");
  EXPECT_THAT(walk(), ElementsAre("box/.Sent/cur/3:2,", "box/cur/1:2,S", "box/new/2"));
}

TEST_F(FolderWalkTest, LinksInsideAreNotFollowed) {
  makeFile("in/a.eml");
  makeFile("out/b.eml");
  std::filesystem::create_symlink(path("out"), _folder / "in/folder");
  std::filesystem::create_symlink(path("in"), _folder / "in/circle");
  std::filesystem::create_symlink(path("out/b.eml"), _folder / "in/b.eml");
  std::filesystem::create_symlink("nowhere", _folder / "in/c.eml");
  EXPECT_THAT(walk("in"), ElementsAre("in/a.eml"));
}

TEST_F(FolderWalkTest, ASecondNameOfAFileIsAFile) {
  makeFile("a.eml");
  std::filesystem::create_hard_link(_folder / "a.eml", _folder / "b.eml");
  EXPECT_THAT(walk(), ElementsAre("a.eml", "b.eml"));
}

TEST_F(FolderWalkTest, ARootMayBeAFileOfAnyName) {
  makeFile("letter.txt");
  EXPECT_THAT(walk("letter.txt"), ElementsAre("letter.txt"));
}

TEST_F(FolderWalkTest, ARootThatWasSeenIsThereWhenTheWalkOfItsFolderGivesIt) {
  constexpr auto kSeen = FolderWalk::Root::Seen;
  for (auto name : {"a.eml", "b.txt", ".c.eml", "in/d.eml", "box/cur/1", "box/new/2"})
    makeFile(name);
  std::filesystem::create_symlink(path("a.eml"), path("link.eml"));
  std::filesystem::create_directory_symlink(path("in"), path("linked"));
  EXPECT_THAT(walk("a.eml", kSeen), ElementsAre("a.eml"));
  EXPECT_THAT(walk("box/cur/1", kSeen), ElementsAre("box/cur/1"));
  EXPECT_THAT(walk("in", kSeen), ElementsAre("in/d.eml"));
  for (auto name :
       {"b.txt", ".c.eml", "gone.eml", "gone/x.eml", "a.eml/x.eml", "link.eml", "linked"})
    EXPECT_THAT(walk(name, kSeen), testing::IsEmpty()) << name;
}

TEST_F(FolderWalkTest, WhatCannotBeReadStandsInTheOrderToo) {
  for (auto name : {"a.eml", "b/x.eml", "b-.eml", "c.eml"}) makeFile(name);
  FakeFolders folders;
  folders.fail(path("b"), EACCES);
  EXPECT_THAT(walk(), ElementsAre("a.eml", "b-.eml", "13 b", "c.eml"));
  EXPECT_THAT(walk("missing"), ElementsAre("2 missing"));
}

TEST_F(FolderWalkTest, AFolderThatVanishesIsNoFailure) {
  for (auto name : {"a/x.eml", "b/x.eml", "c/x.eml", "d.eml"}) makeFile(name);
  FakeFolders folders;
  folders.fail(path("a"), ENOENT);
  folders.fail(path("b"), ENOTDIR);
  folders.fail(path("c"), ELOOP);
  EXPECT_THAT(walk(), ElementsAre("d.eml"));
}

TEST_F(FolderWalkTest, TheStateIsThatOfTheFileAndTheDeviceThatOfItsFolder) {
  makeFile("a.eml");
  struct stat status, folder;
  ASSERT_EQ(::stat(path("a.eml").c_str(), &status), 0);
  ASSERT_EQ(::stat(_folder.path().c_str(), &folder), 0);
  for (auto root : {_folder.path().string(), path("a.eml")}) {
    const auto state = FolderWalk(root).next()->state;
    EXPECT_EQ(state.device, folder.st_dev);
    EXPECT_EQ(state.inode, status.st_ino);
    EXPECT_EQ(state.size, 1u);
    EXPECT_EQ(state.modified, status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec);
    EXPECT_EQ(state.changed, status.st_ctim.tv_sec * 1'000'000'000 + status.st_ctim.tv_nsec);
  }
}

TEST_F(FolderWalkTest, DeepFoldersAreWalkedUntilPathsAreTooLong) {
  std::string name = "a.eml";
  for (int i = 0; i < 500; ++i) name.insert(0, "d/");
  makeFile(name);
  EXPECT_THAT(walk(), ElementsAre(name));
}

TEST(FolderWalk, InsideIsBelowAndNotBeside) {
  EXPECT_TRUE(isInside("/a/b", "/a"));
  EXPECT_TRUE(isInside("/a/b/c", "/a"));
  EXPECT_TRUE(isInside("/a", "/"));
  EXPECT_FALSE(isInside("/a", "/a"));
  EXPECT_FALSE(isInside("/ab", "/a"));
  EXPECT_FALSE(isInside("/a-/b", "/a"));
}

}  // namespace
}  // namespace kbx
