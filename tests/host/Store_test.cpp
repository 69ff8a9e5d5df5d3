#include "host/store/Store.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "host/store/Maintenance.h"
#include "host/store/StoreErrors.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

Ref<NSString> text(std::string_view utf8) { return NSString::stringWithUTF8(utf8); }

Ref<NSDictionary> message(std::string_view subject, std::string_view body) {
  return NSDictionary::dictionaryWithPairs(
      {{"kMDItemSubject"_ns, text(subject)}, {"kMDItemTextContent"_ns, text(body)}});
}

class StoreTest : public ::testing::Test {
 protected:
  std::string path() const { return (folder / "data" / "mail.db").string(); }

  std::unique_ptr<StoreWriter> writer() {
    auto opened = StoreWriter::open(path(), &error);
    EXPECT_TRUE(opened) << said();
    return opened;
  }
  std::unique_ptr<StoreReader> reader() {
    auto opened = StoreReader::open(path(), &error);
    EXPECT_TRUE(opened) << said();
    return opened;
  }
  std::string said() const { return error ? error->localizedDescription()->lossyUTF8() : ""; }

  /// The paths of the messages that the words find, with a blank behind each.
  std::string found(StoreReader& store, std::string_view words) {
    Statement query(store.database(),
                    "SELECT path FROM word JOIN file ON file.id = word.rowid"
                    " WHERE word MATCH ?1 ORDER BY path");
    query.bind(1, words);
    std::string paths;
    while (query.step(&error) == Statement::Step::Row) paths.append(query.bytes(0)).append(" ");
    return paths;
  }

  TemporaryFolder folder;
  Ref<NSError> error;
};

TEST_F(StoreTest, AMessageIsFoundByItsWords) {
  auto store = writer();
  ASSERT_TRUE(store->put("/m/a.eml", {}, {}, message("Lunch", "at noon"), &error)) << said();
  ASSERT_TRUE(store->put("/m/b.eml", {}, {}, message("Dinner", "at seven"), &error)) << said();
  EXPECT_EQ(found(*store, "noon"), "/m/a.eml ");
  EXPECT_EQ(found(*store, "at"), "/m/a.eml /m/b.eml ");
  EXPECT_EQ(found(*store, "subject:dinner"), "/m/b.eml ");
  EXPECT_EQ(found(*store, "file:b"), "/m/b.eml ");
  EXPECT_EQ(found(*store, "subject:seven"), "");
}

TEST_F(StoreTest, AttributesComeBackAsTheyWereImported) {
  Ref<NSMutableDictionary> attributes = message("Ünïcode", "Body\n日本").get()->mutableCopy();
  attributes->setObjectForKey(NSDate::dateWithTimeIntervalSince1970(1e9),
                              "com_apple_mail_dateSent"_ns);
  attributes->setObjectForKey(NSNumber::numberWithBool(true), "com_apple_mail_read"_ns);
  attributes->setObjectForKey(NSArray::arrayWithObjects({"a"_ns, "b"_ns}), "kMDItemKeywords"_ns);
  auto store = writer();
  ASSERT_TRUE(store->put("/m/a.eml", {}, {}, attributes, &error)) << said();
  const auto id = reader()->idOfPath("/m/a.eml", &error);
  ASSERT_TRUE(id);
  EXPECT_TRUE(isEqual(reader()->attributesOf(*id, &error), attributes));
  EXPECT_FALSE(reader()->attributesOf(*id + 1, &error));
  EXPECT_FALSE(reader()->idOfPath("/m/b.eml", &error));
}

TEST_F(StoreTest, PuttingAPathAgainReplacesItsMessage) {
  auto store = writer();
  store->put("/m/a.eml", {}, {}, message("Old", "ancient words"), &error);
  const auto id = store->idOfPath("/m/a.eml", &error);
  ASSERT_TRUE(store->put("/m/a.eml", {}, {}, message("New", "fresh words"), &error)) << said();
  EXPECT_EQ(store->idOfPath("/m/a.eml", &error), id);
  EXPECT_EQ(found(*store, "ancient"), "");
  EXPECT_EQ(found(*store, "fresh"), "/m/a.eml ");
}

