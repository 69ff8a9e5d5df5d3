// What disks, other processes and crashes do to a store.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <random>

#include "host/store/Maintenance.h"
#include "host/store/Schema.h"
#include "host/store/Store.h"
#include "host/store/StoreErrors.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Kills.h"
#include "tests/support/Process.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

Ref<NSDictionary> message(int number) {
  std::string body;
  for (int i = 0; i < 300; ++i) body += "word" + std::to_string(number * 7 + i) + " ";
  return NSDictionary::dictionaryWithPairs(
      {{"kMDItemSubject"_ns, NSString::stringWithUTF8("Number " + std::to_string(number))},
       {"kMDItemTextContent"_ns, NSString::stringWithUTF8(body)}});
}

std::string pathOf(int number) { return "/m/" + std::to_string(number) + ".eml"; }

class StoreTroubles : public ::testing::Test {
 protected:
  std::string path() const { return (folder / "mail.db").string(); }
  std::string said() const { return error ? error->localizedDescription()->lossyUTF8() : ""; }

  void fill(int count) {
    auto store = StoreWriter::open(path(), &error);
    ASSERT_TRUE(store) << said();
    ASSERT_TRUE(store->begin(&error));
    for (int i = 0; i < count; ++i)
      ASSERT_TRUE(store->put(pathOf(i), {}, {}, message(i), &error)) << said();
    ASSERT_TRUE(store->commit(&error)) << said();
  }

  TemporaryFolder folder;
  Ref<NSError> error;
};

TEST_F(StoreTroubles, TheMessageNamesTheProcessThatWrites) {
  int ready[2], done[2];
  ASSERT_EQ(::pipe(ready), 0);
  ASSERT_EQ(::pipe(done), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    auto store = StoreWriter::open(path(), nullptr);
    char byte = store ? 'y' : 'n';
    ::close(done[1]);
    if (::write(ready[1], &byte, 1) == 1) static_cast<void>(!::read(done[0], &byte, 1));
    ::_exit(0);
  }
  char byte = 0;
  ASSERT_EQ(::read(ready[0], &byte, 1), 1);
  EXPECT_EQ(byte, 'y');
  EXPECT_FALSE(StoreWriter::open(path(), &error));
  EXPECT_EQ(error->code(), StoreBusyError);
  EXPECT_NE(said().find("process " + std::to_string(child) + " "), std::string::npos) << said();
  EXPECT_TRUE(StoreReader::open(path(), &error)) << said();  // readers need no lock
  for (const int descriptor : {done[0], done[1], ready[0], ready[1]}) ::close(descriptor);
  ::waitpid(child, nullptr, 0);
  EXPECT_TRUE(StoreWriter::open(path(), &error)) << said();
}

TEST_F(StoreTroubles, AStoreByAnotherNameIsTheSame) {
  fill(1);
  const std::string other = (folder / "other.db").string();
  std::filesystem::create_symlink("mail.db", other);
  auto store = StoreWriter::open(path(), &error);
  EXPECT_FALSE(StoreWriter::open(other, &error));
  EXPECT_EQ(error->code(), StoreBusyError);
  EXPECT_NE(said().find("this process"), std::string::npos) << said();
}

TEST_F(StoreTroubles, AChildOfTheWriterDoesNotKeepTheLock) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  auto store = StoreWriter::open(path(), &error);
  const pid_t child = ::fork();
  if (child == 0) {
    char byte;
    ::close(ends[1]);
    static_cast<void>(!::read(ends[0], &byte, 1));
    ::_exit(0);
  }
  store.reset();
  EXPECT_EQ(inChild([&] { return StoreWriter::open(path(), nullptr) ? 0 : 1; }), 0);
  ::close(ends[0]);
  ::close(ends[1]);
  ::waitpid(child, nullptr, 0);
}

TEST_F(StoreTroubles, AStoreInAReadOnlyFolderIsRead) {
  fill(5);
  ASSERT_EQ(::chmod(path().c_str(), 0444), 0);
  ASSERT_EQ(::chmod(folder.path().c_str(), 0555), 0);
  const int result = inOrdinaryChild([&] {
    if (StoreWriter::open(path(), &error)) return 1;
    if (error->code() != StoreUnreadableError) return 2;
    auto store = StoreReader::open(path(), &error);
    if (!store) return 3;
    const auto count =
        store->database().integer("SELECT count(*) FROM word WHERE word MATCH 'number'", &error);
    if (count != 5) return 4;
    const auto findings = checkStore(path(), &error);
    return findings && findings->empty() ? 0 : 5;
  });
  ::chmod(folder.path().c_str(), 0755);
  EXPECT_EQ(result, 0);
}

