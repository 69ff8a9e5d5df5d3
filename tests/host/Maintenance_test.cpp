#include "host/store/Maintenance.h"

#include <gtest/gtest.h>

#include "host/store/Store.h"
#include "host/store/StoreErrors.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

using Findings = std::vector<std::string>;

class MaintenanceTest : public ::testing::Test {
 protected:
  MaintenanceTest() {
    auto store = StoreWriter::open(path(), &error);
    for (int i = 0; i < 50; ++i) {
      const std::string number = std::to_string(i);
      Ref<NSDictionary> message = NSDictionary::dictionaryWithPairs(
          {{"kMDItemSubject"_ns, NSString::stringWithUTF8("Number " + number)},
           {"kMDItemTextContent"_ns,
            NSString::stringWithUTF8("e-mail of 東京都 to jane.doe@example.org, " + number)}});
      EXPECT_TRUE(store->put("/m/" + number + ".eml", {}, {}, message, &error));
    }
    EXPECT_TRUE(store->putFailure("/m/bad.eml", {}, "it is empty", &error));
    EXPECT_TRUE(store->remove("/m/7.eml", &error));
  }

  std::string path() const { return (folder / "mail.db").string(); }
  Findings findings() {
    auto found = checkStore(path(), &error);
    EXPECT_TRUE(found) << error->localizedDescription()->lossyUTF8();
    return found.value_or(Findings{"not checked"});
  }
  /// Changes the store behind its back.
  void change(const std::string& sql) {
    auto store = StoreWriter::open(path(), &error);
    ASSERT_TRUE(store->database().run(sql, &error)) << error->localizedDescription()->lossyUTF8();
  }

  TemporaryFolder folder;
  Ref<NSError> error;
};

TEST_F(MaintenanceTest, TheStatusCountsMessagesAndFailures) {
  const auto status = statusOf(path(), &error);
  ASSERT_TRUE(status);
  EXPECT_EQ(status->messages, 49);
  EXPECT_EQ(status->failures, 1);
  EXPECT_EQ(status->version, 2);
  EXPECT_EQ(status->size, std::filesystem::file_size(path()));
  EXPECT_GT(status->lastChange, 1.7e9);
}

TEST_F(MaintenanceTest, ASoundStoreHasNoFindings) { EXPECT_EQ(findings(), Findings()); }

TEST_F(MaintenanceTest, WordsThatTheIndexLacksAreFound) {
  change("UPDATE message SET body = body || ' more' WHERE id = 3");
  EXPECT_EQ(findings(), Findings{"the index has other words than message 3"});
}

TEST_F(MaintenanceTest, AMessageThatTheIndexLacksIsFound) {
  change(
      "INSERT INTO word (word, rowid, subject, body, file)"
      " SELECT 'delete', id, subject, body, file FROM message WHERE id = 5");
  EXPECT_EQ(findings(), Findings{"the index has other words than message 5"});
}

TEST_F(MaintenanceTest, WordsOfMissingMessagesAreFound) {
  change("DELETE FROM message WHERE id = 4; DELETE FROM file WHERE id = 4");
  EXPECT_EQ(findings(), Findings{"the index has words of a missing message 4"});
}

TEST_F(MaintenanceTest, FilesAndMessagesBelongTogether) {
  change(
      "DELETE FROM file WHERE id = 2; UPDATE file SET failure = 'x' WHERE id = 3;"
      "UPDATE file SET failure = NULL WHERE path = CAST('/m/bad.eml' AS BLOB)");
  EXPECT_EQ(findings(),
            (Findings{"message 2 belongs to no file", "file 51 has neither a message nor a failure",
                      "file 3 has both a message and a failure"}));
}

TEST_F(MaintenanceTest, WordsAtOtherPlacesAreFound) {
  // In the index as the words of the same message, but in another order or in another text.
  change(
      "INSERT INTO word (word, rowid, subject, body, file)"
      " SELECT 'delete', id, subject, body, file FROM message WHERE id IN (3, 5);"
      "INSERT INTO word (rowid, subject, body, file)"
      " SELECT id, '3 Number', body, file FROM message WHERE id = 3;"
      "INSERT INTO word (rowid, sender, body, file)"
      " SELECT id, subject, body, file FROM message WHERE id = 5");
  EXPECT_EQ(findings(), (Findings{"the index has other words than message 3",
                                  "the index has other words than message 5"}));
}

TEST_F(MaintenanceTest, ACheckTellsHowFarItIs) {
  std::vector<std::uint64_t> stretches;
  std::uint64_t steps = 0;
  const CheckProgress progress{.begins = [&](std::uint64_t count) { stretches.push_back(count); },
                               .advances = [&](std::uint64_t count) { steps += count; }};
  EXPECT_EQ(checkStore(path(), &error, progress), Findings());
  ASSERT_EQ(stretches.size(), 2u);
  EXPECT_EQ(stretches[0], 49u) << "messages";
  EXPECT_GT(stretches[1], 49u * 8) << "words";
  EXPECT_GE(steps, 49u);
  EXPECT_LE(steps, 49u + stretches[1]);
}

TEST_F(MaintenanceTest, DamagedPagesAreFound) {
  std::fstream file(path(), std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(3 * 8192);
  file << std::string(2 * 8192, '\xA5');
  file.close();
  const Findings found = findings();
  EXPECT_FALSE(found.empty());
}

TEST_F(MaintenanceTest, CheckingDisturbsNoWriter) {
  auto store = StoreWriter::open(path(), &error);
  ASSERT_TRUE(store->begin(&error));
  ASSERT_TRUE(store->remove("/m/1.eml", &error));
  EXPECT_EQ(findings(), Findings());
  EXPECT_TRUE(store->commit(&error));
  EXPECT_EQ(findings(), Findings());
}

TEST_F(MaintenanceTest, OptimizingKeepsEverythingAndTakesLessSpace) {
  change(
      "INSERT INTO file (path, device, inode, size, modified, changed, failure)"
      " VALUES (CAST('/big' AS BLOB), 0, 0, 0, 0, 0, randomblob(3000000))");
  auto store = StoreWriter::open(path(), &error);
  ASSERT_TRUE(store->remove("/big", &error));
  store.reset();
  const auto before = statusOf(path(), &error)->size;
  ASSERT_TRUE(optimizeStore(path(), &error)) << error->localizedDescription()->lossyUTF8();
  const auto after = statusOf(path(), &error);
  EXPECT_LT(after->size, before - 2'000'000);
  EXPECT_EQ(after->messages, 49);
  EXPECT_EQ(findings(), Findings());
}

TEST_F(MaintenanceTest, OptimizingWaitsForNoOtherWriter) {
  auto store = StoreWriter::open(path(), &error);
  EXPECT_FALSE(optimizeStore(path(), &error));
  EXPECT_EQ(error->code(), StoreBusyError);
}

}  // namespace
}  // namespace kbx
