// The whole command as a user runs it, on files of the test's own.
#include "host/defaults/DefaultsCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <thread>

#include "tests/support/Process.h"
#include "tests/support/PropertyLists.h"

namespace kbx {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using Words = std::vector<std::string>;

class DefaultsCommandTest : public testing::Test {
 protected:
  Finished run(Words words) const {
    return Process(std::move(words))
        .variable("XDG_CONFIG_HOME=" + _folder.path().string())
        .folder(_folder.path())
        .run();
  }
  Finished defaults(Words words) const {
    words.insert(words.begin(), {FERNCASE_BINARY, "defaults"});
    return run(std::move(words));
  }
  /// Writes and expects that nothing is said about it.
  void write(Words words) const {
    words.insert(words.begin(), "write");
    auto [code, output, complaints] = defaults(std::move(words));
    EXPECT_EQ(code, 0);
    EXPECT_EQ(output, "");
    EXPECT_EQ(complaints, "");
  }
  /// What is read, with the line feed at its end.
  std::string read(Words words) const {
    words.insert(words.begin(), "read");
    auto [code, output, complaints] = defaults(std::move(words));
    EXPECT_EQ(code, 0) << complaints;
    EXPECT_EQ(complaints, "");
    return output;
  }
  static std::string pathOf(const std::string& domain) {
    return "ferncase/preferences/" + domain + ".plist";
  }
  Ref<NSObject> stored(const std::string& domain) const {
    return test::read(_folder.read(pathOf(domain)));
  }
  void store(const std::string& domain, std::string_view bytes) const {
    std::filesystem::create_directories(_folder / "ferncase/preferences");
    _folder.write(pathOf(domain), bytes);
  }

