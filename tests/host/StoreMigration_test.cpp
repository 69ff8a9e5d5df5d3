// The way from the oldest store to the present one, as the command goes it.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <thread>

#include "host/store/Maintenance.h"
#include "host/store/Schema.h"
#include "host/store/Store.h"
#include "platform/objects/NSDictionary.h"
#include "tests/support/FirstStore.h"
#include "tests/support/Kills.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

constexpr int kMessages = 300;

std::string pathOf(int number) { return "/m/" + std::to_string(number) + ".eml"; }

Ref<NSDictionary> message(int number) {
  std::string body = "unique" + std::to_string(number);
  for (int i = 0; i < 200; ++i) body += " word" + std::to_string(number * 7 + i);
  return NSDictionary::dictionaryWithPairs(
      {{"kMDItemSubject"_ns, NSString::stringWithUTF8("Number " + std::to_string(number))},
       {"kMDItemTextContent"_ns, NSString::stringWithUTF8(body)}});
}

class StoreMigrationTest : public testing::Test {
 protected:
  void SetUp() override {
    {
      FirstStore first(path());
      first.run("BEGIN");
      for (int i = 0; i < kMessages; ++i) first.put(pathOf(i), message(i));
      first.run("COMMIT");
    }
    _old = _folder.read("mail.db");
  }
  std::string path() const { return (_folder / "mail.db").string(); }
  std::string said() const { return _error ? _error->localizedDescription()->lossyUTF8() : ""; }

  void bringBackTheOldOne() {
    for (const char* end : {"-wal", "-shm"}) std::filesystem::remove(path() + end);
    _folder.write("mail.db", _old);
  }
  void migrate() { ASSERT_TRUE(StoreWriter::open(path(), &_error)) << said(); }
  /// The same in a process that is killed after a while.
  void migrateAndKill(microseconds after) const {
    const pid_t child = ::fork();
    if (child == 0) {
      auto store = StoreWriter::open(path(), nullptr);
      ::_exit(0);
    }
    std::this_thread::sleep_for(after);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
  }
  void expectEverythingIsThere() {
    EXPECT_EQ(checkStore(path(), &_error), std::vector<std::string>()) << said();
    auto store = StoreReader::open(path(), &_error);
    ASSERT_TRUE(store) << said();
    Database& database = store->database();
    EXPECT_EQ(database.integer("PRAGMA user_version", &_error), kStoreVersion);
    EXPECT_EQ(database.integer("SELECT count(*) FROM message", &_error), kMessages);
    const auto id = store->idOfPath(pathOf(7), &_error);
    ASSERT_TRUE(id);
    EXPECT_EQ(database.integer("SELECT rowid FROM word WHERE word MATCH 'unique7'", &_error), id);
    const auto attributes = store->attributesOf(*id, &_error);
    ASSERT_TRUE(attributes) << said();
    EXPECT_TRUE(isEqual(attributes, message(7)));
  }

  TemporaryFolder _folder;
  Ref<NSError> _error;
  std::string _old;
};

TEST_F(StoreMigrationTest, TheOldestStoreKeepsAllThatItHeld) {
  migrate();
  expectEverythingIsThere();
}

TEST_F(StoreMigrationTest, KilledAtAnyMomentItIsDoneByTheNext) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto start = steady_clock::now();
  migrate();
  const auto whole = std::chrono::duration_cast<microseconds>(steady_clock::now() - start);
  for (int kill = 0, kills = killsOr(8); kill < kills; ++kill) {
    SCOPED_TRACE(kill);
    bringBackTheOldOne();
    // Several times, so that one kill meets what another one left.
    for (auto times = 1 + random() % 3; times > 0; --times)
      migrateAndKill(microseconds(random() % static_cast<unsigned>(whole.count() + 1)));
    ASSERT_NO_FATAL_FAILURE(migrate());
    ASSERT_NO_FATAL_FAILURE(expectEverythingIsThere());
  }
}

}  // namespace
}  // namespace kbx
