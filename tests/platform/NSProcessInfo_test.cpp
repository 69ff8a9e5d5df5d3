#include "platform/system/NSProcessInfo.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>

#include "tests/support/FakeAutomaticTermination.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/FakeOperatingSystem.h"
#include "tests/support/FakeProcessIdentity.h"

namespace kbx {
namespace {

TEST(NSProcessInfo, IsOneObjectOfTheProcess) {
  EXPECT_TRUE(isSame(NSProcessInfo::processInfo(), NSProcessInfo::processInfo()));
}

TEST(NSProcessInfo, TheProcessNameIsTheWholeNameOfTheExecutable) {
  FakeProcessIdentity identity("A name of more than sixteen characters");
  ScopedService<ProcessIdentity> installed(identity);
  EXPECT_EQ(NSProcessInfo::processInfo()->processName()->lossyUTF8(),
            "A name of more than sixteen characters");
}

TEST(NSProcessInfo, AMalformedProcessNameIsStillAName) {
  FakeProcessIdentity identity("a\xFF");
  ScopedService<ProcessIdentity> installed(identity);
  EXPECT_EQ(NSProcessInfo::processInfo()->processName()->lossyUTF8(), "a\xEF\xBF\xBD");
}

TEST(NSProcessInfo, TheEnvironmentIsReadAtTheFirstEqualsSign) {
  FakeEnvironment environment({"A=1", "EMPTY=", "PATH=a=b", "no separator"});
  ScopedService<Environment> installed(environment);
  auto variables = NSProcessInfo::processInfo()->environment();
  EXPECT_EQ(variables->count(), 3u);
  EXPECT_TRUE(isEqual(variables->objectForKey("A"_ns), "1"_ns));
  EXPECT_TRUE(isEqual(variables->objectForKey("EMPTY"_ns), ""_ns));
  EXPECT_TRUE(isEqual(variables->objectForKey("PATH"_ns), "a=b"_ns));
  EXPECT_EQ(variables->objectForKey("HOME"_ns), nullptr);
}

TEST(NSProcessInfo, OfTwoVariablesWithOneNameTheFirstCounts) {
  FakeEnvironment environment({"A=1", "A=2"});
  ScopedService<Environment> installed(environment);
  EXPECT_TRUE(isEqual(NSProcessInfo::processInfo()->environment()->objectForKey("A"_ns), "1"_ns));
}

TEST(NSProcessInfo, TheUniqueStringIsAUuidAProcessNumberAndASequenceNumber) {
  FakeProcessIdentity identity;
  ScopedService<ProcessIdentity> installed(identity);
  const std::regex form(
      "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}-4711-[0-9A-F]{16}");
  const std::string text = NSProcessInfo::processInfo()->globallyUniqueString()->lossyUTF8();
  EXPECT_TRUE(std::regex_match(text, form)) << text;
}

TEST(NSProcessInfo, NoTwoUniqueStringsAreEqualInAnyPart) {
  std::set<std::string> uuids, sequenceNumbers;
  for (int i = 0; i < 1000; ++i) {
    const std::string text = NSProcessInfo::processInfo()->globallyUniqueString()->lossyUTF8();
    uuids.insert(text.substr(0, 36));
    sequenceNumbers.insert(text.substr(text.rfind('-') + 1));
  }
  EXPECT_EQ(uuids.size(), 1000u);
  EXPECT_EQ(sequenceNumbers.size(), 1000u);
}

TEST(NSProcessInfo, VersionsCompareByMajorThenMinorThenPatch) {
  FakeOperatingSystem system(1677.104, {10, 15, 4});
  ScopedService<OperatingSystem> installed(system);
  struct Case {
    NSOperatingSystemVersion version;
    bool isAtLeast;
  };
  for (auto [version, isAtLeast] : {Case{{10, 15, 4}, true},
                                    {{10, 15, 5}, false},
                                    {{10, 15, 3}, true},
                                    {{10, 16, 0}, false},
                                    {{10, 14, 9}, true},
                                    {{11, 0, 0}, false},
                                    {{9, 99, 99}, true},
                                    {{10, -1, 99}, true}})
    EXPECT_EQ(NSProcessInfo::processInfo()->isOperatingSystemAtLeastVersion(version), isAtLeast)
        << version.majorVersion << '.' << version.minorVersion << '.' << version.patchVersion;
}

TEST(NSProcessInfo, AutomaticTerminationGoesToItsService) {
  FakeAutomaticTermination termination;
  ScopedService<AutomaticTermination> installed(termination);
  auto* info = NSProcessInfo::processInfo();
  EXPECT_FALSE(info->automaticTerminationSupportEnabled());
  info->setAutomaticTerminationSupportEnabled(true);
  info->disableAutomaticTermination("busy"_ns);
  info->enableAutomaticTermination("busy"_ns);
  EXPECT_TRUE(info->automaticTerminationSupportEnabled());
  EXPECT_EQ(termination.calls,
            (std::vector<std::string>{"support on", "disable: busy", "enable: busy"}));
}

}  // namespace
}  // namespace kbx
