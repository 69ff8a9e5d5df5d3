#include "platform/system/SystemRoot.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/FakeEnvironment.h"

using namespace kbx;

TEST(SystemRoot, PathsOfTheSystemLieBelowTheFolderThatTheVariableNames) {
  FakeEnvironment environment({"A=b", "KBX_SYSTEM_ROOT=/some/root"});
  ScopedService<Environment> installed(environment);
  EXPECT_EQ(pathBelowSystemRoot("/System/Library/Spotlight/Mail.mdimporter"),
            "/some/root/System/Library/Spotlight/Mail.mdimporter");
  EXPECT_EQ(pathBelowSystemRoot("/Library/Spotlight"), "/some/root/Library/Spotlight");
}

TEST(SystemRoot, OtherPathsStayAsTheyAre) {
  FakeEnvironment environment({"KBX_SYSTEM_ROOT=/some/root"});
  ScopedService<Environment> installed(environment);
  for (const char* path : {"/", "", "/home/System/x", "/Systems/x", "/System", "/Library",
                           "System/Library/x", "/var/Library/x"})
    EXPECT_EQ(pathBelowSystemRoot(path), path);
}

TEST(SystemRoot, SlashesBehindTheRootAreLeftOut) {
  FakeEnvironment environment({"KBX_SYSTEM_ROOT=/some/root//"});
  ScopedService<Environment> installed(environment);
  EXPECT_EQ(pathBelowSystemRoot("/System/x"), "/some/root/System/x");
}

TEST(SystemRoot, WithoutTheVariableItIsTheFolderOfThePlatformLibrary) {
  for (auto variables : {std::vector<std::string>{}, {"KBX_SYSTEM_ROOT="}}) {
    FakeEnvironment environment(variables);
    ScopedService<Environment> installed(environment);
    const auto expected = std::filesystem::canonical(FERNCASE_BUILD_DIR) / "lib/ferncase/System/x";
    EXPECT_EQ(pathBelowSystemRoot("/System/x"), expected.string());
  }
}
