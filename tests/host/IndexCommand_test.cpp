#include "host/index/IndexCommand.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "host/store/Store.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/CommandRun.h"
#include "tests/support/Process.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class IndexCommandTest : public testing::Test {
 protected:
  void SetUp() override { fs::create_directory(mail()); }

  fs::path mail() const { return _folder / "mail"; }
  fs::path store() const { return _folder / "mail.db"; }
  void write(std::string_view name, std::string_view text) {
    fs::create_directories((mail() / name).parent_path());
    std::ofstream(mail() / name, std::ios::binary) << "Subject: test\n\n" << text << "\n";
  }
  /// A file that no importer takes.
  void writeTooLarge(std::string_view name) {
    write(name, "");
    fs::resize_file(mail() / name, std::uint64_t{1} << 31);
  }

  Finished run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {FERNCASE_BINARY, "index", "--db", store().string()});
    return Process(std::move(arguments)).folder(_folder.path()).run();
  }
  Finished index() { return run({"mail"}); }
  /// What a test wrote this very moment is looked at twice; as if it had been there for long.
  void letTimePass(std::string_view name) {
    struct stat status;
    ASSERT_EQ(::stat((mail() / name).c_str(), &status), 0);
    Ref<NSError> error;
    auto writer = StoreWriter::open(store().string(), &error);
    Statement change(writer->database(), "UPDATE file SET changed = ?1 WHERE path = ?2");
    change.bind(1, status.st_ctim.tv_sec * 1'000'000'000 + status.st_ctim.tv_nsec);
    ASSERT_TRUE(change.bindBytes(2, (mail() / name).native()).run(&error));
  }
  std::int64_t count() {
    Ref<NSError> error;
    auto reader = StoreReader::open(store().string(), &error);
    return reader ? reader->database().integer("SELECT count(*) FROM message", &error).value_or(-1)
                  : -1;
  }

  TemporaryFolder _folder;
};

TEST_F(IndexCommandTest, AFolderIsIndexedRememberedAndBroughtUpToDate) {
  write("a.eml", "one");
  write("in/b.eml", "two");
  auto [code, output, complaints] = index();
  EXPECT_EQ(code, 0);
  EXPECT_EQ(output, "");
  EXPECT_EQ(complaints,
            "ferncase: 2 added, 0 changed, 0 moved, 0 removed, 0 unchanged, 0 failed\n");
  EXPECT_EQ(count(), 2);
  fs::remove(mail() / "a.eml");
  write("c.eml", "three");
  EXPECT_EQ(run({}).complaints,
            "ferncase: 1 added, 0 changed, 0 moved, 1 removed, 1 unchanged, 0 failed\n");
}

TEST_F(IndexCommandTest, QuietTellsOfFailuresAlone) {
  write("a.eml", "one");
  writeTooLarge("b.eml");
  const auto finished = run({"-q", "mail"});
  EXPECT_EQ(finished.exitCode, 3);
  EXPECT_THAT(finished.complaints, StartsWith("ferncase: " + (mail() / "b.eml").string() + ": "));
  letTimePass("b.eml");
  EXPECT_EQ(run({"-q", "mail"}).complaints, "");
}

TEST_F(IndexCommandTest, TheStoreLiesInTheUsersDataUnlessItIsNamed) {
  write("a.eml", "one");
  const auto finished = Process({FERNCASE_BINARY, "index", mail().string()})
                            .variable("XDG_DATA_HOME=" + (_folder / "data").string())
                            .run();
  EXPECT_EQ(finished.exitCode, 0);
  EXPECT_TRUE(fs::exists(_folder / "data/ferncase/mail.db"));
}

TEST_F(IndexCommandTest, WrongUsageIsRefused) {
  for (const auto& [arguments, reason] :
       {std::pair<std::vector<std::string>, const char*>{{}, "no folder was indexed before"},
        {{"--json", "mail"}, "--json goes with status alone"},
        {{"--retry", "status"}, "do not go with status"},
        {{"--forget", "a", "b"}, "--forget takes one DIR"},
        {{"--forget", ""}, "--forget needs a DIR"},
        {{"--unknown"}, "unknown option --unknown"}}) {
    const auto finished = run(arguments);
    EXPECT_EQ(finished.exitCode, 2);
    EXPECT_THAT(finished.complaints, HasSubstr(reason));
  }
}

