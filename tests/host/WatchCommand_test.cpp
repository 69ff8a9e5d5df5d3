// The whole command as a user runs it, with the importers that the build made.
#include "host/watch/WatchCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "host/store/Store.h"
#include "host/watch/linux/FolderWatchersLinux.h"
#include "tests/support/Process.h"
#include "tests/support/RunningProcess.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;

std::string message(const std::string& subject) {
  return "From: a@example.org\nSubject: " + subject + "\n\nText of " + subject + "\n";
}

class WatchCommandTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists(FERNCASE_SPOTLIGHT_DIR "/FerncaseSpotlightImporter.mdimporter"))
      GTEST_SKIP() << "no importer is built";
    fs::create_directory(_mail);
  }
  std::string store() const { return (_folder / "mail.db").string(); }
  std::vector<std::string> command() const {
    return {FERNCASE_BINARY, "watch", "--db", store(), "--ndjson", "-j", "1", _mail.string()};
  }
  void deliver(std::string_view name, const std::string& subject) const {
    _folder.write("delivered", message(subject));
    fs::rename(_folder / "delivered", _mail / name);
  }
  /// "added a.eml", and whatever else the next event is.
  std::string next(RunningProcess& watch) const {
    const auto line = watch.line();
    if (!line) return "nothing; " + watch.complaints();
    const json event = json::parse(*line);
    std::string text = event.at("event");
    for (auto key : {"from", "path"})
      if (event.contains(key))
        text += " " + fs::path(event.at(key).get<std::string>()).lexically_relative(_mail).string();
    return text;
  }
  static void expectThatItWaits(RunningProcess& watch) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!watch.complaints().ends_with("waiting\n") &&
           std::chrono::steady_clock::now() < deadline)
      std::this_thread::yield();
    EXPECT_THAT(watch.complaints(), HasSubstr("waiting"));
  }
  Finished index(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {FERNCASE_BINARY, "index", "--db", store(), "--quiet"});
    return Process(std::move(arguments)).run();
  }
  /// What a search prints, with paths below the folder.
  std::string found(const std::string& query) const {
    std::string paths = Process({FERNCASE_BINARY, "search", "--db", store(), query}).run().output;
    const std::string start = fs::canonical(_mail).string() + "/";
    for (std::size_t at; (at = paths.find(start)) != std::string::npos;)
      paths.erase(at, start.size());
    return paths;
  }
  /// The messages that the store knows, by path below the folder, with their subjects.
  std::map<std::string, std::string> stored() const {
    std::map<std::string, std::string> messages;
    Ref<NSError> error;
    const auto reader = StoreReader::open(store(), &error);
    if (!reader) return messages;
    Statement rows(reader->database(),
                   "SELECT path, subject FROM file JOIN message USING (id) ORDER BY path");
    while (rows.step(&error) == Statement::Step::Row) {
      const fs::path path(std::string(rows.bytes(0)));
      messages[path.lexically_relative(fs::canonical(_mail)).string()] = rows.text(1);
    }
    return messages;
  }

  TemporaryFolder _folder;
  const fs::path _mail = _folder / "mail";
};

TEST_F(WatchCommandTest, FollowsWhatHappensToMessages) {
  deliver("first.eml", "first");
  RunningProcess watch(command());
  EXPECT_EQ(next(watch), "added first.eml");
  EXPECT_EQ(next(watch), "ready");
  deliver("second.eml", "second");
  EXPECT_EQ(next(watch), "added second.eml");
  EXPECT_EQ(stored().at("second.eml"), "second");
  deliver("second.eml", "another");
  EXPECT_EQ(next(watch), "changed second.eml");
  fs::rename(_mail / "second.eml", _mail / "third.eml");
  EXPECT_EQ(next(watch), "moved second.eml third.eml");
  fs::remove(_mail / "third.eml");
  EXPECT_EQ(next(watch), "removed third.eml");
  EXPECT_EQ(stored(), (std::map<std::string, std::string>{{"first.eml", "first"}}));
}

