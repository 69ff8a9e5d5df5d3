#include "host/documents/ManualCommand.h"

#include <gtest/gtest.h>

#include "host/CommandLine.h"
#include "host/documents/Completions.h"
#include "host/documents/ManualPage.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

struct Answer {
  ExitCode code;
  std::string output, complaints;
};

Answer run(const std::vector<std::string>& arguments) {
  StringOutput output, complaints;
  Diagnostics diagnostics(complaints);
  Console console{output, diagnostics};
  const ExitCode code = runCommandLine(arguments, console);
  return {code, output.text(), complaints.text()};
}

TEST(ManualCommand, PrintsThePageOfACommandOrTheGeneralOne) {
  const auto commands = allOutlines();
  EXPECT_EQ(run({"manual"}).output, manualPage(commands));
  EXPECT_EQ(run({"manual", commands[0].name}).output, manualPage(commands[0]));
}

TEST(ManualCommand, WritesAllPagesIntoAFolder) {
  TemporaryFolder folder;
  EXPECT_EQ(run({"manual", "--into", folder.path().string()}).code, kDone);
  const auto commands = allOutlines();
  EXPECT_EQ(folder.count(), commands.size() + 1);
  for (const auto& command : commands)
    EXPECT_EQ(folder.read("ferncase-" + command.name + ".1"), manualPage(command));
  auto failed = run({"manual", "--into", (folder / "gone").string()});
  EXPECT_EQ(failed.code, kBroken);
  EXPECT_NE(failed.complaints.find("gone/ferncase.1: No such file"), std::string::npos);
}

TEST(ManualCommand, WrongUsageIsTold) {
  EXPECT_EQ(run({"manual", "frob"}).code, kMisused);
  EXPECT_EQ(run({"manual", "import", "x"}).code, kMisused);
  EXPECT_EQ(run({"completion"}).code, kMisused);
  EXPECT_EQ(run({"completion", "csh"}).code, kMisused);
}

TEST(CompletionCommand, PrintsTheScriptOfAShell) {
  const auto commands = allOutlines();
  EXPECT_EQ(run({"completion", "bash"}).output, bashCompletion(commands));
  EXPECT_EQ(run({"completion", "zsh"}).output, zshCompletion(commands));
  EXPECT_EQ(run({"completion", "fish"}).output, fishCompletion(commands));
}

}  // namespace
}  // namespace kbx