TEST_F(IndexCommandTest, AWrongFolderIsNamedAndTheOthersGoOn) {
  write("a.eml", "one");
  const auto finished = run({"missing", "mail", ""});
  EXPECT_EQ(finished.exitCode, 3);
  EXPECT_THAT(finished.complaints, HasSubstr("ferncase: missing: "));
  EXPECT_THAT(finished.complaints, HasSubstr("ferncase: '': "));
  EXPECT_EQ(count(), 1);
  EXPECT_EQ(run({"missing"}).exitCode, 4);
  fs::rename(mail(), _folder / "away");
  const auto unmounted = run({});
  EXPECT_EQ(unmounted.exitCode, 4);
  EXPECT_THAT(unmounted.complaints, HasSubstr(mail().string()));
  EXPECT_EQ(count(), 1);
}

TEST_F(IndexCommandTest, StatusTellsWhatIsStoredAndWhatFailed) {
  write("a.eml", "one");
  writeTooLarge("b.eml");
  index();
  const auto status = run({"status", "--json"});
  EXPECT_EQ(status.exitCode, 0);
  const auto object = json::parse(status.output);
  EXPECT_EQ(object.at("store"), store().string());
  EXPECT_EQ(object.at("messages"), 1);
  EXPECT_GT(object.at("size"), 0);
  ASSERT_EQ(object.at("folders").size(), 1u);
  EXPECT_EQ(object.at("folders")[0].at("path"), mail().string());
  EXPECT_THAT(object.at("folders")[0].at("indexed").get<std::string>(), EndsWith("Z"));
  ASSERT_EQ(object.at("failed").size(), 1u);
  EXPECT_EQ(object.at("failed")[0].at("path"), (mail() / "b.eml").string());
  EXPECT_THAT(object.at("failed")[0].at("reason").get<std::string>(), HasSubstr("too large"));
  const auto text = run({"status"}).output;
  EXPECT_THAT(text, HasSubstr("messages  1\n"));
  EXPECT_THAT(text, HasSubstr("failed    " + (mail() / "b.eml").string() + "\n"));
}

TEST_F(IndexCommandTest, AFailureIsTriedAgainWhenItIsWishedOrTheFileChanges) {
  writeTooLarge("a.eml");
  EXPECT_EQ(index().exitCode, 4);
  letTimePass("a.eml");
  const auto same = index();
  EXPECT_EQ(same.exitCode, 0);
  EXPECT_THAT(same.complaints, EndsWith("0 failed, 1 failed before\n"));
  EXPECT_EQ(run({"--retry", "mail"}).exitCode, 4);
  write("a.eml", "small");
  EXPECT_THAT(index().complaints, StartsWith("ferncase: 1 added"));
}

TEST_F(IndexCommandTest, EventsAreLinesOfJSON) {
  write("a.eml", "one");
  write("b.eml", "two");
  writeTooLarge("c.eml");
  index();
  fs::rename(mail() / "a.eml", mail() / "d.eml");
  write("b.eml", "another");
  write("e.eml", "three");
  fs::remove(mail() / "c.eml");
  std::istringstream lines(run({"--ndjson", "mail"}).output);
  std::vector<std::string> events;
  json last;
  for (std::string line; std::getline(lines, line);) {
    last = json::parse(line);
    events.push_back(last.at("event").get<std::string>() + " " +
                     fs::path(last.value("path", "")).filename().string());
  }
  EXPECT_THAT(events, testing::UnorderedElementsAre("moved d.eml", "changed b.eml", "added e.eml",
                                                    "removed c.eml", "done "));
  EXPECT_EQ(last.at("event"), "done");
  EXPECT_EQ(last.at("moved"), 1);
}

TEST_F(IndexCommandTest, AForgottenFolderIsGoneAndNotIndexedAgain) {
  write("a/1.eml", "one");
  write("b/2.eml", "two");
  run({"mail/a", "mail/b"});
  fs::remove_all(mail() / "a");  // it need not be there
  EXPECT_EQ(run({"--forget", "mail/a/"}).complaints, "ferncase: 1 removed\n");
  EXPECT_EQ(count(), 1);
  write("a/1.eml", "one");
  run({});
  EXPECT_EQ(count(), 1);
}