  TemporaryFolder _folder;
};

TEST_F(DefaultsCommandTest, WhatIsWrittenIsInTheFileOfItsDomainAndReadAgain) {
  write({"Key", "two words"});
  write({"org.example", "Key", "-int", "5"});
  write({"-g", "Key", "-bool", "yes"});
  EXPECT_EQ(read({"Key"}), "two words\n");
  EXPECT_EQ(read({"ferncase", "Key"}), "two words\n");
  EXPECT_EQ(read({"org.example", "Key"}), "5\n");
  EXPECT_EQ(read({"NSGlobalDomain", "Key"}), "true\n");
  EXPECT_TRUE(
      isEqual(stored("ferncase"), NSDictionary::dictionaryWithPairs({{"Key"_ns, "two words"_ns}})));
  EXPECT_TRUE(_folder.read(pathOf("org.example")).find("<integer>5</integer>") !=
              std::string::npos);
  EXPECT_TRUE(_folder.read(pathOf("NSGlobalDomain")).find("<true/>") != std::string::npos);
}

TEST_F(DefaultsCommandTest, OtherValuesStayAsTheyAre) {
  write({"a", "1"});
  write({"b", "2"});
  write({"a", "3"});
  EXPECT_EQ(read({}), "{\n    a = 3;\n    b = 2;\n}\n");
}

TEST_F(DefaultsCommandTest, EveryTypeIsKeptAndShownAsItself) {
  struct Case {
    Words words;
    const char* shown;
  };
  for (const auto& [words, shown] :
       {Case{{"-string", "42"}, "\"42\"\n"},
        {{"-int", "42"}, "42\n"},
        {{"-float", "42"}, "42.0\n"},
        {{"-bool", "YES"}, "true\n"},
        {{"-date", "2026-07-29T05:36:00Z"}, "2026-07-29T05:36:00Z\n"},
        {{"-date", "2026-07-29T05:36:00.25Z"}, "2026-07-29T05:36:00.25Z\n"},
        {{"-data", "0FBD"}, "<0fbd>\n"},
        {{"-array", "a", "1"}, "(\n    a,\n    1\n)\n"},
        {{"-dict", "k", "-bool", "0"}, "{\n    k = false;\n}\n"},
        {{"-string", "a\x1B\n"}, "\"a\\u001b\\n\"\n"}}) {
    SCOPED_TRACE(words[0]);
    Words all = words;
    all.insert(all.begin(), "Key");
    write(all);
    EXPECT_EQ(read({"Key"}), shown);
  }
}

TEST_F(DefaultsCommandTest, WhatIsReadCanBeWritten) {
  write({"Key", "{a = (1, \"1\", 1.0, true, <00>, 2026-07-29T05:36:00Z); \"\\n\" = \"\";}"});
  const std::string shown = read({"Key"});
  write({"org.example", "Again", shown});
  EXPECT_EQ(read({"org.example", "Again"}), shown);
}

TEST_F(DefaultsCommandTest, JSONIsOneValue) {
  write({"Key", "{a = (1, \"1\", true, <00>, 2026-07-29T05:36:00Z);}"});
  const json list = {1, "1", true, "AA==", "2026-07-29T05:36:00Z"};
  EXPECT_EQ(json::parse(read({"--json"})), json({{"Key", {{"a", list}}}}));
  EXPECT_EQ(json::parse(read({"Key", "--json"})), json({{"a", list}}));
}

TEST_F(DefaultsCommandTest, WhatIsDeletedIsGone) {
  write({"a", "1"});
  write({"b", "2"});
  write({"org.example", "a", "1"});
  EXPECT_EQ(defaults({"delete", "a"}).exitCode, 0);
  EXPECT_EQ(read({}), "{\n    b = 2;\n}\n");
  EXPECT_EQ(defaults({"delete", "org.example"}).exitCode, 0);
  EXPECT_FALSE(std::filesystem::exists(_folder / pathOf("org.example")));
  EXPECT_EQ(defaults({"delete", "--domain", "ferncase"}).exitCode, 0);
  EXPECT_FALSE(std::filesystem::exists(_folder / pathOf("ferncase")));
}

TEST_F(DefaultsCommandTest, WhatIsNotThereIsNamed) {
  write({"here", "1"});
  struct Case {
    Words words;
    const char* complaint;
  };
  for (const auto& [words, complaint] :
       {Case{{"read", "Gone"}, "there is no Gone in the domain ferncase"},
        {{"delete", "Gone"}, "there is no Gone in the domain ferncase"},
        {{"read", "org.gone"}, "there is no domain org.gone"},
        {{"read", "org.gone", "Key"}, "there is no domain org.gone"},
        {{"delete", "org.gone"}, "there is no domain org.gone"},
        {{"delete", "org.gone", "Key"}, "there is no domain org.gone"},
        {{"read", "--json", "x\ny\x1B"}, "there is no x\\ny\\u001b in the domain ferncase"}}) {
    auto [code, output, complaints] = defaults(words);
    EXPECT_EQ(code, 1);
    EXPECT_EQ(output, "");
    EXPECT_EQ(complaints, "ferncase: " + std::string(complaint) + "\n");
  }
  EXPECT_EQ(read({}), "{\n    here = 1;\n}\n");
}

TEST_F(DefaultsCommandTest, AnEmptyDomainIsThere) {
  write({"a", "1"});
  EXPECT_EQ(defaults({"delete", "a"}).exitCode, 0);
  EXPECT_EQ(read({}), "{}\n");
}

TEST_F(DefaultsCommandTest, WrongUsageIsToldWithAHintAndChangesNothing) {
  for (const Words& words : {Words{},
                             {"frob"},
                             {"write", "Key"},
                             {"write", "Key", "-int", "x"},
                             {"delete"},
                             {"read", "-x"},
                             {"write", "--json", "Key", "v"},
                             {"read", "--domain"}}) {
    auto [code, output, complaints] = defaults(words);
    EXPECT_EQ(code, 2);
    EXPECT_EQ(output, "");
    EXPECT_THAT(complaints, HasSubstr("\nferncase: try \"ferncase defaults --help\"\n"));
  }
  EXPECT_EQ(_folder.count(), 0u);
}

TEST_F(DefaultsCommandTest, WordsBehindTheMarkAreNoOptions) {
  write({"--", "Key", "-string", "--json"});
  EXPECT_EQ(read({"Key"}), "\"--json\"\n");
  write({"--domain", "plain", "--", "a.b", "-5"});
  EXPECT_EQ(read({"plain", "a.b"}), "-5\n");
}

TEST_F(DefaultsCommandTest, TheHelpHasExamples) {
  auto [code, output, complaints] = defaults({"--help"});
  EXPECT_EQ(code, 0);
  EXPECT_THAT(output, HasSubstr("Usage: ferncase defaults "
                                "[OPTIONS] read|write|delete [DOMAIN] KEY [VALUE]"));
  EXPECT_THAT(output, HasSubstr("\n  ferncase defaults write KBXHTMLConverterDataLog true "));
  EXPECT_EQ(complaints, "");
}

TEST_F(DefaultsCommandTest, ADamagedFileIsToldAndKeptAside) {
  store("ferncase", "<dict>");
  auto reading = defaults({"read"});
  EXPECT_EQ(reading.exitCode, 1);
  EXPECT_THAT(reading.complaints, StartsWith("log: Preferences: "));
  EXPECT_THAT(reading.complaints, HasSubstr("\nferncase: there is no domain ferncase\n"));
  auto writing = defaults({"write", "Key", "1"});
  EXPECT_EQ(writing.exitCode, 0);
  EXPECT_THAT(writing.complaints, HasSubstr("ferncase.plist.corrupt"));
  EXPECT_EQ(_folder.read(pathOf("ferncase") + ".corrupt"), "<dict>");
  EXPECT_EQ(read({"Key"}), "1\n");
}

TEST_F(DefaultsCommandTest, WhatCannotBeStoredIsToldWithTheReason) {
  const std::string longName = "org." + std::string(300, 'x');
  auto tooLong = defaults({"write", longName, "Key", "1"});
  EXPECT_EQ(tooLong.exitCode, 1);
  EXPECT_THAT(tooLong.complaints,
              HasSubstr("ferncase: the domain " + longName + " cannot be stored\n"));
  EXPECT_THAT(tooLong.complaints, StartsWith("log: Preferences: "));
  auto lone = defaults({"write", "Key", "\"\\ud800\""});
  EXPECT_EQ(lone.exitCode, 1);
  EXPECT_THAT(lone.complaints, HasSubstr("surrogate"));
}

TEST_F(DefaultsCommandTest, WithoutAFolderForThemNothingIsStored) {
  auto finished = Process({FERNCASE_BINARY, "defaults", "write", "Key", "1"})
                      .variable("HOME=")
                      .variable("XDG_CONFIG_HOME=")
                      .run();
  EXPECT_EQ(finished.exitCode, 1);
  EXPECT_EQ(finished.complaints,
            "ferncase: the domain ferncase cannot be stored: neither XDG_CONFIG_HOME nor HOME "
            "names a folder\n");
}

TEST_F(DefaultsCommandTest, ManyWritersAtOnceLoseNothing) {
  constexpr int kWriters = 4, kKeys = 8;
  std::vector<std::thread> writers;
  for (int writer = 0; writer < kWriters; ++writer)
    writers.emplace_back([this, writer] {
      for (int i = 0; i < kKeys; ++i)
        write({"Key" + std::to_string(writer * kKeys + i), std::to_string(writer)});
    });
  for (auto& writer : writers) writer.join();
  auto list = stored("ferncase");
  auto* values = cast<NSDictionary>(list);
  ASSERT_TRUE(values);
  EXPECT_EQ(values->count(), std::size_t{kWriters * kKeys});
}

// ---- What the defaults are for ---------------------------------------------------------------

/// Imports with a bundle that logs in an area.
class SwitchedLogTest : public DefaultsCommandTest {
 protected:
  std::string logOfImport(const Words& more = {}) const {
    _folder.write("a.eml", "");
    Words words{FERNCASE_BINARY, "import", "-v", "--importer",
                FERNCASE_BUNDLES_DIR "/Recorder.mdimporter"};
    words.insert(words.end(), more.begin(), more.end());
    words.push_back("a.eml");
    auto finished = run(words);
    EXPECT_EQ(finished.exitCode, 0);
    return finished.complaints;
  }
};

TEST_F(SwitchedLogTest, AnAreaIsOffUntilItIsSwitchedOn) {
  constexpr char kLines[] = "log: [RecorderArea] made\nlog: [RecorderArea] asked for URL\n";
  EXPECT_EQ(logOfImport(), "");
  write({"RecorderArea", "true"});
  EXPECT_EQ(logOfImport(), kLines);
  write({"RecorderArea", "-bool", "no"});
  EXPECT_EQ(logOfImport(), "");
  write({"KBXLoggerAllAreas", "YES"});
  EXPECT_EQ(logOfImport(), kLines);
  EXPECT_EQ(defaults({"delete", "KBXLoggerAllAreas"}).exitCode, 0);
  EXPECT_EQ(logOfImport(), "");
}

TEST_F(SwitchedLogTest, OptionsSayHowALineBegins) {
  write({"RecorderArea", "1"});
  write({"KBXLoggerPrefix", "Mine"});
  write({"KBXLoggerIncludeFile", "-bool", "yes"});
  write({"KBXLoggerIncludeLine", "-bool", "yes"});
  EXPECT_THAT(logOfImport(), HasSubstr("log: Mine [RecorderArea] Recorder:1 asked for URL\n"));
}

TEST_F(SwitchedLogTest, TheImportersLinesBeginAsTheDefaultsSay) {
  // A mail importer of another type, of which the importer says that it has no interface.
  std::filesystem::create_directories(_folder / "root/System/Library/Spotlight");
  std::filesystem::copy(FERNCASE_BUNDLES_DIR "/OtherType.mdimporter",
                        _folder / "root/System/Library/Spotlight/Mail.mdimporter",
                        std::filesystem::copy_options::recursive);
  write({"KBXLoggerPrefix", "Mine"});
  auto finished = Process({FERNCASE_BINARY, "import", "-v", "--force", "--importer",
                           FERNCASE_SPOTLIGHT_DIR "/FerncaseSpotlightImporter.mdimporter", "-"})
                      .input("Subject: x\n\n")
                      .variable("XDG_CONFIG_HOME=" + _folder.path().string())
                      .variable("KBX_SYSTEM_ROOT=" + (_folder / "root").string())
                      .run();
  EXPECT_EQ(finished.exitCode, 0);
  EXPECT_THAT(finished.complaints, HasSubstr("log: Mine No importer interface found"));
}

TEST_F(SwitchedLogTest, OnlyTheProgramsOwnDomainCounts) {
  write({"-g", "RecorderArea", "true"});
  write({"org.example", "RecorderArea", "true"});
  EXPECT_EQ(logOfImport({"-RecorderArea", "YES"}), "");
}

}  // namespace
}  // namespace kbx
