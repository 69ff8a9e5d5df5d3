// What `ferncase watch` leaves behind when it is killed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <random>
#include <thread>

#include "host/store/Maintenance.h"
#include "host/store/Store.h"
#include "tests/support/Kills.h"
#include "tests/support/Process.h"
#include "tests/support/RunningProcess.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using std::chrono::microseconds;
using std::chrono::steady_clock;
using testing::HasSubstr;
using testing::IsEmpty;
using Messages = std::map<std::string, std::string>;  // subjects by path

constexpr std::size_t kMostMessages = 60;

/// A mailbox in which somebody is busy. No name is given twice, so that whoever knew a file by its
/// last content may not have lost it.
class BusyMailbox {
 public:
  BusyMailbox(const fs::path& folder, std::mt19937& random) : _folder(folder), _random(random) {
    for (const auto& place : _places) fs::create_directories(mail() / place);
  }

  fs::path mail() const { return _folder / "mail"; }
  /// What is there, by path below the mailbox.
  const Messages& messages() const { return _messages; }

  void change() {
    if (_messages.empty() || (_random() % 2 == 0 && _messages.size() < kMostMessages))
      return deliver(fresh());
    switch (_random() % 8) {
      case 0:
      case 1:
        return deliver(any());
      case 2:
      case 3:
      case 4:
        return rename(any(), fresh());
      case 5:
        return renameFolder(_places[_random() % _places.size()]);
      default:
        return remove(any());
    }
  }

 private:
  std::string fresh() {
    return _places[_random() % _places.size()] + "/" + std::to_string(++_number) + ".eml";
  }
  std::string any() {
    auto message = _messages.begin();
    std::advance(message, static_cast<long>(_random() % _messages.size()));
    return message->first;
  }
  void deliver(const std::string& name) {
    const std::string subject = "subject " + std::to_string(++_number);
    std::ofstream(_folder / "delivered")
        << "Subject: " << subject << "\n\nText of " << subject << "\n";
    fs::rename(_folder / "delivered", mail() / name);
    _messages[name] = subject;
  }
  void rename(const std::string& from, const std::string& to) {
    fs::rename(mail() / from, mail() / to);
    _messages[to] = _messages.extract(from).mapped();
  }
  void remove(const std::string& name) {
    fs::remove(mail() / name);
    _messages.erase(name);
  }
  void renameFolder(std::string& place) {
    const std::string former = place;
    place = "folder" + std::to_string(++_number);
    fs::rename(mail() / former, mail() / place);
    Messages moved;
    for (const auto& [name, subject] : _messages)
      moved[name.starts_with(former + "/") ? place + name.substr(former.size()) : name] = subject;
    _messages = std::move(moved);
  }

  const fs::path _folder;
  std::mt19937& _random;
  std::vector<std::string> _places{"a", "b", "c"};
  Messages _messages;
  int _number = 0;
};

class WatchCrashTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists(FERNCASE_SPOTLIGHT_DIR "/FerncaseSpotlightImporter.mdimporter"))
      GTEST_SKIP() << "no importer is built";
  }
  std::string store() const { return (_folder / "mail.db").string(); }
  std::vector<std::string> command(std::string_view name, std::string_view how) const {
    return {
        FERNCASE_BINARY,         std::string(name), "--db", store(), std::string(how), "-j", "1",
        _mailbox.mail().string()};
  }
  /// How long it takes to be ready with a mailbox.
  microseconds timeToStart() const {
    const auto start = steady_clock::now();
    RunningProcess watch(command("watch", "--ndjson"));
    while (auto line = watch.line())
      if (line->find("\"ready\"") != std::string::npos) break;
    return std::chrono::duration_cast<microseconds>(steady_clock::now() - start);
  }
  void beBusyFor(microseconds time) {
    const auto end = steady_clock::now() + time;
    do {
      for (auto burst = 1 + _random() % 12; burst > 0; --burst) _mailbox.change();
      std::this_thread::sleep_for(microseconds(_random() % 20'000));
    } while (steady_clock::now() < end);
  }
  Messages stored() const {
    Messages messages;
    Ref<NSError> error;
    const auto reader = StoreReader::open(store(), &error);
    if (!reader) return messages;
    Statement rows(reader->database(), "SELECT path, subject FROM file JOIN message USING (id)");
    Statement::Step step;
    while ((step = rows.step(&error)) == Statement::Step::Row)
      messages[std::string(rows.bytes(0))
                   .substr(fs::canonical(_mailbox.mail()).string().size() + 1)] = rows.text(1);
    EXPECT_EQ(step, Statement::Step::Done);
    return messages;
  }
  void expectSound() const {
    Ref<NSError> error;
    const auto findings = checkStore(store(), &error);
    ASSERT_TRUE(findings) << error->localizedDescription()->lossyUTF8();
    EXPECT_THAT(*findings, IsEmpty());
  }

  const unsigned _seed = std::random_device()();
  std::mt19937 _random{_seed};
  TemporaryFolder _folder;
  BusyMailbox _mailbox{_folder.path(), _random};
};

TEST_F(WatchCrashTest, KilledInABurstOfChangesItLosesNothingThatWasCommitted) {
  SCOPED_TRACE("seed " + std::to_string(_seed));
  for (int i = 0; i < 20; ++i) _mailbox.change();
  const auto start = timeToStart();
  for (int kill = 0, kills = killsOr(8); kill < kills; ++kill) {
    RunningProcess watch(command("watch", "--quiet"));
    beBusyFor(microseconds(_random() % static_cast<unsigned>(2 * start.count() + 1)));
    const Messages before = stored();
    watch.tell(SIGKILL);
    ASSERT_EQ(watch.wait(), -1) << watch.complaints();
    const Messages after = stored();
    for (const auto& [path, subject] : _mailbox.messages()) {
      const auto known = before.find(path);
      if (known == before.end() || known->second != subject) continue;
      ASSERT_TRUE(after.contains(path)) << path << " after kill " << kill;
      EXPECT_EQ(after.at(path), subject) << path << " after kill " << kill;
    }
    ASSERT_NO_FATAL_FAILURE(expectSound());
  }
  const auto finished = Process(command("index", "--quiet")).run();
  EXPECT_EQ(finished.exitCode, 0) << finished.complaints;
  EXPECT_EQ(stored(), _mailbox.messages());
  expectSound();
}

TEST_F(WatchCrashTest, AfterAKillTheNextWatchIsReadyWithAllThatChanged) {
  for (int i = 0; i < 20; ++i) _mailbox.change();
  {
    RunningProcess watch(command("watch", "--ndjson"));
    ASSERT_TRUE(watch.line());  // in the middle of the first update
    watch.tell(SIGKILL);
    EXPECT_EQ(watch.wait(), -1);
  }
  for (int i = 0; i < 20; ++i) _mailbox.change();
  timeToStart();
  EXPECT_EQ(stored(), _mailbox.messages());
  expectSound();
}

}  // namespace
}  // namespace kbx
