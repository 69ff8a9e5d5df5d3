#include "host/store/Database.h"

#include <gtest/gtest.h>

#include "host/store/StoreErrors.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

class DatabaseTest : public ::testing::Test {
 protected:
  std::string said() const { return error ? error->localizedDescription()->lossyUTF8() : ""; }

  TemporaryFolder folder;
  Ref<NSError> error;
};

TEST_F(DatabaseTest, NoCharacterOfAPathMeansAnything) {
  for (const char* name :
       {"a b", "100%", "what?mode=memory", "#1", "ünï\xFF", "%41", "a&b=c", ":memory:", "-x"}) {
    SCOPED_TRACE(name);
    const std::string path = (folder / name).string();
    auto database = Database::open(path, Database::Access::Creating, &error);
    ASSERT_TRUE(database) << said();
    EXPECT_TRUE(database->run("CREATE TABLE t (x)", &error)) << said();
    EXPECT_TRUE(std::filesystem::exists(path));
  }
}

TEST_F(DatabaseTest, OnlyCreatingMakesAFile) {
  const std::string path = (folder / "none").string();
  EXPECT_FALSE(Database::open(path, Database::Access::Writing, &error));
  EXPECT_FALSE(Database::open(path, Database::Access::Reading, &error));
  EXPECT_EQ(error->code(), StoreUnreadableError);
  EXPECT_NE(said().find(path), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(DatabaseTest, ValuesComeBackAsTheyWereBound) {
  auto database = Database::open((folder / "db").string(), Database::Access::Creating, &error);
  Statement row(*database, "SELECT ?1, ?2, ?3, ?4, ?5, ?6, ?7");
  row.bind(1, -5).bind(2, 0.5).bind(3, "t\xC3\xA9xt").bindBytes(4, {"a\0b", 3}).bindNothing(5);
  row.bind(6, std::uint64_t{1} << 63).bind(7, std::string_view());
  ASSERT_EQ(row.step(&error), Statement::Step::Row);
  EXPECT_EQ(row.integer(0), -5);
  EXPECT_EQ(row.number(1), 0.5);
  EXPECT_EQ(row.text(2), "t\xC3\xA9xt");
  EXPECT_EQ(row.bytes(3), std::string_view("a\0b", 3));
  EXPECT_TRUE(row.isNothing(4));
  EXPECT_EQ(static_cast<std::uint64_t>(row.integer(5)), std::uint64_t{1} << 63);
  EXPECT_FALSE(row.isNothing(6));  // empty text is not NULL
  EXPECT_EQ(row.step(&error), Statement::Step::Done);
}

TEST_F(DatabaseTest, AStatementThatIsRefusedSaysWhy) {
  auto database = Database::open((folder / "db").string(), Database::Access::Creating, &error);
  Statement wrong(*database, "SELECT x FROM nowhere");
  EXPECT_TRUE(database->run("CREATE TABLE t (x)", nullptr));  // other statements change nothing
  EXPECT_EQ(wrong.step(&error), Statement::Step::Failed);
  EXPECT_NE(said().find("nowhere"), std::string::npos) << said();
  EXPECT_FALSE(wrong.run(nullptr));
}

}  // namespace
}  // namespace kbx
