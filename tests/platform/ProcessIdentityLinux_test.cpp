#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "platform/system/ProcessIdentity.h"

namespace kbx {
namespace {

TEST(ProcessIdentityLinux, TheNameIsThatOfTheExecutableFile) {
  const auto path = std::filesystem::read_symlink("/proc/self/exe");
  EXPECT_EQ(ProcessIdentity::current().processName(), path.filename().string());
}

TEST(ProcessIdentityLinux, TheNumbersAreThoseOfTheProcess) {
  EXPECT_EQ(ProcessIdentity::current().processIdentifier(), getpid());
  EXPECT_EQ(ProcessIdentity::current().realUserIdentifier(), getuid());
}

}  // namespace
}  // namespace kbx
