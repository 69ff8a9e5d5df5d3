#include <gmock/gmock.h>

#include "tests/host/IndexRunFixture.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST_F(IndexRunTest, RenamedFilesAndFoldersAreFollowedWithoutImporting) {
  write("a.eml", "one");
  write("in/b.eml", "two");
  write("in/deep/c.eml", "three");
  index();
  const auto id = idOf("in/deep/c.eml");
  rename("a.eml", "z.eml");
  rename("in", "out");
  EXPECT_THAT(index(), UnorderedElementsAre("moved a.eml z.eml", "moved in/b.eml out/b.eml",
                                            "moved in/deep/c.eml out/deep/c.eml"));
  EXPECT_EQ(imports, 0);
  EXPECT_EQ(counts.moved, 3u);
  EXPECT_EQ(idOf("out/deep/c.eml"), id);
  EXPECT_THAT(messages(), ElementsAre("out/b.eml=two", "out/deep/c.eml=three", "z.eml=one"));
  EXPECT_THAT(index(), IsEmpty());
}

TEST_F(IndexRunTest, TheStateOfAMessageInAMaildirFollowsItsName) {
  for (auto folder : {"cur", "new", "tmp"}) fs::create_directory(mail() / folder);
  write("new/1.host", "one");
  write("cur/2.host:2,RS", "two");
  write("plain.eml", "three");
  index();
  EXPECT_THAT(states(), ElementsAre("cur/2.host:2,RS read replied", "new/1.host unread",
                                    "plain.eml unknown"));
  rename("new/1.host", "cur/1.host:2,");
  EXPECT_THAT(index(), ElementsAre("moved new/1.host cur/1.host:2,"));
  EXPECT_THAT(states(), testing::Contains("cur/1.host:2, unread"));
  rename("cur/1.host:2,", "cur/1.host:2,FS");
  rename("cur/2.host:2,RS", "cur/2.host:2,R");
  index();
  EXPECT_EQ(counts.moved, 2u);
  EXPECT_EQ(imports, 0);
  EXPECT_THAT(states(), ElementsAre("cur/1.host:2,FS read flagged", "cur/2.host:2,R unread replied",
                                    "plain.eml unknown"));
}

TEST_F(IndexRunTest, AMessageThatLeavesItsMaildirStaysWhatItWas) {
  for (auto folder : {"cur", "new", "tmp"}) fs::create_directory(mail() / folder);
  write("cur/1.host:2,S", "one");
  index();
  rename("cur/1.host:2,S", "archive/1.eml");
  index();
  EXPECT_EQ(imports, 0);
  EXPECT_THAT(states(), ElementsAre("archive/1.eml read"));
}

TEST_F(IndexRunTest, WhatAnImporterSaysOfAStateHoldsOutsideOfMaildirs) {
  saysRead = true;
  for (auto folder : {"box/cur", "box/new"}) fs::create_directories(mail() / folder);
  write("a.emlx", "one");
  write("box/new/b.emlx", "two");
  write("box/new/c.host", "three");
  index();
  EXPECT_THAT(states(), ElementsAre("a.emlx read", "box/new/b.emlx read", "box/new/c.host unread"));
}

TEST_F(IndexRunTest, AFileMovedAcrossVolumesIsKnownByItsContent) {
  write("a.eml", "one");
  index();
  write("b.eml", "one");  // another file with other times
  fs::remove(mail() / "a.eml");
  EXPECT_THAT(index(), ElementsAre("moved a.eml b.eml"));
  EXPECT_EQ(imports, 0);
}

TEST_F(IndexRunTest, ARenameOntoAnotherFileTakesItsPlace) {
  write("a.eml", "one");
  write("b.eml", "two");
  index();
  rename("b.eml", "a.eml");
  EXPECT_THAT(index(), ElementsAre("moved b.eml a.eml"));
  EXPECT_THAT(messages(), ElementsAre("a.eml=two"));
  EXPECT_EQ(imports, 0);
}

TEST_F(IndexRunTest, AFileThatIsReadInAnotherWayUnderItsNewNameIsImported) {
  write("a.emlx", "one");
  index();
  rename("a.emlx", "a.eml");
  EXPECT_THAT(index(), ElementsAre("added a.eml", "removed a.emlx"));
  EXPECT_EQ(imports, 1);
}

TEST_F(IndexRunTest, ARenamedFileThatWasChangedTooIsImported) {
  write("a.eml", "one");
  index();
  rename("a.eml", "b.eml");
  keepingTimes("b.eml", [&] { write("b.eml", "two"); });
  EXPECT_THAT(index(), ElementsAre("added b.eml", "removed a.eml"));
  EXPECT_THAT(messages(), ElementsAre("b.eml=two"));
}

TEST_F(IndexRunTest, MovesBetweenTwoRootsAreFollowed) {
  write("a/1.eml", "one");
  write("b/2.eml", "two");
  const std::vector<std::string> roots{path("a"), path("b")};
  index(roots);
  rename("b/2.eml", "a/2.eml");
  EXPECT_THAT(index(roots), ElementsAre("moved b/2.eml a/2.eml"));
}

}  // namespace
}  // namespace kbx
