#include "host/documents/ManualCommand.h"

#include <gtest/gtest.h>

#include "host/documents/Completions.h"
#include "host/documents/ManualPage.h"
#include "tests/support/CommandRun.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

TEST(ManualCommand, PrintsThePageOfACommandOrTheGeneralOne) {
  const auto commands = allOutlines();
  EXPECT_EQ(answerTo({"manual"}).output, manualPage(commands));
  EXPECT_EQ(answerTo({"manual", commands[0].name}).output, manualPage(commands[0]));
}

TEST(ManualCommand, WritesAllPagesIntoAFolder) {
  TemporaryFolder folder;
  EXPECT_EQ(answerTo({"manual", "--into", folder.path().string()}).code, kDone);
  const auto commands = allOutlines();
  EXPECT_EQ(folder.count(), commands.size() + 1);
  for (const auto& command : commands)
    EXPECT_EQ(folder.read("ferncase-" + command.name + ".1"), manualPage(command));
  auto failed = answerTo({"manual", "--into", (folder / "gone").string()});
  EXPECT_EQ(failed.code, kBroken);
  EXPECT_NE(failed.complaints.find("gone/ferncase.1: No such file"), std::string::npos);
}

TEST(ManualCommand, WrongUsageIsTold) {
  EXPECT_EQ(answerTo({"manual", "frob"}).code, kMisused);
  EXPECT_EQ(answerTo({"manual", "import", "x"}).code, kMisused);
  EXPECT_EQ(answerTo({"completion"}).code, kMisused);
  EXPECT_EQ(answerTo({"completion", "csh"}).code, kMisused);
}

TEST(CompletionCommand, PrintsTheScriptOfAShell) {
  const auto commands = allOutlines();
  EXPECT_EQ(answerTo({"completion", "bash"}).output, bashCompletion(commands));
  EXPECT_EQ(answerTo({"completion", "zsh"}).output, zshCompletion(commands));
  EXPECT_EQ(answerTo({"completion", "fish"}).output, fishCompletion(commands));
}

}  // namespace
}  // namespace kbx
