#include "platform/accounts/NSPathUtilities.h"

#include <gtest/gtest.h>

#include "platform/files/FileNames.h"
#include "tests/support/FakeUserAccounts.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(NSPathUtilities, TheAccountsSayWhoTheUserIs) {
  FakeUserAccounts accounts;
  ScopedService<UserAccounts> installed(accounts);
  EXPECT_EQ(text(NSUserName()), "ada");
  EXPECT_EQ(text(NSHomeDirectory()), "/home/ada");
}

TEST(NSPathUtilities, NamesThatAreNotUTF8KeepTheirBytes) {
  FakeUserAccounts accounts;
  ScopedService<UserAccounts> installed(accounts);
  accounts.login = "ren\xE9";
  accounts.home = "/home/ren\xE9";
  EXPECT_EQ(fileSystemRepresentation(NSUserName()), "ren\xE9");
  EXPECT_EQ(fileSystemRepresentation(NSHomeDirectory()), "/home/ren\xE9");
}

}  // namespace
}  // namespace kbx