TEST_F(WatchCommandTest, FollowsFoldersThatComeMoveAndGo) {
  RunningProcess watch(command());
  EXPECT_EQ(next(watch), "ready");
  fs::create_directories(_folder / "outside/deep");
  _folder.write("outside/deep/a.eml", message("a"));
  fs::rename(_folder / "outside", _mail / "inside");
  EXPECT_EQ(next(watch), "added inside/deep/a.eml");
  fs::rename(_mail / "inside", _mail / "other");
  EXPECT_EQ(next(watch), "moved inside/deep/a.eml other/deep/a.eml");
  deliver("other/deep/b.eml", "b");
  EXPECT_EQ(next(watch), "added other/deep/b.eml");
  fs::remove(_mail / "other/deep/b.eml");
  EXPECT_EQ(next(watch), "removed other/deep/b.eml");
  fs::rename(_mail / "other", _folder / "outside");
  EXPECT_EQ(next(watch), "removed other/deep/a.eml");
}

TEST_F(WatchCommandTest, FollowsAMaildir) {
  for (auto name : {"cur", "new", "tmp"}) fs::create_directory(_mail / name);
  RunningProcess watch(command());
  EXPECT_EQ(next(watch), "ready");
  deliver("tmp/1690.M1.host", "delivery");
  fs::create_hard_link(_mail / "tmp/1690.M1.host", _mail / "new/1690.M1.host");
  fs::remove(_mail / "tmp/1690.M1.host");
  EXPECT_EQ(next(watch), "added new/1690.M1.host");
  EXPECT_EQ(found("is:unread"), "new/1690.M1.host\n");
  fs::rename(_mail / "new/1690.M1.host", _mail / "cur/1690.M1.host:2,S");
  EXPECT_EQ(next(watch), "moved new/1690.M1.host cur/1690.M1.host:2,S");
  EXPECT_EQ(found("is:unread"), "");
  EXPECT_EQ(found("is:read -is:flagged"), "cur/1690.M1.host:2,S\n");
  fs::rename(_mail / "cur/1690.M1.host:2,S", _mail / "cur/1690.M1.host:2,FRS");
  EXPECT_EQ(next(watch), "moved cur/1690.M1.host:2,S cur/1690.M1.host:2,FRS");
  EXPECT_EQ(found("com_apple_mail_flagged == 1 && com_apple_mail_repliedTo == 1"),
            "cur/1690.M1.host:2,FRS\n");
}

