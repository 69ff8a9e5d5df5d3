#include "host/CommandLine.h"

#include <gtest/gtest.h>

#include "tests/support/CommandRun.h"
#include "tests/support/TemporaryPreferences.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(CommandLine, HelpThatIsAskedForIsOutput) {
  for (std::vector<std::string> arguments : {std::vector<std::string>{"--help"},
                                             {"-h"},
                                             {"import", "--help"},
                                             {"import", "-h", "x"},
                                             {"help"},
                                             {"help", "import"},
                                             {"--help", "import"},
                                             {"import", "help", "-h"}}) {
    auto [code, output, complaints] = answerTo(arguments);
    EXPECT_EQ(code, kDone);
    EXPECT_NE(output.find("Usage: ferncase"), std::string::npos);
    EXPECT_EQ(complaints, "");
  }
}

TEST(CommandLine, TheGeneralHelpListsTheCommands) {
  EXPECT_NE(answerTo({"--help"}).output.find("\n  import      Print"), std::string::npos);
  EXPECT_NE(answerTo({"--help"}).output.find("\n  defaults    Read"), std::string::npos);
}

TEST(CommandLine, HelpForACommandIsThatOfTheCommand) {
  for (auto word : {"help", "--help", "-h"})
    EXPECT_EQ(answerTo({word, "import"}).output, answerTo({"import", "--help"}).output);
}

TEST(CommandLine, BehindTheMarkNothingIsAnOption) {
  auto answer = answerTo({"import", "--importer=/gone", "--", "--json=false", "--name="});
  EXPECT_EQ(answer.code, kNoneDelivered);
  EXPECT_EQ(answer.complaints, "ferncase: /gone: No such file or directory: /gone\n");
}

TEST(CommandLine, ADashAndACapitalLetterBeginADefaultOfThisRun) {
  TemporaryPreferences preferences;
  auto* defaults = NSUserDefaults::standardUserDefaults();
  answerTo({"import", "-First", "-5", "-v", "-Second", "two words", "--importer", "/gone", "a",
            "--", "-Third", "x"});
  EXPECT_EQ(defaults->integerForKey("First"_ns), -5);
  EXPECT_EQ(text(defaults->stringForKey("Second"_ns)), "two words");
  EXPECT_EQ(defaults->volatileDomainForName(NSArgumentDomain())->count(), 2u);
  answerTo({"import", "--importer", "/gone", "a"});
  EXPECT_FALSE(defaults->objectForKey("First"_ns));
}

TEST(CommandLine, TheVersionIsOneLine) {
  auto [code, output, complaints] = answerTo({"--version"});
  EXPECT_EQ(code, kDone);
  EXPECT_TRUE(output.starts_with("ferncase 0."));
  EXPECT_EQ(output.find('\n'), output.size() - 1);
  EXPECT_EQ(complaints, "");
}

TEST(CommandLine, NoArgumentsAreAnsweredWithHelpThatIsNoOutput) {
  auto [code, output, complaints] = answerTo({});
  EXPECT_EQ(code, kMisused);
  EXPECT_EQ(output, "");
  EXPECT_NE(complaints.find("Usage: ferncase"), std::string::npos);
}

TEST(CommandLine, WrongUsageIsToldWithAHint) {
  struct Case {
    std::vector<std::string> arguments;
    const char *complaint, *hint;
  };
  for (const auto& [arguments, complaint, hint] :
       {Case{{"frob"}, "unknown command frob", "--help"},
        {{"--frob"}, "unknown option --frob", "--help"},
        {{"x\ny"}, "unknown command x\\ny", "--help"},
        {{"import"}, "import needs a PATH", "import --help"},
        {{"import", "--"}, "import needs a PATH", "import --help"},
        {{"import", "--frob", "a"}, "unknown option --frob", "import --help"},
        {{"import", "a", "-x"}, "unknown option -x", "import --help"},
        {{"import", "-vx", "a"}, "unknown option -x", "import --help"},
        {{"import", "-V", "a"}, "unknown option -V", "import --help"},
        {{"import", "a", "-Key"}, "-Key needs a value", "import --help"},
        {{"defaults", "frob"},
         "defaults cannot frob: it can read, write and delete",
         "defaults --help"},
        {{"import", "--importer"}, "--importer: 1 required BUNDLE missing", "import --help"},
        {{"import", "--importer", "", "a"}, "--importer needs a BUNDLE", "import --help"},
        {{"import", "--json", "--ndjson", "a"},
         "--json, --ndjson, --plist and --raw exclude each other",
         "import --help"},
        {{"import", "--force", "--raw-fallback", "a"},
         "--force and --raw-fallback exclude each other",
         "import --help"},
        {{"import", "--raw", "a"}, "--raw needs --name", "import --help"},
        {{"import", "--raw", "--name", "x", "--json", "a"},
         "--json, --ndjson, --plist and --raw exclude each other",
         "import --help"},
        {{"import", "--plist", "--ndjson", "a"},
         "--json, --ndjson, --plist and --raw exclude each other",
         "import --help"},
        {{"attributes", "x"}, "attributes takes no x", "attributes --help"},
        {{"import", "--importer=", "x", "a"}, "--importer needs a BUNDLE", "import --help"},
        {{"import", "--files-from=", "a"}, "--files-from needs a FILE", "import --help"},
        {{"import", "--name=", "a"}, "--name needs an ATTRIBUTE", "import --help"},
        {{"import", "--json=false", "a"}, "--json takes no value", "import --help"},
        {{"import", "--verbose=", "a"}, "--verbose takes no value", "import --help"},
        {{"import", "--stage=private", "--stage=beside", "a"},
         "--stage may be given once",
         "import --help"},
        {{"import", "-0", "a"}, "-0 needs --files-from", "import --help"},
        {{"import", "--null-marker=x", "a"}, "--null-marker needs --raw", "import --help"},
        {{"import", "-", "-"}, "standard input can be read once", "import --help"},
        {{"import", "-", "--files-from=-"}, "standard input can be read once", "import --help"},
        {{"help", "frob"}, "unknown command frob", "--help"},
        {{"import", "--stage=nowhere", "a"}, "--stage is private or beside", "import --help"}}) {
    auto answer = answerTo(arguments);
    EXPECT_EQ(answer.code, kMisused);
    EXPECT_EQ(answer.output, "");
    EXPECT_EQ(answer.complaints, std::string("ferncase: ") + complaint +
                                     "\nferncase: try \"ferncase " + hint + "\"\n");
  }
}

}  // namespace
}  // namespace kbx
