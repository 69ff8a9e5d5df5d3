#include "host/search/SearchCommand.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/support/CommandRun.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/FakeLocalTime.h"
#include "tests/support/MailStore.h"

namespace kbx {
namespace {

class SearchCommandTest : public testing::Test {
 protected:
  /// What the command prints; its complaints are in _complaints.
  std::string search(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"search", "--db", _store.path()});
    auto [code, output, complaints] = answerTo(arguments);
    _code = code;
    _complaints = complaints;
    return output;
  }

  FakeLocalTime _zone;
  ScopedService<LocalTime> _installedZone{_zone};
  MailStore _store{{{.path = "/mail/a.eml",
                     .subject = "The engine",
                     .body = "It weaves patterns.",
                     .authors = {"Ada Lovelace"},
                     .authorAddresses = {"ada@example.org"},
                     .date = 1715952600},
                    {.path = "/mail/odd\n\xE9.eml", .subject = "draft", .body = "engine"},
                    {.path = "/mail/in/b.eml", .subject = "plan", .date = 1715952000}}};
  ExitCode _code = kBroken;
  std::string _complaints;
};

TEST_F(SearchCommandTest, PathsComeALineEach) {
  EXPECT_EQ(search({"engine", "weaves"}), "/mail/a.eml\n");
  EXPECT_EQ(_code, kDone);
  EXPECT_EQ(_complaints, "");
}

TEST_F(SearchCommandTest, WithNULsAPathMayHoldAnything) {
  EXPECT_EQ(search({"-0", "draft"}), std::string("/mail/odd\n\xE9.eml\0", 16));
}

TEST_F(SearchCommandTest, ArgumentsJoinToOneQuery) {
  EXPECT_EQ(search({"plan", "OR", "weaves"}), "/mail/a.eml\n/mail/in/b.eml\n");
  EXPECT_EQ(search({"engine", "-draft"}), "/mail/a.eml\n");
  EXPECT_EQ(search({"-draft", "engine"}), "/mail/a.eml\n");
  EXPECT_EQ(search({"engine", "-hello", "-0x", "-limit"}), "/mail/a.eml\n/mail/odd\n\xE9.eml\n")
      << "a word behind a dash is no option";
  EXPECT_EQ(search({"--", "engine", "-draft"}), "/mail/a.eml\n");
}

TEST_F(SearchCommandTest, NothingFoundIsToldByTheExitCode) {
  EXPECT_EQ(search({"nowhere"}), "");
  EXPECT_EQ(_code, kUndone);
  EXPECT_EQ(search({"--count", "nowhere"}), "0\n");
  EXPECT_EQ(_code, kUndone);
  EXPECT_EQ(search({"--json", "nowhere"}), "[]\n");
  EXPECT_EQ(_code, kUndone);
}

TEST_F(SearchCommandTest, OptionsChooseWhatIsPrinted) {
  EXPECT_EQ(search({"--count", "*"}), "3\n");
  EXPECT_EQ(search({"--limit", "1", "*"}), "/mail/a.eml\n");
  EXPECT_EQ(search({"--limit", "0", "--offset", "1", "-draft"}), "/mail/in/b.eml\n");
  EXPECT_EQ(search({"--sort", "path", "--reverse", "-draft"}), "/mail/in/b.eml\n/mail/a.eml\n");
  EXPECT_EQ(search({"--onlyin", "/mail/in", "*"}), "/mail/in/b.eml\n");
  EXPECT_EQ(search({"--onlyin", "/mail/x/../in/", "*"}), "/mail/in/b.eml\n");
  EXPECT_EQ(search({"--snippet", "weaves"}), "/mail/a.eml\n    It weaves patterns.\n");
  EXPECT_EQ(search({"--name", "kMDItemSubject", "weaves"}),
            "== /mail/a.eml\nkMDItemSubject = \"The engine\"\n");
}

