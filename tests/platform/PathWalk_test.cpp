#include "platform/files/PathWalk.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "tests/support/FakeFiles.h"

namespace kbx {
namespace {

class PathWalkTest : public testing::Test {
 protected:
  PathWalkTest() {
    for (const char* path : {"/a", "/a/b", "/a/b/c", "/a/bc"}) files.folder(path);
    files.file("/a/b/f");
    files.link("/link", "a/b");
    files.link("/loop", "loop");
  }
  /// What the walk passed is what the names of its path are.
  void expectPassed(const PathWalk& walk, const std::vector<std::string>& paths) {
    ASSERT_EQ(walk.failure(), 0);
    ASSERT_EQ(walk.passed().size(), paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i) {
      FileStatus status;
      ASSERT_EQ(files.statusOfLink(paths[i], &status), 0);
      EXPECT_TRUE(walk.passed()[i].isSameFile(status)) << paths[i];
    }
  }

  FakeFiles files;
};

TEST_F(PathWalkTest, WhatLiesOnTheWayIsKept) {
  PathWalk plain, linked, up, root;
  EXPECT_TRUE(plain.follow("/a//b/./f"));
  expectPassed(plain, {"/", "/a", "/a/b", "/a/b/f"});
  EXPECT_TRUE(linked.follow("/link/f"));
  expectPassed(linked, {"/", "/a", "/a/b", "/a/b/f"});
  EXPECT_TRUE(up.follow("/link/../../a/bc"));
  expectPassed(up, {"/", "/a", "/a/bc"});
  EXPECT_TRUE(root.follow("/.."));
  expectPassed(root, {"/"});
}

TEST_F(PathWalkTest, AFailureIsThatOfTheFirstNameThatIsMissing) {
  PathWalk missing, file, left, loop;
  EXPECT_TRUE(missing.follow("/a/none/x"));
  EXPECT_EQ(missing.failure(), -ENOENT);
  EXPECT_EQ(missing.path(), "/a/none/x");
  EXPECT_TRUE(file.follow("/a/b/f/x"));
  EXPECT_EQ(file.failure(), -ENOTDIR);
  EXPECT_TRUE(left.follow("/a/none/x/../../b"));
  expectPassed(left, {"/", "/a", "/a/b"});
  EXPECT_FALSE(loop.follow("/loop/x"));
}

TEST_F(PathWalkTest, ALinkThatVanishesMeanwhileIsMissing) {
  int asked = 0;
  files.beforeQuestion = [&](const std::string& path) {
    if (path == "/link" && ++asked == 2) files.vanish(path);
  };
  PathWalk walk;
  EXPECT_TRUE(walk.follow("/link/f"));
  EXPECT_EQ(walk.failure(), -ENOENT);
  EXPECT_EQ(walk.path(), "/link/f");
}

TEST_F(PathWalkTest, WhatTwoPathsHaveInCommonIsLookedAtOnce) {
  PathWalk first;
  ASSERT_TRUE(first.follow("/a/b"));
  struct Case {
    const char* path;
    int questions;
    std::vector<std::string> passed;
  };
  for (const auto& [path, questions, passed] : {Case{"/a/b", 0, {"/", "/a", "/a/b"}},
                                                {"/a/b/c", 1, {"/", "/a", "/a/b", "/a/b/c"}},
                                                {"/a/bc", 1, {"/", "/a", "/a/bc"}},
                                                {"/a", 0, {"/", "/a"}},
                                                {"/", 0, {"/"}},
                                                {"/a/b/../bc", 1, {"/", "/a", "/a/bc"}}}) {
    SCOPED_TRACE(path);
    PathWalk second;
    files.questions = 0;
    EXPECT_TRUE(second.followBeside(first, path));
    EXPECT_EQ(files.questions, questions);
    expectPassed(second, passed);
  }
}

TEST_F(PathWalkTest, NothingIsTakenOverFromAWayWithLinksOrFailures) {
  for (const char* path : {"/link", "/a/none"}) {
    PathWalk first, second;
    ASSERT_TRUE(first.follow(path));
    EXPECT_TRUE(second.followBeside(first, "/a/b"));
    expectPassed(second, {"/", "/a", "/a/b"});
  }
}

}  // namespace
}  // namespace kbx