TEST_F(IndexCommandTest, AFolderIsStoredUnderItsRealPath) {
  write("a.eml", "one");
  fs::create_directory_symlink("mail", _folder / "link");
  run({"link"});
  EXPECT_THAT(run({"mail/../mail/"}).complaints, HasSubstr("0 added"));
  EXPECT_EQ(count(), 1);
}

TEST_F(IndexCommandTest, AMessageInTheWorkingFolderIsNamedWithoutAFolder) {
  write("a.eml", "one");
  const auto finished =
      Process({FERNCASE_BINARY, "index", "--db", store().string(), "a.eml"}).folder(mail()).run();
  EXPECT_EQ(finished.exitCode, 0) << finished.complaints;
  EXPECT_EQ(count(), 1);
}

TEST_F(IndexCommandTest, OnlyOneIndexerWritesAtATime) {
  write("a.eml", "one");
  Ref<NSError> error;
  auto other = StoreWriter::open(store().string(), &error);
  ASSERT_TRUE(other);
  const auto refused = index();
  EXPECT_EQ(refused.exitCode, 5);
  EXPECT_THAT(refused.complaints, HasSubstr(std::to_string(::getpid())));
  EXPECT_EQ(run({"status"}).exitCode, 0);  // reading waits for nobody
  other = nullptr;
  EXPECT_EQ(index().exitCode, 0);
}

TEST_F(IndexCommandTest, AStoreThatCannotBeWrittenIsNamed) {
  write("a.eml", "one");
  _folder.write("file", "");
  for (auto path : {"/proc/mail.db", "file/mail.db", "mail", "file"}) {
    const auto finished = Process({FERNCASE_BINARY, "index", "--db", path, mail().string()})
                              .folder(_folder.path())
                              .run();
    const bool isNewStore = std::string_view(path) == "file";  // an empty file may become one
    EXPECT_EQ(finished.exitCode, isNewStore ? 0 : 5) << path;
    if (!isNewStore) {
      EXPECT_THAT(finished.complaints, HasSubstr(path));
    }
  }
}

TEST_F(IndexCommandTest, AStoreInAReadOnlyFolderCanBeReadAndNotWritten) {
  write("a.eml", "one");
  fs::create_directory(_folder / "store");
  const std::string path = (_folder / "store/mail.db").string();
  ASSERT_EQ(Process({FERNCASE_BINARY, "index", "--db", path, mail().string()}).run().exitCode, 0);
  write("b.eml", "two");
  constexpr auto kReadable = fs::perms(0555);
  for (const fs::path& folder : {_folder.path(), mail(), _folder / "store"})
    fs::permissions(folder, kReadable);
  fs::permissions(path, kReadable);
  const auto codeOf = [&](std::vector<std::string> words) {
    words.insert(words.begin() + 1, {"--db", path});
    return inOrdinaryChild([&] { return static_cast<int>(answerTo(words).code); });
  };
  EXPECT_EQ(codeOf({"index", mail().string()}), kStoreFailed);
  EXPECT_EQ(codeOf({"index", "optimize"}), kStoreFailed);
  EXPECT_EQ(codeOf({"index", "status"}), kDone);
  EXPECT_EQ(codeOf({"index", "check"}), kDone);
  EXPECT_EQ(codeOf({"search", "one"}), kDone);
  EXPECT_EQ(codeOf({"search", "two"}), kUndone) << "it was not indexed";
  for (const fs::path& folder : {_folder.path(), mail(), _folder / "store"})
    fs::permissions(folder, fs::perms::owner_all);
}

TEST_F(IndexCommandTest, CheckNamesWhatIsWrongAndOptimizeKeepsEverything) {
  for (int i = 0; i < 20; ++i) write(std::to_string(i) + ".eml", "text " + std::to_string(i));
  EXPECT_EQ(run({"check"}).exitCode, 5);  // there is none yet
  index();
  EXPECT_EQ(run({"check"}).complaints, "ferncase: the store is sound\n");
  EXPECT_EQ(run({"optimize"}).exitCode, 0);
  EXPECT_EQ(run({"check"}).exitCode, 0);
  EXPECT_EQ(count(), 20);
  Ref<NSError> error;
  StoreWriter::open(store().string(), &error)
      ->database()
      .run("UPDATE message SET body = 'other words' WHERE id = 3", &error);
  const auto finished = run({"check"});
  EXPECT_EQ(finished.exitCode, 1);
  EXPECT_NE(finished.output, "");
}

}  // namespace
}  // namespace kbx
