// What `ferncase index` leaves behind when it is killed, the disk is full or the store is damaged.
#include <gmock/gmock.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <map>
#include <random>
#include <thread>

#include "host/store/Maintenance.h"
#include "host/store/Store.h"
#include "tests/support/Kills.h"
#include "tests/support/Process.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using Microseconds = std::chrono::microseconds;
using Messages = std::map<std::string, std::string>;

constexpr int kMessages = 120;

class IndexCrashTest : public testing::Test {
 protected:
  void SetUp() override {
    for (int i = 0; i < kMessages; ++i) write(nameOf(i), "first " + std::to_string(i));
  }

  fs::path mail() const { return _folder / "mail"; }
  std::string store() const { return (_folder / "mail.db").string(); }
  static std::string nameOf(int i) {
    return std::to_string(i % 5) + "/" + std::to_string(i) + ".eml";
  }
  void write(const std::string& name, const std::string& text) {
    fs::create_directories((mail() / name).parent_path());
    std::ofstream(mail() / name, std::ios::binary) << "Subject: test\n\n" << text << "\n";
  }

  std::vector<std::string> command() const {
    // Many small transactions, so that there is much between which a process can be killed.
    return {FERNCASE_BINARY,    "index", "-q", "--db", store(), mail().string(),
            "-IndexBatchFiles", "7"};
  }
  Finished index() { return Process(command()).run(); }

  /// Starts it, ends it with the signal after a while, and answers what wait() says.
  int kill(int signal, Microseconds after) {
    auto words = command();
    std::vector<char*> arguments;
    for (auto& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    const int failure =
        ::posix_spawn(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (failure) throw std::runtime_error("cannot run ferncase");
    std::this_thread::sleep_for(after);
    ::kill(process, signal);
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) continue;
    return status;
  }

  /// The texts that the store holds, by their paths below the mail folder.
  Messages stored() {
    Ref<NSError> error;
    Messages messages;
    auto reader = StoreReader::open(store(), &error);
    if (!reader) return messages;
    Statement rows(reader->database(), "SELECT path, body FROM file JOIN message USING (id)");
    Statement::Step step;
    while ((step = rows.step(&error)) == Statement::Step::Row)
      messages[std::string(rows.bytes(0)).substr(mail().string().size() + 1)] = rows.text(1);
    EXPECT_EQ(step, Statement::Step::Done);
    return messages;
  }
  /// The same of the files themselves.
  Messages onDisk() const {
    Messages messages;
    for (const auto& entry : fs::recursive_directory_iterator(mail())) {
      if (!entry.is_regular_file()) continue;
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string content{std::istreambuf_iterator<char>(file), {}};
      messages[entry.path().string().substr(mail().string().size() + 1)] =
          content.substr(content.find("\n\n") + 2);
    }
    return messages;
  }
  static std::string trimmed(std::string text) {
    while (text.ends_with('\n')) text.pop_back();
    return text;
  }
  /// How many files the store holds as they are.
  std::size_t upToDate() {
    const auto held = stored(), expected = onDisk();
    return static_cast<std::size_t>(std::ranges::count_if(expected, [&](const auto& file) {
      const auto found = held.find(file.first);
      return found != held.end() && trimmed(found->second) == trimmed(file.second);
    }));
  }
  void change(std::mt19937& random, int round) {
    for (int i = 0; i < kMessages; ++i)
      if (random() % 2)
        write(nameOf(i), "round " + std::to_string(round) + " " + std::to_string(i));
    fs::rename(mail() / "0", mail() / "x");
    fs::rename(mail() / "1", mail() / "0");
    fs::rename(mail() / "x", mail() / "1");
  }
  void expectStoreHoldsTheFolder() {
    const auto held = stored(), expected = onDisk();
    ASSERT_EQ(held.size(), expected.size());
    for (const auto& [path, text] : expected) {
      ASSERT_TRUE(held.contains(path)) << path;
      EXPECT_EQ(trimmed(held.at(path)), trimmed(text)) << path;
    }
  }
  void expectSound() {
    Ref<NSError> error;
    const auto findings = checkStore(store(), &error);
    ASSERT_TRUE(findings) << error->localizedDescription()->lossyUTF8();
    EXPECT_THAT(*findings, IsEmpty());
  }

  TemporaryFolder _folder;
};

TEST_F(IndexCrashTest, KilledAtAnyMomentItLosesNothingThatWasCommitted) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(index().exitCode, 0);
  const auto whole =
      std::chrono::duration_cast<Microseconds>(std::chrono::steady_clock::now() - start);
  for (auto suffix : {"", "-wal", "-shm", "-lock"}) fs::remove(store() + suffix);