TEST_F(StoreTest, AFailureTakesThePlaceOfTheMessage) {
  auto store = writer();
  store->put("/m/a.eml", {}, "hash", message("Old", "words"), &error);
  ASSERT_TRUE(store->putFailure("/m/a.eml", {1, 2, 3, 4, 5}, "no header", &error)) << said();
  EXPECT_EQ(found(*store, "words"), "");
  int count = 0;
  EXPECT_TRUE(store->eachFileBelow(
      "/m",
      [&](const StoredFile& file) {
        ++count;
        EXPECT_EQ(file.path, "/m/a.eml");
        EXPECT_EQ(file.state, (FileState{1, 2, 3, 4, 5}));
        EXPECT_EQ(file.failure, "no header");
        EXPECT_FALSE(file.hash);
        return true;
      },
      &error));
  EXPECT_EQ(count, 1);
}

TEST_F(StoreTest, AMovedMessageKeepsItsIdAndIsFoundByItsNewName) {
  auto store = writer();
  store->put("/m/old.eml", {}, {}, message("S", "words"), &error);
  store->put("/m/new.eml", {}, {}, message("S", "overwritten"), &error);
  const auto id = store->idOfPath("/m/old.eml", &error);
  ASSERT_TRUE(store->move("/m/old.eml", "/m/new.eml", {}, &error)) << said();
  EXPECT_EQ(store->idOfPath("/m/new.eml", &error), id);
  EXPECT_FALSE(store->idOfPath("/m/old.eml", &error));
  EXPECT_EQ(found(*store, "file:new"), "/m/new.eml ");
  EXPECT_EQ(found(*store, "file:old"), "");
  EXPECT_EQ(found(*store, "words"), "/m/new.eml ");
  EXPECT_EQ(found(*store, "overwritten"), "");
}

TEST_F(StoreTest, StatesChangeInTheColumnsAndInTheAttributes) {
  auto store = writer();
  const auto yes = NSNumber::numberWithBool(true), no = NSNumber::numberWithBool(false);
  Ref<NSMutableDictionary> attributes = message("S", "words").get()->mutableCopy();
  attributes->setObjectForKey(no, "com_apple_mail_read"_ns);
  ASSERT_TRUE(store->put("/m/a.eml", {}, "hash", attributes, &error)) << said();
  const auto states = NSDictionary::dictionaryWithPairs(
      {{"com_apple_mail_read"_ns, yes}, {"com_apple_mail_flagged"_ns, no}});
  ASSERT_TRUE(store->changeStates("/m/a.eml", states, &error)) << said();
  attributes->addEntriesFromDictionary(states);
  const auto id = store->idOfPath("/m/a.eml", &error);
  EXPECT_TRUE(isEqual(store->attributesOf(*id, &error), attributes));
  const auto flag = [&](const std::string& column) {
    return store->database().integer("SELECT ifnull(" + column + ", 7) FROM message", &error);
  };
  EXPECT_EQ(flag("is_read"), 1);
  EXPECT_EQ(flag("is_flagged"), 0);
  EXPECT_EQ(flag("is_replied"), 7);
  EXPECT_EQ(found(*store, "words"), "/m/a.eml ");
  EXPECT_EQ(checkStore(store->path(), &error), std::vector<std::string>());
}

TEST_F(StoreTest, StatesOfWhatIsNoMessageAreNotKept) {
  auto store = writer();
  ASSERT_TRUE(store->putFailure("/m/a.eml", {}, "no header", &error)) << said();
  const auto states = NSDictionary::dictionaryWithPairs(
      {{"com_apple_mail_read"_ns, NSNumber::numberWithBool(true)}});
  EXPECT_TRUE(store->changeStates("/m/a.eml", states, &error)) << said();
  EXPECT_TRUE(store->changeStates("/m/unknown.eml", states, &error)) << said();
  EXPECT_EQ(store->database().integer("SELECT count(*) FROM message", &error), 0);
}

