#include "host/store/StoreOption.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>

#include "host/console/Command.h"
#include "tests/support/CommandRun.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

using testing::HasSubstr;

std::string pathFor(std::vector<std::string> arguments) {
  CLI::App app;
  StoreOption option;
  option.declareOn(app);
  app.parse(std::move(arguments));
  return option.path();
}

TEST(StoreOption, TheUsersOwnStoreIsTheDefault) {
  FakeEnvironment environment({"XDG_DATA_HOME=/data"});
  ScopedService<Environment> installed(environment);
  EXPECT_EQ(pathFor({}), "/data/ferncase/mail.db");
  EXPECT_EQ(pathFor({"--db=mail.db"}), "mail.db");
}

TEST(StoreOption, WithoutAStoreEachCommandRefusesToGuess) {
  FakeEnvironment environment;
  ScopedService<Environment> installed(environment);
  for (auto command : {"index", "watch", "show", "export", "search"}) {
    const auto [code, output, complaints] = answerTo({command, "/gone"});
    EXPECT_EQ(code, kMisused) << command;
    EXPECT_THAT(
        complaints,
        HasSubstr("neither XDG_DATA_HOME nor HOME says where the store is; --db FILE does"));
  }
}

TEST(StoreOption, AnEmptyNameDoesNotStandForTheUsersOwnStore) {
  FakeEnvironment environment({"XDG_DATA_HOME=/data"});
  ScopedService<Environment> installed(environment);
  for (auto command : {"index", "watch", "show", "export", "search"}) {
    const auto [code, output, complaints] = answerTo({command, "--db=", "/gone"});
    EXPECT_EQ(code, kMisused) << command;
    EXPECT_THAT(complaints, HasSubstr("--db needs a FILE"));
  }
}

TEST(StoreOption, AMissingStoreHasAnExitCodeOfItsOwn) {
  const TemporaryFolder folder;
  const std::string option = "--db=" + (folder / "mail.db").string();
  for (const std::vector<std::string>& words : {std::vector<std::string>{"search", "x"},
                                                {"show", "x"},
                                                {"export"},
                                                {"export", "x"},
                                                {"index", "status"},
                                                {"index", "check"}}) {
    std::vector<std::string> arguments = words;
    arguments.push_back(option);
    EXPECT_EQ(answerTo(arguments).code, kStoreFailed) << words.front();
  }
}

}  // namespace
}  // namespace kbx
