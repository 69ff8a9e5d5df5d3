#include "host/index/IndexedFolders.h"

#include <gmock/gmock.h>

#include "platform/objects/NSDictionary.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

using testing::ElementsAre;

class IndexedFoldersTest : public testing::Test {
 protected:
  std::vector<std::string> folders() { return indexedPlaces(_store->database(), &_error).value(); }
  std::optional<std::int64_t> indexed(std::size_t index) {
    return indexedFolders(_store->database(), &_error).value().at(index).indexed;
  }

  TemporaryFolder _folder;
  Ref<NSError> _error;
  std::unique_ptr<StoreWriter> _store = StoreWriter::open((_folder / "mail.db").string(), &_error);
};

TEST_F(IndexedFoldersTest, OnlyOutermostFoldersAreRemembered) {
  ASSERT_TRUE(rememberFolders(*_store, {"/b", "/a/in", "/a-"}, &_error));
  EXPECT_THAT(folders(), ElementsAre("/a-", "/a/in", "/b"));
  ASSERT_TRUE(rememberFolders(*_store, {"/b/in"}, &_error));
  EXPECT_THAT(folders(), ElementsAre("/a-", "/a/in", "/b"));
  ASSERT_TRUE(rememberFolders(*_store, {"/a"}, &_error));
  EXPECT_THAT(folders(), ElementsAre("/a", "/a-", "/b"));
  ASSERT_TRUE(rememberFolders(*_store, {"/"}, &_error));
  EXPECT_THAT(folders(), ElementsAre("/"));
}

TEST_F(IndexedFoldersTest, ForgettingRemovesTheFolderWithAllBelowIt) {
  ASSERT_TRUE(rememberFolders(*_store, {"/a", "/b/in", "/ab"}, &_error));
  const auto message = NSDictionary::dictionary();
  for (auto path : {"/a/1.eml", "/a/in/2.eml", "/ab/3.eml", "/b/in/4.eml", "/b/5.eml", "/b"})
    ASSERT_TRUE(_store->put(path, {}, "", message, &_error));
  std::uint64_t count = 0;
  ASSERT_TRUE(forgetFolder(*_store, "/a", &count, &_error));
  EXPECT_EQ(count, 2u);
  EXPECT_THAT(folders(), ElementsAre("/ab", "/b/in"));
  ASSERT_TRUE(forgetFolder(*_store, "/b", &count, &_error));
  EXPECT_EQ(count, 3u);
  EXPECT_THAT(folders(), ElementsAre("/ab"));
  ASSERT_TRUE(forgetFolder(*_store, "/unknown", &count, &_error));
  EXPECT_EQ(count, 0u);
  EXPECT_TRUE(_store->idOfPath("/ab/3.eml", &_error));
}

TEST_F(IndexedFoldersTest, TheTimeIsNotedWithAChangeOrOnceAnHour) {
  ASSERT_TRUE(rememberFolders(*_store, {"/a", "/b"}, &_error));
  EXPECT_FALSE(indexed(0));
  constexpr std::int64_t kSecond = 1'000'000'000;
  ASSERT_TRUE(noteIndexed(*_store, {"/a"}, 10 * kSecond, false, &_error));
  EXPECT_EQ(indexed(0), 10 * kSecond);
  EXPECT_FALSE(indexed(1));
  ASSERT_TRUE(noteIndexed(*_store, {"/a"}, 20 * kSecond, false, &_error));
  EXPECT_EQ(indexed(0), 10 * kSecond);
  ASSERT_TRUE(noteIndexed(*_store, {"/a"}, 20 * kSecond, true, &_error));
  EXPECT_EQ(indexed(0), 20 * kSecond);
  ASSERT_TRUE(noteIndexed(*_store, {"/"}, 4000 * kSecond, false, &_error));
  EXPECT_EQ(indexed(0), 4000 * kSecond);
  EXPECT_EQ(indexed(1), 4000 * kSecond);
  ASSERT_TRUE(noteIndexed(*_store, {"/a/in"}, 9000 * kSecond, true, &_error));
  EXPECT_EQ(indexed(0), 4000 * kSecond);  // a part is not the whole
}

TEST_F(IndexedFoldersTest, TheKeyStaysAndIsTheStoresOwn) {
  const auto key = contentKey(*_store, &_error);
  ASSERT_TRUE(key);
  const auto again = contentKey(*_store, &_error);
  EXPECT_EQ(again->first, key->first);
  EXPECT_EQ(again->second, key->second);
  const auto other = StoreWriter::open((_folder / "other.db").string(), &_error);
  EXPECT_NE(contentKey(*other, &_error)->first, key->first);
}

TEST(Outermost, LeavesOutWhatLiesInsideAnother) {
  EXPECT_THAT(outermost({"/b", "/a/b", "/a", "/a", "/ab", "/a/b/c"}),
              ElementsAre("/a", "/ab", "/b"));
  EXPECT_THAT(outermost({"/a", "/"}), ElementsAre("/"));
  EXPECT_THAT(outermost({}), ElementsAre());
}

}  // namespace
}  // namespace kbx
