#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include "platform/accounts/UserAccounts.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/FakeProcessIdentity.h"

namespace kbx {
namespace {

constexpr std::uint32_t kNobodys = 0xFFFFFFF0;  // numbers this high are not given out

TEST(UserAccountsLinux, TheDatabaseKnowsTheSuperuser) {
  const auto entry = UserAccounts::current().entryOfUser(0);
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->name, ::getpwuid(0)->pw_name);
  EXPECT_EQ(entry->homeDirectory, ::getpwuid(0)->pw_dir);
}

TEST(UserAccountsLinux, AnUnknownUserHasNoEntry) {
  EXPECT_FALSE(UserAccounts::current().entryOfUser(kNobodys));
}

TEST(UserAccountsLinux, TheHomeFolderIsThatOfTheEnvironment) {
  FakeProcessIdentity process;
  process.user = 0;
  ScopedService<ProcessIdentity> installedProcess(process);
  FakeEnvironment environment{{"HOME=/sandbox/Data"}};
  ScopedService<Environment> installed(environment);
  EXPECT_EQ(UserAccounts::current().homeDirectory(), "/sandbox/Data");
  for (const char* entry : {"HOME=", "HOME=relative", "HOMER=/x"}) {
    environment.entries = {entry};
    EXPECT_EQ(UserAccounts::current().homeDirectory(), ::getpwuid(0)->pw_dir) << entry;
  }
}

TEST(UserAccountsLinux, AUserWithoutAnEntryHasWhatTheEnvironmentSays) {
  FakeProcessIdentity process;
  process.user = kNobodys;
  ScopedService<ProcessIdentity> installedProcess(process);
  FakeEnvironment environment{{"USER=ada"}};
  ScopedService<Environment> installed(environment);
  EXPECT_EQ(UserAccounts::current().loginName(), "ada");
  EXPECT_EQ(UserAccounts::current().homeDirectory(), "/");
}

TEST(UserAccountsLinux, TheLoginNameIsThatOfTheDatabase) {
  FakeProcessIdentity process;
  process.user = 0;
  ScopedService<ProcessIdentity> installedProcess(process);
  FakeEnvironment environment{{"USER=ada"}};
  ScopedService<Environment> installed(environment);
  EXPECT_EQ(UserAccounts::current().loginName(), ::getpwuid(0)->pw_name);
}

}  // namespace
}  // namespace kbx
