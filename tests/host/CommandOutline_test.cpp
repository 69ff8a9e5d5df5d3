#include "host/documents/CommandOutline.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>

#include "tests/support/CommandRun.h"

namespace kbx {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class Example final : public Command {
 public:
  explicit Example(std::string operands = "") : _operands(std::move(operands)) {}
  std::string_view name() const override { return "example"; }
  std::string_view summary() const override { return "Do it."; }
  std::string_view operands() const override { return _operands; }
  void declareOptions(CLI::App& options) override {
    options.add_flag("-q,--quiet", _flag, "Say nothing");
    options.add_option("--from", _text, "Where from")->type_name("FILE");
    options.add_option("--name", _texts, "Which")->type_name("ATTRIBUTE")->allow_extra_args(false);
  }
  ExitCode run(std::vector<std::string>, Console&) override { return kDone; }

 private:
  std::string _operands;
  bool _flag = false;
  std::string _text;
  std::vector<std::string> _texts;
};

TEST(CommandOutline, OptionsAreThoseThatTheCommandDeclares) {
  Example example;
  const auto outline = outlineOf(example);
  ASSERT_EQ(outline.options.size(), 4u);
  EXPECT_THAT(outline.options[0].names, ElementsAre("-h", "--help"));
  EXPECT_THAT(outline.options[1].names, ElementsAre("-q", "--quiet"));
  EXPECT_EQ(outline.options[1].value, "");
  EXPECT_EQ(outline.options[1].description, "Say nothing");
  EXPECT_EQ(outline.options[2].value, "FILE");
  EXPECT_TRUE(outline.options[2].takesPath());
  EXPECT_FALSE(outline.options[2].mayBeRepeated);
  EXPECT_TRUE(outline.options[3].mayBeRepeated);
  EXPECT_THAT(outline.options[3].valueWords(), Contains("kMDItemSubject"));
  EXPECT_FALSE(outline.options[3].takesPath());
}

TEST(CommandOutline, OperandsInSmallLettersAreWords) {
  struct Case {
    const char* operands;
    std::vector<std::string> words;
  };
  for (const auto& [operands, words] : {Case{"read|write [DOMAIN] KEY", {"read", "write"}},
                                        {"[DIR...] | status | check", {"status", "check"}},
                                        {"PATH...", {}},
                                        {"", {}}}) {
    Example example(operands);
    EXPECT_EQ(outlineOf(example).operandWords(), words) << operands;
  }
}

TEST(CommandOutline, EveryOptionOfEveryCommandIsDescribed) {
  const auto outlines = allOutlines();
  EXPECT_GE(outlines.size(), 6u);
  for (const auto& command : outlines) {
    EXPECT_TRUE(command.summary.ends_with('.')) << command.name;
    for (const auto& option : command.options) {
      EXPECT_FALSE(option.description.empty()) << command.name << " " << option.names.back();
      EXPECT_FALSE(option.description.ends_with('.')) << command.name << " " << option.names.back();
    }
  }
}

/// What the command answers to this value of its option, with nothing to work on.
ExitCode codeOf(const CommandOutline& command, const OptionOutline& option,
                const std::string& word) {
  std::vector<std::string> arguments{command.name, option.names.back() + "=" + word, "/gone"};
  if (command.name == "import") arguments.push_back("--importer=/gone");
  for (const auto& other : command.options)
    if (other.names.back() == "--db") arguments.push_back("--db=/gone/mail.db");
  return answerTo(arguments).code;
}

TEST(CommandOutline, EveryWordThatIsListedForAValueIsAccepted) {
  for (const auto& command : allOutlines())
    for (const auto& option : command.options)
      for (const auto& word : option.valueWords())
        EXPECT_NE(codeOf(command, option, word), kMisused)
            << command.name << " " << option.names.back() << " " << word;
}

}  // namespace
}  // namespace kbx