TEST_F(StoreTest, ARemovedMessageIsFoundNoMore) {
  auto store = writer();
  store->put("/m/a.eml", {}, {}, message("S", "words"), &error);
  ASSERT_TRUE(store->remove("/m/a.eml", &error)) << said();
  EXPECT_TRUE(store->remove("/m/a.eml", &error));
  EXPECT_EQ(found(*store, "words"), "");
  EXPECT_FALSE(store->idOfPath("/m/a.eml", &error));
}

TEST_F(StoreTest, FilesBelowAFolderComeInTheOrderOfTheirPaths) {
  auto store = writer();
  for (const char* path : {"/m/b", "/m.d/x", "/m/a/z", "/m", "/m0", "/m/a"})
    store->putFailure(path, {}, "none", &error);
  const auto below = [&](std::string_view place) {
    std::string paths;
    store->eachFileBelow(
        place, [&](const StoredFile& file) { return paths.append(file.path).append(" "), true; },
        &error);
    return paths;
  };
  EXPECT_EQ(below("/m"), "/m/a /m/a/z /m/b ");
  EXPECT_EQ(below("/m/"), "/m/a /m/a/z /m/b ");
  EXPECT_EQ(below("/"), "/m /m.d/x /m/a /m/a/z /m/b /m0 ");
}

TEST_F(StoreTest, OneWriterAtATime) {
  auto store = writer();
  EXPECT_FALSE(StoreWriter::open(path(), &error));
  EXPECT_EQ(error->code(), StoreBusyError);
  store.reset();
  EXPECT_TRUE(StoreWriter::open(path(), &error));
}

TEST_F(StoreTest, ReadersSeeWhatWasCommittedAndDoNotWait) {
  auto store = writer();
  ASSERT_TRUE(store->begin(&error));
  store->put("/m/a.eml", {}, {}, message("S", "words"), &error);
  auto other = reader();
  EXPECT_EQ(found(*other, "words"), "");
  ASSERT_TRUE(store->commit(&error));
  EXPECT_EQ(found(*other, "words"), "/m/a.eml ");
}

TEST_F(StoreTest, WhatIsRolledBackWasNeverThere) {
  auto store = writer();
  ASSERT_TRUE(store->begin(&error));
  store->put("/m/a.eml", {}, {}, message("S", "words"), &error);
  store->rollback();
  EXPECT_EQ(found(*store, "words"), "");
  EXPECT_FALSE(store->commit(&error));
}

TEST_F(StoreTest, TheStoreIsItsUsersAlone) {
  auto store = writer();
  ASSERT_TRUE(store->begin(&error));
  using std::filesystem::perms;
  constexpr perms others = perms::group_all | perms::others_all;
  for (const auto& entry : std::filesystem::directory_iterator(folder / "data"))
    EXPECT_EQ(entry.status().permissions() & others, perms::none) << entry.path();
  EXPECT_EQ(std::filesystem::status(folder / "data").permissions(), perms::owner_all);
}

TEST_F(StoreTest, WithoutAnswersOfTheEnvironmentThereIsNoDefaultPlace) {
  const auto place = [](std::vector<std::string> variables) {
    FakeEnvironment environment(std::move(variables));
    ScopedService<Environment> installed(environment);
    return defaultStorePath();
  };
  EXPECT_EQ(place({"HOME=/home/me"}), "/home/me/.local/share/ferncase/mail.db");
  EXPECT_EQ(place({"HOME=/home/me", "XDG_DATA_HOME=/data"}), "/data/ferncase/mail.db");
  EXPECT_EQ(place({"HOME=/home/me", "XDG_DATA_HOME=data"}),
            "/home/me/.local/share/ferncase/mail.db");
  EXPECT_EQ(place({"HOMER=/home/me"}), std::nullopt);
}

TEST_F(StoreTest, AMissingStoreIsNamed) {
  EXPECT_FALSE(StoreReader::open(path(), &error));
  EXPECT_EQ(error->code(), StoreMissingError);
  EXPECT_NE(said().find(path()), std::string::npos);
}

}  // namespace
}  // namespace kbx