TEST_F(StoreTroubles, AReadOnlyFolderWithUnfinishedWorkIsNotGuessedAt) {
  fill(5);
  // A writer that was killed leaves its log behind.
  inChild([&] {
    auto store = StoreWriter::open(path(), nullptr);
    store->put(pathOf(6), {}, {}, message(6), nullptr);
    return ::raise(SIGKILL);
  });
  ASSERT_GT(std::filesystem::file_size(path() + "-wal"), 0u);
  std::filesystem::remove(path() + "-shm");
  ASSERT_EQ(::chmod(folder.path().c_str(), 0555), 0);
  const int result = inOrdinaryChild([&] {
    if (StoreReader::open(path(), &error)) return 1;
    return error->code() == StoreUnreadableError ? 0 : 2;
  });
  ::chmod(folder.path().c_str(), 0755);
  EXPECT_EQ(result, 0);
  auto store = StoreReader::open(path(), &error);
  ASSERT_TRUE(store) << said();
  EXPECT_TRUE(store->idOfPath(pathOf(6), &error));  // committed, so it is there
}

TEST_F(StoreTroubles, WithoutSpaceTheTransactionIsUndoneAndTheFileNamed) {
  fill(5);
  auto store = StoreWriter::open(path(), &error);
  const auto pages = store->database().integer("PRAGMA page_count", &error);
  ASSERT_TRUE(
      store->database().integer("PRAGMA max_page_count = " + std::to_string(*pages + 3), &error));
  ASSERT_TRUE(store->begin(&error));
  bool isStored = true;
  for (int i = 5; isStored && i < 1000; ++i)
    isStored = store->put(pathOf(i), {}, {}, message(i), &error);
  EXPECT_FALSE(isStored && store->commit(&error));
  EXPECT_EQ(error->code(), StoreFullError) << said();
  EXPECT_NE(said().find(path()), std::string::npos) << said();
  EXPECT_FALSE(store->commit(&error));
  store->database().integer("PRAGMA max_page_count = 1000000", &error);
  EXPECT_TRUE(store->put(pathOf(5), {}, {}, message(5), &error)) << said();  // it goes on
  EXPECT_EQ(statusOf(path(), &error)->messages, 6);
  EXPECT_EQ(checkStore(path(), &error), std::vector<std::string>());
}

TEST_F(StoreTroubles, ADiskThatTakesNoMoreLeavesWhatWasStored) {
  const int result = inChild([&] {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{200'000, 200'000};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    auto store = StoreWriter::open(path(), &error);
    if (!store) return 1;
    bool isStored = true;
    for (int i = 0; isStored && i < 1000; ++i)
      isStored = store->put(pathOf(i), {}, {}, message(i), &error);
    if (isStored) return 2;
    return said().starts_with(path() + ": the store cannot be written") ? 0 : 3;
  });
  EXPECT_EQ(result, 0);
  EXPECT_GT(statusOf(path(), &error)->messages, 0);
  EXPECT_EQ(checkStore(path(), &error), std::vector<std::string>());
}

TEST_F(StoreTroubles, EveryDamagedPageIsAnErrorOrAFindingNeverACrash) {
  fill(200);
  const std::string sound = folder.read("mail.db");
  const std::size_t pages = sound.size() / 8192;
  ASSERT_GT(pages, 20u);
  std::mt19937 random(4);
  for (std::size_t page = 0; page < pages; page += 3) {
    SCOPED_TRACE(page);
    std::string damaged = sound;
    for (std::size_t i = 0; i < 8192; ++i) damaged[page * 8192 + i] = static_cast<char>(random());
    folder.write("mail.db", damaged);
    error = nullptr;
    const auto findings = checkStore(path(), &error);
    EXPECT_TRUE(findings ? !findings->empty() : error != nullptr);
    EXPECT_TRUE(findings || said().find(path()) != std::string::npos) << said();
  }
}

TEST_F(StoreTroubles, AStoreThatWasCutIsAnErrorOrAFinding) {
  fill(200);
  const std::string sound = folder.read("mail.db");
  for (const std::size_t size : {sound.size() - 1, sound.size() - 8192, sound.size() / 2,
                                 std::size_t{8192}, std::size_t{100}, std::size_t{1}}) {
    SCOPED_TRACE(size);
    folder.write("mail.db", sound.substr(0, size));
    error = nullptr;
    const auto findings = checkStore(path(), &error);
    EXPECT_TRUE(findings ? !findings->empty() : error != nullptr);
  }
}

