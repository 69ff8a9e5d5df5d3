#include "host/doctor/DoctorCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <nlohmann/json.hpp>

#include "host/doctor/Examinations.h"
#include "tests/support/Process.h"

namespace kbx {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

class DoctorCommandTest : public testing::Test {
 protected:
  DoctorCommandTest() {
    for (auto name : {"home", "run", "root"}) std::filesystem::create_directory(_folder / name);
  }

  /// variable  one more than those that lead to folders of the test
  Finished doctor(const std::string& option = {}, const std::string& variable = "X=") {
    std::vector<std::string> command{FERNCASE_BINARY, "doctor"};
    if (!option.empty()) command.push_back(option);
    return Process(std::move(command))
        .variable("HOME=" + (_folder / "home").string())
        .variable("XDG_RUNTIME_DIR=" + (_folder / "run").string())
        .variable("XDG_CONFIG_HOME=" + (_folder / "home").string())
        .variable("XDG_DATA_HOME=" + (_folder / "home").string())
        .variable(variable)
        .run();
  }

  TemporaryFolder _folder;
};

TEST_F(DoctorCommandTest, WhereNothingIsBrokenTheCodeIsZero) {
  const auto finished = doctor();
  EXPECT_EQ(finished.exitCode, 0) << finished.output;
  EXPECT_THAT(finished.output, HasSubstr("ok       importer can be loaded: "));
  EXPECT_THAT(finished.output, HasSubstr("ok       a message can be imported\n"));
  EXPECT_THAT(finished.output, HasSubstr("no preferences are set"));
  EXPECT_THAT(finished.output, Not(HasSubstr("problem")));
  EXPECT_EQ(finished.complaints, "");
  EXPECT_TRUE(std::filesystem::is_empty(_folder / "run"));
}

TEST_F(DoctorCommandTest, MissingImportersAreAProblem) {
  const auto finished = doctor("--json", "KBX_SYSTEM_ROOT=" + (_folder / "root").string());
  EXPECT_EQ(finished.exitCode, 1);
  int problems = 0;
  for (const auto& finding : json::parse(finished.output)) {
    const std::string level = finding.at("level");
    problems += level == "problem";
    EXPECT_EQ(finding.at("advice").is_null(), level == "ok") << finding;
  }
  EXPECT_EQ(problems, 3) << finished.output;  // two kinds of messages, and the import
}

TEST_F(DoctorCommandTest, AnImporterThatCannotBeLoadedIsAProblem) {
  std::filesystem::create_directories(_folder / "home/ferncase/Library/Spotlight/X.mdimporter");
  const auto finished = doctor();
  EXPECT_EQ(finished.exitCode, 1);
  EXPECT_THAT(finished.output, HasSubstr("problem  importer cannot be loaded: "));
  EXPECT_THAT(finished.output, HasSubstr("         Remove it or install it again.\n"));
}

TEST_F(DoctorCommandTest, DamagedPreferencesAreAProblem) {
  std::filesystem::create_directories(_folder / "home/ferncase/preferences");
  _folder.write("home/ferncase/preferences/ferncase.plist", "damaged");
  const auto finished = doctor();
  EXPECT_EQ(finished.exitCode, 1);
  EXPECT_THAT(finished.output, HasSubstr("problem  the preferences cannot be read: "));
}

TEST_F(DoctorCommandTest, AStoreThatCannotBeReadIsAProblem) {
  EXPECT_THAT(doctor().output, HasSubstr("ok       nothing is indexed yet: "));
  std::filesystem::create_directory(_folder / "home/ferncase");
  _folder.write("home/ferncase/mail.db", "no store");
  const auto finished = doctor();
  EXPECT_EQ(finished.exitCode, 1);
  EXPECT_THAT(finished.output, HasSubstr("problem  the store cannot be used: "));
  EXPECT_THAT(finished.output, HasSubstr("         Move it away and index the folders again"));
}

TEST_F(DoctorCommandTest, AStagingFolderOnDiskIsAWarning) {
  if (isInMemory(_folder.path().string())) GTEST_SKIP() << "the temporary folder is in memory";
  const auto finished = doctor();
  EXPECT_EQ(finished.exitCode, 0);
  EXPECT_THAT(finished.output, HasSubstr("warning  the staging folder is not in memory: "));
}

TEST(Examinations, ProtectionsThatDoNotHoldAreWarnings) {
  std::vector<Finding> findings;
  examineProtections({0, false, ENOSYS, EINVAL}, findings);
  ASSERT_EQ(findings.size(), 2u);
  EXPECT_EQ(findings[0].level, Finding::Level::Warning);
  EXPECT_THAT(findings[0].what, HasSubstr("no Landlock: Function not implemented"));
  EXPECT_EQ(findings[1].level, Finding::Level::Warning);
  EXPECT_THAT(findings[1].what, HasSubstr("no seccomp: Invalid argument"));
  findings.clear();
  examineProtections({5, true}, findings);
  ASSERT_EQ(findings.size(), 2u);
  for (const Finding& finding : findings) EXPECT_EQ(finding.level, Finding::Level::Fine);
}

}  // namespace
}  // namespace kbx
