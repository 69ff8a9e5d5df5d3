#include "host/store/Schema.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "host/store/Store.h"
#include "host/store/StoreErrors.h"
#include "platform/objects/NSData.h"
#include "platform/propertylists/NSPropertyListSerialization.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

class SchemaTest : public ::testing::Test {
 protected:
  std::string path() const { return (folder / "mail.db").string(); }
  std::string said() const { return error ? error->localizedDescription()->lossyUTF8() : ""; }
  std::unique_ptr<Database> open() {
    return Database::open(path(), Database::Access::Creating, &error);
  }
  void change(const std::string& sql) { ASSERT_TRUE(open()->run(sql, &error)) << said(); }
  std::int64_t version() { return open()->integer("PRAGMA user_version", &error).value_or(-1); }

  TemporaryFolder folder;
  Ref<NSError> error;
};

constexpr Migration kSteps[] = {
    {kStoreVersion, "ALTER TABLE file ADD COLUMN first TEXT DEFAULT 'one'"},
    {kStoreVersion + 1,
     "UPDATE file SET first = first || ' two'; ALTER TABLE file RENAME COLUMN first TO both"}};

TEST_F(SchemaTest, AStoreIsMarkedAsOne) {
  StoreWriter::open(path(), &error);
  EXPECT_EQ(open()->integer("PRAGMA application_id", &error), kStoreApplication);
  EXPECT_EQ(version(), kStoreVersion);
}

TEST_F(SchemaTest, AnOlderStoreIsBroughtUpToDateStepByStep) {
  StoreWriter::open(path(), &error)->putFailure("/m/a", {}, "none", &error);
  ASSERT_TRUE(prepareStore(*open(), kSteps, kStoreVersion + 2, &error)) << said();
  EXPECT_EQ(version(), kStoreVersion + 2);
  EXPECT_EQ(open()->integer("SELECT both = 'one two' FROM file", &error), 1);
}

TEST_F(SchemaTest, AStepThatFailsLeavesTheVersionBeforeIt) {
  StoreWriter::open(path(), &error);
  constexpr Migration failing[] = {
      kSteps[0], {kStoreVersion + 1, "CREATE TABLE half (x); INSERT INTO nowhere VALUES (1)"}};
  EXPECT_FALSE(prepareStore(*open(), failing, kStoreVersion + 2, &error));
  EXPECT_NE(said().find("nowhere"), std::string::npos) << said();
  EXPECT_EQ(version(), kStoreVersion + 1);
  EXPECT_EQ(open()->integer("SELECT count(*) FROM sqlite_master WHERE name = 'half'", &error), 0);
  EXPECT_TRUE(prepareStore(*open(), kSteps, kStoreVersion + 2, &error))
      << said();  // the next run completes
}

TEST_F(SchemaTest, AStoreTooOldForTheStepsIsRefused) {
  StoreWriter::open(path(), &error);
  constexpr Migration later[] = {kSteps[1]};
  EXPECT_FALSE(prepareStore(*open(), later, kStoreVersion + 2, &error));
  EXPECT_EQ(error->code(), StoreOlderError);
}

TEST_F(SchemaTest, AStoreOfTheFirstVersionKeepsItsAttributesAndIsPutOutOfReachOfOlderPrograms) {
  const Ref<NSString> page = NSString::stringWithUTF8(std::string(10'000, 'x'));
  const Ref<NSDictionary> attributes =
      NSDictionary::dictionaryWithPairs({{"kMDItemHTMLContent"_ns, page}});
  StoreWriter::open(path(), &error)->put("/m/a", {}, {}, attributes, &error);
  const auto isPacked = [this] {
    return open()->integer("SELECT substr(attributes, 1, 6) <> CAST('bplist' AS BLOB) FROM message",
                           &error);
  };
  EXPECT_EQ(isPacked(), 1);
  {
    // As the first version wrote it.
    const auto list = NSPropertyListSerialization::dataWithPropertyList(
        attributes, NSPropertyListBinaryFormat_v1_0, 0, &error);
    const auto database = open();
    Statement plain(*database, "UPDATE message SET attributes = ?1");
    ASSERT_TRUE(plain.bindBytes(1, list->view()).run(&error));
  }
  change("PRAGMA user_version = 1");
  EXPECT_FALSE(StoreReader::open(path(), &error));
  EXPECT_EQ(error->code(), StoreOlderError);
  auto store = StoreWriter::open(path(), &error);
  ASSERT_TRUE(store) << said();
  EXPECT_EQ(version(), 2);
  EXPECT_EQ(isPacked(), 0);
  EXPECT_TRUE(isEqual(store->attributesOf(1, &error), attributes));
}

TEST_F(SchemaTest, ANewerStoreIsRefusedAndNotTouched) {
  StoreWriter::open(path(), &error);
  change("PRAGMA user_version = 99");
  EXPECT_FALSE(StoreReader::open(path(), &error));
  EXPECT_EQ(error->code(), StoreNewerError);
  EXPECT_FALSE(StoreWriter::open(path(), &error));
  EXPECT_EQ(error->code(), StoreNewerError);
  EXPECT_NE(said().find(path()), std::string::npos);
  EXPECT_EQ(version(), 99);
}

TEST_F(SchemaTest, AnotherDatabaseIsRefusedAndNotTouched) {
  change("CREATE TABLE file (name TEXT)");
  const std::string before = folder.read("mail.db");
  EXPECT_FALSE(StoreReader::open(path(), &error));
  EXPECT_EQ(error->code(), StoreForeignError);
  EXPECT_FALSE(StoreWriter::open(path(), &error));
  EXPECT_EQ(error->code(), StoreForeignError);
  EXPECT_TRUE(folder.read("mail.db") == before);
}

TEST_F(SchemaTest, AFileThatIsNoDatabaseIsRefusedAndNotTouched) {
  const std::string text(10000, 'x');
  folder.write("mail.db", text);
  EXPECT_FALSE(StoreReader::open(path(), &error));
  EXPECT_EQ(error->code(), StoreForeignError) << said();
  EXPECT_FALSE(StoreWriter::open(path(), &error));
  EXPECT_EQ(error->code(), StoreForeignError) << said();
  EXPECT_TRUE(folder.read("mail.db") == text);
}

TEST_F(SchemaTest, AnEmptyFileIsNoStoreToReadButMayBecomeOne) {
  folder.write("mail.db", "");
  EXPECT_FALSE(StoreReader::open(path(), &error));
  EXPECT_EQ(error->code(), StoreForeignError);
  EXPECT_TRUE(StoreWriter::open(path(), &error)) << said();
  EXPECT_TRUE(StoreReader::open(path(), &error)) << said();
}

}  // namespace
}  // namespace kbx