/// Writes messages for ever, a few in each transaction; each transaction stores the count so far
/// and the count is told through the pipe once it is committed.
[[noreturn]] void writeForEver(const std::string& path, int known, int pipe) {
  auto store = StoreWriter::open(path, nullptr);
  for (int count = known; store;) {
    if (!store->begin(nullptr)) ::_exit(2);
    for (int i = 0; i < 20; ++i, ++count) {
      if (!store->put(pathOf(count), {}, {}, message(count), nullptr)) ::_exit(3);
      if (count % 3 == 0) store->put(pathOf(count / 2), {}, {}, message(count), nullptr);
    }
    if (!store->commit(nullptr)) ::_exit(4);
    if (::write(pipe, &count, sizeof count) != sizeof count) ::_exit(5);
  }
  ::_exit(1);
}

TEST_F(StoreTroubles, AWriterThatIsKilledLosesNothingThatWasCommitted) {
  std::mt19937 random(static_cast<unsigned>(::getpid()));
  int committed = 0;
  for (int round = 0, rounds = killsOr(8); round < rounds; ++round) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) writeForEver(path(), committed, ends[1]);
    ::close(ends[1]);
    ::usleep(static_cast<useconds_t>(random() % 60'000));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    for (int count; ::read(ends[0], &count, sizeof count) == sizeof count;) committed = count;
    ::close(ends[0]);
    if (!std::filesystem::exists(path())) continue;  // killed before it began
    auto status = statusOf(path(), &error);
    if (!status && committed == 0) continue;  // killed before there were tables
    ASSERT_TRUE(status) << said();
    EXPECT_GE(status->messages, committed);
    EXPECT_EQ(status->messages % 20, 0);
    committed = static_cast<int>(status->messages);
    ASSERT_EQ(checkStore(path(), &error), std::vector<std::string>());
  }
  fill(1);  // the next run goes on
}

TEST_F(StoreTroubles, AMigrationThatIsKilledIsDoneOrNot) {
  constexpr Migration steps[] = {
      {kStoreVersion,
       "ALTER TABLE file ADD COLUMN x; UPDATE file SET x = path; CREATE INDEX file_x ON file(x)"},
      {kStoreVersion + 1,
       "UPDATE file SET x = x || x; UPDATE message SET subject = subject || 'x'"}};
  fill(300);
  const std::string old = folder.read("mail.db");
  std::mt19937 random(static_cast<unsigned>(::getpid()));
  for (int round = 0, rounds = killsOr(8); round < rounds; ++round) {
    for (const char* end : {"-wal", "-shm"}) std::filesystem::remove(path() + end);
    folder.write("mail.db", old);
    const pid_t child = ::fork();
    if (child == 0) {
      auto database = Database::open(path(), Database::Access::Writing, nullptr);
      prepareStore(*database, steps, kStoreVersion + 2, nullptr);
      ::_exit(0);
    }
    ::usleep(static_cast<useconds_t>(random() % 8'000));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    auto database = Database::open(path(), Database::Access::Writing, &error);
    ASSERT_TRUE(prepareStore(*database, steps, kStoreVersion + 2, &error)) << said();
    EXPECT_EQ(database->integer("SELECT count(*) FROM file WHERE x = path || path", &error), 300);
    EXPECT_EQ(database->integer("SELECT count(*) FROM message WHERE subject LIKE '%x'", &error),
              300);
  }
}

TEST_F(StoreTroubles, TheShellOfTheDatabaseReadsTheStore) {
  const std::string shell = "/usr/bin/sqlite3";
  if (::access(shell.c_str(), X_OK) != 0) GTEST_SKIP() << "there is no " << shell;
  if (kIsSanitized) GTEST_SKIP() << "the shell does not have the sanitizer that it would need";
  fill(3);
  const std::string extension = FERNCASE_BUILD_DIR "/lib/ferncase/ferncase_fts";
  const Finished finished =
      Process({shell, path(), ".load " + extension,
               "SELECT highlight(word, 0, '<', '>') FROM word WHERE word MATCH 'NÚMBER 1'",
               "INSERT INTO word (word, rank) VALUES ('integrity-check', 1)"})
          .run();
  EXPECT_EQ(finished.output, "<Number> <1>\n");
  EXPECT_EQ(finished.complaints, "");
  EXPECT_EQ(finished.exitCode, 0);
}

}  // namespace
}  // namespace kbx
