// Importers that do what no importer should, in workers: each costs its own message.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <set>

#include "host/workers/Sandbox.h"
#include "tests/support/JSONLines.h"
#include "tests/support/Process.h"
#include "tests/support/Sanitizers.h"

namespace kbx {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const char kImporter[] = FERNCASE_SPOTLIGHT_DIR "/FerncaseSpotlightImporter.mdimporter";

class WorkerFaultsTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(kImporter)) GTEST_SKIP() << "no importer is built";
    std::filesystem::create_directories(_folder / "mail");
    std::filesystem::create_directories(_folder / "run");
  }

  /// A message for which the mail importer does something.
  void write(const std::string& name, const std::string& test) {
    _folder.write("mail/" + name + ".eml", "Subject: " + name + "\nX-Test: " + test + "\n\nbody");
  }
  Finished run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(),
                     {FERNCASE_BINARY, "import", "--ndjson", "--importer", kImporter});
    return Process(std::move(arguments))
        .folder(_folder.path())
        .variable("XDG_RUNTIME_DIR=" + (_folder / "run").string())
        .variable("KBX_SYSTEM_ROOT=" FERNCASE_BUNDLES_DIR "/root")
        .variable("ASAN_OPTIONS=handle_segv=0:handle_abort=0:detect_leaks=0")
        .run();
  }
  /// Imports messages before and after a bad one; what is told of the bad one, which must be the
  /// only failure.
  std::string failureAmongOthers(const std::string& test, std::vector<std::string> options = {}) {
    for (int i = 0; i < 9; ++i) write(std::to_string(i), i == 4 ? test : "none");
    options.push_back("mail");
    const auto finished = run(options);
    EXPECT_EQ(finished.exitCode, 3) << finished.complaints;
    const auto results = jsonLines(finished.output);
    EXPECT_EQ(results.size(), 9u);
    std::string reason;
    for (std::size_t i = 0; i < results.size(); ++i) {
      EXPECT_EQ(results[i].at("path"), "mail/" + std::to_string(i) + ".eml");
      EXPECT_EQ(results[i].contains("error"), i == 4) << results[i];
      if (i == 4 && results[i].contains("error")) reason = results[i]["error"]["description"];
    }
    EXPECT_EQ(finished.complaints, "ferncase: mail/4.eml: " + reason + "\n");
    EXPECT_TRUE(std::filesystem::is_empty(_folder / "run")) << "something was left behind";
    return reason;
  }
  /// The number of the error with which an attempt failed in a worker, 0 for none.
  int failureOf(const std::string& attempt, std::vector<std::string> options = {}) {
    std::filesystem::remove_all(_folder / "mail");
    std::filesystem::create_directories(_folder / "mail");
    write("a", attempt);
    options.push_back("mail/a.eml");
    const auto finished = run(options);
    EXPECT_EQ(finished.exitCode, 0) << finished.complaints;
    return jsonLines(finished.output).at(0).at("attributes").at("TestMailFailure").get<int>();
  }

  TemporaryFolder _folder;
};

TEST_F(WorkerFaultsTest, WhatEndsTheProcessCostsItsMessageAlone) {
  struct Case {
    const char *test, *reason;
  };
  for (auto [test, reason] : {Case{"crash", "The importer crashed (SIGSEGV)."},
                              {"abort", "The importer crashed (SIGABRT)."},
                              {"exit", "The importer ended its process (exit code 7)."}})
    for (auto workers : {"1", "3"}) {
      SCOPED_TRACE(test);
      EXPECT_EQ(failureAmongOthers(test, {"-j", workers}), reason);
    }
}

TEST_F(WorkerFaultsTest, WhatNeverEndsIsStopped) {
  EXPECT_EQ(failureAmongOthers("hang", {"--timeout=1"}),
            "The importer took longer than 1 second and was stopped.");
}

TEST_F(WorkerFaultsTest, AnIndexToldHowLongAMessageMayTakeStopsWhatNeverEnds) {
  std::filesystem::create_directories(_folder / "root/Library");
  std::filesystem::create_directory_symlink(FERNCASE_SPOTLIGHT_DIR,
                                            _folder / "root/Library/Spotlight");
  std::filesystem::create_directory_symlink(FERNCASE_BUNDLES_DIR "/root/System",
                                            _folder / "root/System");
  write("a", "hang");
  const auto finished =
      Process({FERNCASE_BINARY, "index", "--db", "mail.db", "--timeout=1", "mail"})
          .folder(_folder.path())
          .variable("KBX_SYSTEM_ROOT=" + (_folder / "root").string())
          .run();
  EXPECT_THAT(finished.complaints,
              HasSubstr("a.eml: The importer took longer than 1 second and was stopped.\n"));
}

TEST_F(WorkerFaultsTest, FaultsThatTheProcessSurvivesAreTheSameInAndOutsideWorkers) {
  struct Case {
    const char *test, *reason;
  };
  for (auto [test, reason] :
       {Case{"throw", "The importer failed: the message asks for it"},
        {"odd-throw", "The importer failed: no reason is known."},
        {"odd-value",
         "The importer’s answer can’t be used: “TestMailValue” holds an object of "
         "class NSURL."},
        {"odd-key",
         "The importer’s answer can’t be used: it names an attribute by an object of "
         "class NSNumber."}})
    for (auto isolation : {"--isolate=process", "--isolate=none"}) {
      SCOPED_TRACE(std::string(test) + isolation);
      EXPECT_EQ(failureAmongOthers(test, {isolation}), reason);
    }
  EXPECT_THAT(failureAmongOthers("raise"), HasSubstr("the message asks for it"));
}