TEST_F(SearchCommandTest, ObjectsHoldWhatPeopleSeeAndWhatIsNamed) {
  auto array =
      nlohmann::json::parse(search({"--json", "--snippet", "--name", "kMDItemAuthors", "weaves"}));
  ASSERT_EQ(array.size(), 1u);
  EXPECT_EQ(array[0], nlohmann::json::parse(R"({
    "id": 1, "path": "/mail/a.eml", "date": "2024-05-17T13:30:00Z",
    "from": "Ada Lovelace <ada@example.org>", "subject": "The engine",
    "snippet": [{"text": "It ", "match": false}, {"text": "weaves", "match": true},
                {"text": " patterns.", "match": false}],
    "attributes": {"kMDItemAuthors": ["Ada Lovelace"]}})"));
  const std::string lines = search({"--ndjson", "engine"});
  EXPECT_EQ(std::ranges::count(lines, '\n'), 2);
  const auto second = nlohmann::json::parse(lines.substr(lines.find('\n')), nullptr, false);
  EXPECT_TRUE(second.is_discarded() || second.at("date").is_null());
  EXPECT_NE(lines.find("odd\\n\\udce9.eml"), std::string::npos) << lines;
}

TEST_F(SearchCommandTest, AWrongQueryShowsThePlaceAndWhatWasMeant) {
  EXPECT_EQ(search({"engine", "form:ada"}), "");
  EXPECT_EQ(_code, kMisused);
  EXPECT_EQ(_complaints,
            "ferncase: \"form:\" is no field\n"
            "    engine form:ada\n"
            "           ^~~~~\n"
            "did you mean  engine from:ada\n");
}

TEST_F(SearchCommandTest, AWrongUsageIsToldAsOfEveryCommand) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                    {"--sort", "size", "x"},
                                                    {"--json", "-0", "x"},
                                                    {"--live", "--count", "x"},
                                                    {"-0", "--snippet", "x"},
                                                    {"--limit", "few", "x"},
                                                    {"--limit", "-1", "x"},
                                                    {"--offset", "-1", "x"},
                                                    {"--lmit", "1", "x"},
                                                    {"--onlyin=", "x"}}) {
    EXPECT_EQ(search(arguments), "");
    EXPECT_EQ(_code, kMisused) << _complaints;
    EXPECT_NE(_complaints.find("try \"ferncase search --help\""), std::string::npos);
  }
}

TEST_F(SearchCommandTest, AMissingStoreHasAHint) {
  std::filesystem::remove(_store.path());
  EXPECT_EQ(search({"x"}), "");
  EXPECT_EQ(_code, kStoreFailed);
  EXPECT_NE(_complaints.find("ferncase index"), std::string::npos) << _complaints;
}

TEST_F(SearchCommandTest, WhatIsNoStoreIsTold) {
  std::ofstream(_store.path(), std::ios::trunc) << std::string(5000, 'x');
  EXPECT_EQ(search({"x"}), "");
  EXPECT_EQ(_code, kStoreFailed);
  EXPECT_NE(_complaints.find(_store.path()), std::string::npos) << _complaints;
}

TEST_F(SearchCommandTest, TheUsersOwnStoreIsTheDefault) {
  FakeEnvironment environment({"XDG_DATA_HOME=/nowhere"});
  ScopedService<Environment> installed(environment);
  const auto answer = answerTo({"search", "x"});
  EXPECT_EQ(answer.code, kStoreFailed);
  EXPECT_NE(answer.complaints.find("/nowhere/ferncase/mail.db"), std::string::npos)
      << answer.complaints;
}

TEST_F(SearchCommandTest, TheHelpIsShort) {
  const std::string help = search({"--help"});
  EXPECT_EQ(_code, kDone);
  EXPECT_LE(std::ranges::count(help, '\n'), 45);
  EXPECT_NE(help.find("--snippet"), std::string::npos);
}

}  // namespace
}  // namespace kbx
