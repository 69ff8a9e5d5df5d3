#include "host/index/GoneFiles.h"

#include <gtest/gtest.h>

#include <tuple>

namespace kbx {
namespace {

KnownFile known(std::string path, const FileState& state, std::optional<ContentHash> hash) {
  return {0, std::move(path), state, hash};
}

/// A question that must not be asked.
std::optional<ContentHash> unasked() {
  ADD_FAILURE() << "the content need not tell";
  return std::nullopt;
}

constexpr FileState kState{1, 10, 100, 5, 7};

TEST(GoneFiles, TheSameFileIsFoundWithoutReadingIt) {
  GoneFiles gone;
  gone.add(known("/a", kState, 1));
  const auto found = gone.take("/new", kState, unasked);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->path, "/a");
  EXPECT_TRUE(gone.isEmpty());
  EXPECT_FALSE(gone.take("/new", kState, unasked));
}

TEST(GoneFiles, AnotherChangeTimeLetsTheContentTell) {
  FileState renamed = kState;
  renamed.changed = 8;
  for (auto [hash, isFound] :
       {std::pair<std::optional<ContentHash>, bool>{1, true}, {2, false}, {std::nullopt, false}}) {
    GoneFiles gone;
    gone.add(known("/a", kState, 1));
    EXPECT_EQ(gone.take("/new", renamed, [hash = hash] { return hash; }).has_value(), isFound);
  }
}

TEST(GoneFiles, ContentIsReadOnlyWhereTheSizeFits) {
  GoneFiles gone;
  gone.add(known("/a", kState, 1));
  gone.add(known("/b", {1, 11, 200, 5, 7}, std::nullopt));
  EXPECT_FALSE(gone.take("/new", {1, 12, 101, 5, 7}, unasked));
  EXPECT_FALSE(gone.take("/new", {1, 12, 200, 5, 7}, unasked));  // its content is not known
}

TEST(GoneFiles, TheSameNumberOnAnotherDeviceIsAnotherFileUnlessAllElseIsTheSame) {
  GoneFiles gone;
  gone.add(known("/a", kState, 1));
  EXPECT_FALSE(gone.take("/new", {2, 10, 100, 6, 9}, [] { return std::optional<ContentHash>(3); }));
  EXPECT_TRUE(gone.take("/new", {2, 10, 100, 5, 7}, unasked));
}

TEST(GoneFiles, AnotherWayOfReadingMakesAnotherMessage) {
  for (auto [before, after, isFound] : {std::tuple{"/a.emlx", "/b.emlx", true},
                                        {"/a.emlx", "/b.EMLX", true},
                                        {"/a.eml", "/cur/1:2,S", true},
                                        {"/a.emlx", "/a.eml", false},
                                        {"/a.eml", "/a.emlx", false},
                                        {"/a.emlx", "/cur/a.emlx:2,S", false}}) {
    GoneFiles gone;
    gone.add(known(before, kState, 1));
    const auto found = gone.take(after, kState, [] { return std::optional<ContentHash>(1); });
    EXPECT_EQ(found.has_value(), isFound) << before << " " << after;
  }
}

TEST(GoneFiles, AFailureIsNothingThatMoves) {
  GoneFiles gone;
  KnownFile failed = known("/a", kState, std::nullopt);
  failed.hasFailed = true;
  gone.add(failed);
  EXPECT_FALSE(gone.take("/new", kState, unasked));
  EXPECT_FALSE(gone.isEmpty());
}

TEST(GoneFiles, EachIsTakenOnceAndTheOthersAreLeft) {
  GoneFiles gone;
  constexpr int kCount = 20'000;  // equal ones, so what costs a step for each pair shows
  for (int i = 0; i < kCount; ++i)
    gone.add(known("/" + std::to_string(i), {1, static_cast<std::uint64_t>(i), 100, 5, 7}, 1));
  for (int i = 0; i + 1 < kCount; ++i)
    ASSERT_TRUE(gone.take("/new", {1, 1, 100, 6, 8}, [] { return std::optional<ContentHash>(1); }));
  int left = 0;
  gone.each([&](const KnownFile&) { return ++left; });
  EXPECT_EQ(left, 1);
}

}  // namespace
}  // namespace kbx