TEST_F(WorkerFaultsTest, WhatTakesTooMuchMemoryFails) {
  if (kIsSanitized) GTEST_SKIP() << "no limits of memory beside a sanitizer";
  EXPECT_EQ(failureAmongOthers("memory"), "The importer failed: there isn’t enough memory.");
}

TEST_F(WorkerFaultsTest, EveryMessageMayBeBad) {
  for (int i = 0; i < 20; ++i) write(std::to_string(i + 10), i % 2 ? "exit" : "crash");
  const auto finished = run({"mail"});
  EXPECT_EQ(finished.exitCode, 4);
  EXPECT_EQ(jsonLines(finished.output).size(), 20u);
  for (const auto& result : jsonLines(finished.output)) EXPECT_TRUE(result.contains("error"));
}

TEST_F(WorkerFaultsTest, OtherFilesCannotBeReadOrMade) {
  if (!protectionsHere().areComplete()) GTEST_SKIP() << "this kernel lacks a protection";
  _folder.write("secret", "x");
  const std::string secret = (_folder / "secret").string();
  EXPECT_EQ(failureOf(secret), EACCES);
  EXPECT_EQ(failureOf("/etc/shadow"), EACCES);
  EXPECT_EQ(failureOf("make " + (_folder / "mail/new").string()), EACCES);
  EXPECT_EQ(failureOf("make /tmp/ferncase-misdeed"), EACCES);
  EXPECT_EQ(failureOf("change " + (_folder / "mail/a.eml").string()), EPERM);
  EXPECT_EQ(failureOf(secret, {"--isolate=none"}), 0) << "the test tries nothing";
}

TEST_F(WorkerFaultsTest, WhatTheImporterNeedsCanBeRead) {
  EXPECT_EQ(failureOf((_folder / "mail/a.eml").string()), 0);
  EXPECT_EQ(failureOf("/usr"), 0);
  EXPECT_EQ(failureOf("/dev/urandom"), 0);
}

TEST_F(WorkerFaultsTest, ConnectionsProgramsAndOtherProcessesAreOutOfReach) {
  if (!protectionsHere().systemCalls) GTEST_SKIP() << "this kernel filters no system calls";
  EXPECT_EQ(failureOf("connect"), EPERM);
  EXPECT_EQ(failureOf("run"), EPERM);
  EXPECT_EQ(failureOf("fork"), EPERM);
  EXPECT_EQ(failureOf("signal"), EPERM);
}

TEST_F(WorkerFaultsTest, WhatOnlyAnAttackerDoesEndsTheWorker) {
  if (!protectionsHere().systemCalls) GTEST_SKIP() << "this kernel filters no system calls";
  EXPECT_EQ(failureAmongOthers("trace"),
            "The importer was stopped: it tried what no importer may do (SIGSYS).");
}

TEST_F(WorkerFaultsTest, WhatAnImporterPrintsIsNoOutput) {
  write("a", "chatter");
  const auto finished = run({"mail/a.eml"});
  EXPECT_EQ(jsonLines(finished.output).size(), 1u);
  EXPECT_EQ(finished.complaints, "");
}

TEST_F(WorkerFaultsTest, AMissingMailImporterFailsEveryMessageWithTheReason) {
  write("a", "none");
  write("b", "none");
  const auto finished = Process({FERNCASE_BINARY, "import", "--importer", kImporter, "mail"})
                            .folder(_folder.path())
                            .variable("KBX_SYSTEM_ROOT=" + (_folder / "run").string())
                            .run();
  EXPECT_EQ(finished.exitCode, 4);
  EXPECT_THAT(finished.complaints, HasSubstr("ferncase: mail/a.eml: The mail importer "));
  EXPECT_THAT(finished.complaints, HasSubstr("ferncase: mail/b.eml: The mail importer "));
}

TEST_F(WorkerFaultsTest, ALinkLeadsToItsMessageWhereverThatLies) {
  _folder.write("elsewhere.eml", "Subject: far\n\nbody");
  std::filesystem::create_symlink("../elsewhere.eml", _folder / "mail/link.eml");
  write("near", "none");
  for (auto place : {"--stage=private", "--stage=beside"}) {
    SCOPED_TRACE(place);
    const auto finished = run({place, "mail"});
    EXPECT_EQ(finished.exitCode, 0) << finished.complaints;
    const auto results = jsonLines(finished.output);
    EXPECT_EQ(results.at(0).at("path"), "mail/link.eml");
    const auto& attributes = results.at(0).at("attributes");
    EXPECT_EQ(attributes.at("kMDItemSubject"), "far");
    EXPECT_THAT(attributes.at("TestMailPath").get<std::string>(),
                testing::StartsWith((_folder / "mail/.temp-").string()));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(_folder / "mail"), {}), 2);
  }
}

TEST_F(WorkerFaultsTest, MoreFilesThanRulesAreImported) {
  std::string list;
  for (int i = 0; i < 1100; ++i) {
    write(std::to_string(i), "none");
    list += "mail/" + std::to_string(i) + ".eml\n";
  }
  _folder.write("list", list);
  const auto finished = run({"--files-from", "list"});
  EXPECT_EQ(finished.exitCode, 0) << finished.complaints;
  const auto results = jsonLines(finished.output);
  ASSERT_EQ(results.size(), 1100u);
  for (std::size_t i = 0; i < results.size(); ++i)
    ASSERT_EQ(results[i].at("attributes").at("kMDItemSubject"), std::to_string(i));
}

}  // namespace
}  // namespace kbx