TEST_F(WatchCommandTest, MoreChangesThanAQueueHoldsAreAllFound) {
  long most = 0;
  std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> most;
  if (most <= 0 || most > 200'000) GTEST_SKIP() << "the system's queue has no usual size";
  deliver("first.eml", "first");
  RunningProcess watch(command());
  EXPECT_EQ(next(watch), "added first.eml");
  EXPECT_EQ(next(watch), "ready");
  watch.tell(SIGSTOP);
  for (long i = 0; i <= most / 4; ++i) {  // two notices for each renaming
    fs::rename(_mail / "first.eml", _mail / "other");
    fs::rename(_mail / "other", _mail / "first.eml");
  }
  deliver("unseen.eml", "unseen");
  fs::create_directory(_mail / "folder");
  deliver("folder/deep.eml", "deep");
  watch.tell(SIGCONT);
  int failure = 0;  // with fanotify the queue has no end
  if (!makeFanotify(&failure)) {
    EXPECT_EQ(next(watch), "rescan");
  }
  const std::set<std::string> events{next(watch), next(watch)};
  EXPECT_EQ(events, (std::set<std::string>{"added folder/deep.eml", "added unseen.eml"}));
  deliver("folder/later.eml", "later");
  EXPECT_EQ(next(watch), "added folder/later.eml") << "new folders are watched";
}

TEST_F(WatchCommandTest, LinksAndOtherFilesAreNoMessages) {
  RunningProcess watch(command());
  EXPECT_EQ(next(watch), "ready");
  _folder.write("outside.eml", message("outside"));
  fs::create_symlink(_folder / "outside.eml", _mail / "link.eml");
  _folder.write("mail/notes.txt", "x");
  _folder.write("mail/.temp-KBXEMLXFile-1.emlx", "x");
  deliver("last.eml", "last");
  EXPECT_EQ(next(watch), "added last.eml");
  fs::remove(_mail / "last.eml");
  EXPECT_EQ(next(watch), "removed last.eml");
}

TEST_F(WatchCommandTest, ASignalEndsItAsWished) {
  for (int signal : {SIGINT, SIGTERM}) {
    RunningProcess watch(command());
    EXPECT_EQ(next(watch), "ready");
    watch.tell(signal);
    EXPECT_EQ(watch.wait(), 0);
  }
}

TEST_F(WatchCommandTest, WithoutAFolderItFollowsThoseThatWereIndexed) {
  deliver("a.eml", "a");
  EXPECT_EQ(index({_mail.string()}).exitCode, 0);
  RunningProcess watch({FERNCASE_BINARY, "watch", "--db", store(), "--ndjson"});
  EXPECT_EQ(next(watch), "ready");
  deliver("b.eml", "b");
  EXPECT_EQ(next(watch), "added b.eml");
}

TEST_F(WatchCommandTest, OthersMayWriteWhileItWaits) {
  RunningProcess watch(command());
  EXPECT_EQ(next(watch), "ready");
  fs::create_directory(_folder / "more");
  _folder.write("more/a.eml", message("a"));
  EXPECT_EQ(index({(_folder / "more").string()}).exitCode, 0);
  deliver("b.eml", "b");
  EXPECT_EQ(next(watch), "added b.eml");
}

TEST_F(WatchCommandTest, WhileSomebodyElseWritesChangesWait) {
  RunningProcess watch(command());
  EXPECT_EQ(next(watch), "ready");
  Ref<NSError> error;
  auto other = StoreWriter::open(store(), &error);
  ASSERT_TRUE(other);
  deliver("a.eml", "a");
  expectThatItWaits(watch);
  EXPECT_EQ(stored().size(), 0u);
  other.reset();
  EXPECT_EQ(next(watch), "added a.eml");
}

TEST_F(WatchCommandTest, ItWaitsForItsTurnFromTheStart) {
  auto other = StoreWriter::open(store(), nullptr);
  ASSERT_TRUE(other);
  deliver("a.eml", "a");
  RunningProcess watch(command());
  expectThatItWaits(watch);
  other.reset();
  EXPECT_EQ(next(watch), "added a.eml");
  EXPECT_EQ(next(watch), "ready");
}

TEST_F(WatchCommandTest, TheServiceManagerIsToldWhenItIsReadyAndWhenItEnds) {
  const std::string path = (_folder / "notify").string();
  const int socket = ::socket(AF_UNIX, SOCK_DGRAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(::bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  RunningProcess watch(command(), {"NOTIFY_SOCKET=" + path});
  EXPECT_EQ(next(watch), "ready");
  watch.tell(SIGTERM);
  EXPECT_EQ(watch.wait(), 0);
  std::string told;
  char buffer[500];
  for (ssize_t size; (size = ::recv(socket, buffer, sizeof buffer, MSG_DONTWAIT)) > 0;)
    told.append(buffer, static_cast<std::size_t>(size)).append(";");
  ::close(socket);
  EXPECT_EQ(told,
            "STATUS=Bringing the store up to date;READY=1;STATUS=Following 1 folder;"
            "STOPPING=1;");
}

TEST_F(WatchCommandTest, WrongFoldersAreTold) {
  _folder.write("mail/a.eml", message("a"));
  const auto gone = Process({FERNCASE_BINARY, "watch", "--db", store(), "/gone"}).run();
  EXPECT_EQ(gone.exitCode, 4);
  EXPECT_THAT(gone.complaints, HasSubstr("/gone: "));
  const std::string path = (_mail / "a.eml").string();
  const auto file = Process({FERNCASE_BINARY, "watch", "--db", store(), path}).run();
  EXPECT_EQ(file.exitCode, 4);
  EXPECT_THAT(file.complaints, HasSubstr("is no folder"));
  const auto none = Process({FERNCASE_BINARY, "watch", "--db", store()}).run();
  EXPECT_EQ(none.exitCode, 2);
  EXPECT_THAT(none.complaints, HasSubstr("watch needs a DIR"));
  const auto way = Process({FERNCASE_BINARY, "watch", "--isolate=some", "/"}).run();
  EXPECT_EQ(way.exitCode, 2);
  EXPECT_THAT(way.complaints, HasSubstr("--isolate is process or none"));
}

}  // namespace
}  // namespace kbx
