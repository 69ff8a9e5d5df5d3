#include "host/documents/Completions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/Process.h"

namespace kbx {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

class BashCompletionTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists("/bin/bash")) GTEST_SKIP() << "no bash";
    _folder.write("ferncase", bashCompletion(allOutlines()));
  }
  /// What the shell proposes for the last of the words.
  std::vector<std::string> proposed(const std::string& words) {
    auto finished = Process({"/bin/bash", "-c",
                             "set -u; source \"$0\"; COMP_WORDS=(" + words +
                                 "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _ferncase; "
                                 "printf '%s\\n' ${COMPREPLY[@]+\"${COMPREPLY[@]}\"}",
                             (_folder / "ferncase").string()})
                        .run();
    EXPECT_EQ(finished.complaints, "");
    auto lines = linesOf(finished.output);
    std::erase(lines, "");
    return lines;
  }

  TemporaryFolder _folder;
};

TEST_F(BashCompletionTest, CommandsOptionsAndWordsAreProposed) {
  EXPECT_THAT(proposed("ferncase imp"), ElementsAre("import", "importers"));
  EXPECT_THAT(proposed("ferncase import --nu"), ElementsAre("--null-marker"));
  EXPECT_THAT(proposed("ferncase import --stage ''"), ElementsAre("private", "beside"));
  EXPECT_THAT(proposed("ferncase import --stage = b"), ElementsAre("beside"));
  EXPECT_THAT(proposed("ferncase import --stage ="), ElementsAre("private", "beside"));
  EXPECT_THAT(proposed("ferncase import --name kMDItemSub"), ElementsAre("kMDItemSubject"));
  EXPECT_THAT(proposed("ferncase defaults de"), ElementsAre("delete"));
  EXPECT_THAT(proposed("ferncase help def"), ElementsAre("defaults"));
}

TEST_F(BashCompletionTest, TheRestIsLeftToTheShellsFiles) {
  for (auto words : {"ferncase import a", "ferncase import --importer ''", "ferncase nothing -"})
    EXPECT_THAT(proposed(words), IsEmpty()) << words;
}

TEST_F(BashCompletionTest, EveryOptionIsProposed) {
  for (const CommandOutline& command : allOutlines()) {
    const auto found = proposed("ferncase " + command.name + " -");
    for (const OptionOutline& option : command.options)
      for (const std::string& name : option.names)
        EXPECT_THAT(found, Contains(name)) << command.name;
  }
}

TEST(ZshCompletion, IsReadWithoutComplaintAndHoldsEveryOption) {
  const auto commands = allOutlines();
  const std::string script = zshCompletion(commands);
  EXPECT_TRUE(script.starts_with("#compdef ferncase\n"));
  for (const CommandOutline& command : commands)
    for (const OptionOutline& option : command.options)
      for (const std::string& name : option.names)
        EXPECT_THAT(script, HasSubstr(name +
                                      (option.value.empty()     ? ""
                                       : name.starts_with("--") ? "="
                                                                : "+") +
                                      "["));
  if (!std::filesystem::exists("/usr/bin/zsh")) GTEST_SKIP() << "no zsh";
  TemporaryFolder folder;
  folder.write("_ferncase", script);
  auto finished = Process({"/usr/bin/zsh", "-f", "-c",
                           "autoload -U compinit; compinit -D -u; source $0 && "
                           "print -r -- $_comps[ferncase]",
                           (folder / "_ferncase").string()})
                      .run();
  EXPECT_EQ(finished.output, "_ferncase\n");
  EXPECT_EQ(finished.complaints, "");
}

TEST(ZshCompletion, SignsOfTheShellAreEscaped) {
  const CommandOutline command{"x", "It's: done.", "", "", {{{"--y"}, "", "a [b] 'c'"}}};
  const std::string script = zshCompletion({&command, 1});
  EXPECT_THAT(script,
              AllOf(HasSubstr("'x:It'\\''s\\: done.'"), HasSubstr("'--y[a \\[b\\] '\\''c'\\'']'")));
}

TEST(FishCompletion, ProposesEveryOption) {
  const auto commands = allOutlines();
  const std::string script = fishCompletion(commands);
  for (const CommandOutline& command : commands)
    for (const OptionOutline& option : command.options)
      EXPECT_THAT(script, HasSubstr("from " + command.name + "' -" +
                                    (option.names[0].starts_with("--")
                                         ? "l " + option.names[0].substr(2)
                                         : "s " + option.names[0].substr(1))));
  if (!std::filesystem::exists("/usr/bin/fish")) GTEST_SKIP() << "no fish";
  TemporaryFolder folder;
  folder.write("ferncase.fish", script);
  auto finished = Process({"/usr/bin/fish", "-N", "-c",
                           "source $argv[1]; complete -C 'ferncase import --nu'; "
                           "complete -C 'ferncase import --stage '",
                           (folder / "ferncase.fish").string()})
                      .variable("HOME=" + folder.path().string())
                      .run();
  EXPECT_THAT(finished.output,
              AllOf(HasSubstr("--null-marker\t"), HasSubstr("beside\t"), Not(HasSubstr("--name"))));
  EXPECT_EQ(finished.complaints, "");
}

}  // namespace
}  // namespace kbx
