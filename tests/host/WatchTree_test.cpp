#include "host/watch/WatchTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kbx {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

constexpr int kNone = WatchTree::kNone;

/// /mail (1) with a (2), in which lie b (3) and c (4); b holds d (5).
class WatchTreeTest : public testing::Test {
 protected:
  WatchTreeTest() {
    _tree.hang(1, kNone, "/mail");
    _tree.hang(2, 1, "a");
    _tree.hang(3, 2, "b");
    _tree.hang(4, 2, "c");
    _tree.hang(5, 3, "d");
  }

  WatchTree _tree;
};

TEST_F(WatchTreeTest, AFolderHasThePathOfThoseAroundIt) {
  EXPECT_EQ(_tree.pathOf(1), "/mail");
  EXPECT_EQ(_tree.pathOf(5), "/mail/a/b/d");
  EXPECT_TRUE(_tree.isRoot(1));
  EXPECT_FALSE(_tree.isRoot(2));
}

TEST_F(WatchTreeTest, TheRootOfTheDiskAddsNoSlash) {
  _tree.hang(6, kNone, "/");
  _tree.hang(7, 6, "x");
  EXPECT_EQ(_tree.pathOf(7), "/x");
}

TEST_F(WatchTreeTest, NamesLeadToAFolder) {
  EXPECT_EQ(_tree.childOf(2, "c"), 4);
  EXPECT_EQ(_tree.childOf(2, "d"), kNone);
  EXPECT_EQ(_tree.descendantOf(1, "a/b/d"), 5);
  EXPECT_EQ(_tree.descendantOf(1, "a/x/d"), kNone);
  EXPECT_EQ(_tree.descendantOf(1, ""), 1);
}

TEST_F(WatchTreeTest, AMoveTakesAllThatLiesInTheFolder) {
  _tree.unhang(3);
  EXPECT_TRUE(_tree.isRoot(3));
  EXPECT_EQ(_tree.pathOf(5), "/mail/a/b/d");
  EXPECT_EQ(_tree.childOf(2, "b"), kNone);
  _tree.hang(3, 4, "e");
  EXPECT_EQ(_tree.pathOf(5), "/mail/a/c/e/d");
}

TEST_F(WatchTreeTest, WhatIsRemovedGoesWithAllThatLiesInIt) {
  EXPECT_THAT(_tree.remove(2), UnorderedElementsAre(2, 3, 4, 5));
  EXPECT_EQ(_tree.size(), 1u);
  EXPECT_FALSE(_tree.contains(5));
  EXPECT_EQ(_tree.childOf(1, "a"), kNone);
  EXPECT_THAT(_tree.remove(1), ElementsAre(1));
}

}  // namespace
}  // namespace kbx