  std::size_t committed = 0;
  int ended = 0;
  const int kills = killsOr(24);
  for (int i = 0; i < kills; ++i) {
    const auto after = Microseconds(random() % static_cast<unsigned>(whole.count() + 1));
    const int status = kill(SIGKILL, after);
    ASSERT_GE(upToDate(), committed) << "after " << after.count() << " us";
    committed = upToDate();
    if (!WIFEXITED(status)) continue;
    // It was done before it was killed: the next ones find half of the mail changed and moved.
    ASSERT_EQ(WEXITSTATUS(status), 0);
    expectStoreHoldsTheFolder();
    change(random, ++ended);
    committed = 0;
  }
  ASSERT_EQ(index().exitCode, 0);
  expectStoreHoldsTheFolder();
  expectSound();
}

TEST_F(IndexCrashTest, ASignalToEndCommitsWhatIsDone) {
  std::mt19937 random(1);
  for (int i = 0; i < 6; ++i) {
    const int status = kill(i % 2 ? SIGTERM : SIGINT, Microseconds(20'000 + random() % 100'000));
    EXPECT_TRUE((WIFEXITED(status) && WEXITSTATUS(status) == 0) || WIFSIGNALED(status));
  }
  ASSERT_EQ(index().exitCode, 0);
  expectStoreHoldsTheFolder();
  expectSound();
}

TEST_F(IndexCrashTest, AFullDiskLosesNothingThatWasCommitted) {
  std::size_t committed = 0;
  bool wasFull = false;
  // In blocks of 512 bytes: how large the store's files may become.
  for (int blocks : {0, 16, 64, 128, 160, 200, 256, 320, 400, 512}) {
    std::string line = "(ulimit -f " + std::to_string(blocks) + "; exec";
    for (const std::string& word : command()) line += " '" + word + "'";
    const auto finished = Process({"/bin/sh", "-c", line + ") 2>&1 | cat >&2"}).run();
    const bool isFull = finished.complaints.find("store") != std::string::npos ||
                        finished.complaints.find("mail.db") != std::string::npos;
    wasFull |= isFull;
    const auto held = stored();
    EXPECT_GE(held.size(), committed) << blocks;
    if (!isFull) {
      EXPECT_EQ(held.size(), std::size_t{kMessages}) << blocks << finished.complaints;
    }
    committed = held.size();
  }
  EXPECT_TRUE(wasFull);
  ASSERT_EQ(index().exitCode, 0);
  expectStoreHoldsTheFolder();
  expectSound();
}

TEST_F(IndexCrashTest, ADamagedPageIsToldAndEndsNothingElse) {
  ASSERT_EQ(index().exitCode, 0);
  constexpr std::uintmax_t kPage = 8192;
  const auto size = fs::file_size(store());
  const fs::path sound = _folder / "sound.db";
  fs::copy_file(store(), sound);
  int found = 0;
  for (std::uintmax_t at = kPage; at < size; at += kPage * (1 + size / kPage / 12)) {
    fs::copy_file(sound, store(), fs::copy_options::overwrite_existing);
    {
      std::fstream file(store(), std::ios::in | std::ios::out | std::ios::binary);
      file.seekp(static_cast<std::streamoff>(at));
      file << std::string(kPage, '\xA5');
    }
    Ref<NSError> error;
    const auto findings = checkStore(store(), &error);
    if (!findings || !findings->empty()) ++found;
    for (int i = 0; i < kMessages; i += 3)
      write(nameOf(i), "after page " + std::to_string(at) + " " + std::to_string(i));
    const auto finished = index();
    EXPECT_THAT(finished.exitCode, testing::AnyOf(0, 5)) << at;
    if (finished.exitCode == 5) {
      EXPECT_THAT(finished.complaints, HasSubstr("mail.db")) << at;
    }
  }
  EXPECT_GT(found, 0);
}

TEST_F(IndexCrashTest, TwoAtOnceDoNotDisturbEachOther) {
  std::vector<std::thread> threads;
  std::vector<int> codes(4);
  for (int& code : codes) threads.emplace_back([&] { code = index().exitCode; });
  for (auto& thread : threads) thread.join();
  EXPECT_THAT(codes, testing::Contains(0));
  EXPECT_THAT(codes, testing::Each(testing::AnyOf(0, 5)));
  expectStoreHoldsTheFolder();
  expectSound();
}

}  // namespace
}  // namespace kbx
