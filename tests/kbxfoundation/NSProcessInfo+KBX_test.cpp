#include "NSProcessInfo+KBX.h"

#include <gtest/gtest.h>

#include "platform/objects/NSClass.h"
#include "platform/preferences/NSUserDefaults.h"
#include "platform/system/NSProcessInfo.h"
#include "tests/support/FakeAutomaticTermination.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/FakeOperatingSystem.h"
#include "tests/support/FakeResourceLimits.h"
#include "tests/support/FakeSystemControl.h"
#include "tests/support/TemporaryPreferences.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace std::string_literals;

// ---- The system's version ------------------------------------------------------------------

TEST(NSProcessInfoKBX, TheOldestReleasesAreToldByTheFloorOfTheFoundationNumber) {
  struct Case {
    double number;
    bool is10_8, is10_9, is10_10;
  };
  for (auto [number, is10_8, is10_9, is10_10] : {Case{0, false, false, false},
                                                 {833.1, false, false, false},
                                                 {833.25, false, false, false},
                                                 {833.99, false, false, false},
                                                 {834.0, true, false, false},
                                                 {945.0, true, false, false},
                                                 {945.11, true, false, false},
                                                 {946.0, true, true, false},
                                                 {1056.0, true, true, false},
                                                 {1056.13, true, true, false},
                                                 {1056.99, true, true, false},
                                                 {1057.0, true, true, true},
                                                 {1677.104, true, true, true}}) {
    SCOPED_TRACE(number);
    FakeOperatingSystem system(number, {10, 15, 7});
    ScopedService<OperatingSystem> installed(system);
    EXPECT_EQ(kbxIsMacOSAtLeast10_8(), is10_8);
    EXPECT_EQ(kbxIsMacOSAtLeast10_9(), is10_9);
    EXPECT_EQ(kbxIsMacOSAtLeast10_10(), is10_10);
  }
}

TEST(NSProcessInfoKBX, TheBetaIsToldByTheWholeFoundationNumber) {
  for (auto [number, isAtLeast] : {std::pair{1665.0, false},
                                   {1665.09, false},
                                   {1665.1, true},
                                   {1665.2, true},
                                   {1664.9, false},
                                   {1666.0, true}}) {
    FakeOperatingSystem system(number, {10, 14, 0});
    ScopedService<OperatingSystem> installed(system);
    EXPECT_EQ(kbxIsMacOSAtLeast10_15DeveloperBeta5(), isAtLeast) << number;
  }
}

TEST(NSProcessInfoKBX, LaterReleasesAreToldByTheVersion) {
  struct Case {
    const char* name;
    bool (*isAtLeast)();
    NSOperatingSystemVersion first, before;
  };
  for (auto [name, isAtLeast, first, before] :
       {Case{"10.11", kbxIsMacOSAtLeast10_11, {10, 11, 0}, {10, 10, 99}},
        {"10.12", kbxIsMacOSAtLeast10_12, {10, 12, 0}, {10, 11, 6}},
        {"10.12.2", kbxIsMacOSAtLeast10_12_2, {10, 12, 2}, {10, 12, 1}},
        {"10.13", kbxIsMacOSAtLeast10_13, {10, 13, 0}, {10, 12, 6}},
        {"10.13.2", kbxIsMacOSAtLeast10_13_2, {10, 13, 2}, {10, 13, 1}},
        {"10.14", kbxIsMacOSAtLeast10_14, {10, 14, 0}, {10, 13, 6}},
        {"10.15", kbxIsMacOSAtLeast10_15, {10, 15, 0}, {10, 14, 6}},
        {"10.15.4", kbxIsMacOSAtLeast10_15_4, {10, 15, 4}, {10, 15, 3}}}) {
    SCOPED_TRACE(name);
    FakeOperatingSystem system(1677.104, first);
    ScopedService<OperatingSystem> installed(system);
    EXPECT_TRUE(isAtLeast());
    system.reportedVersion = before;
    EXPECT_FALSE(isAtLeast());
    system.reportedVersion = {11, 0, 0};
    EXPECT_TRUE(isAtLeast());
  }
}

TEST(NSProcessInfoKBX, TheVersionQueryIsNotTrustedBefore10_10) {
  FakeOperatingSystem system(1056.13, {10, 15, 0});
  ScopedService<OperatingSystem> installed(system);
  EXPECT_FALSE(kbxIsMacOSAtLeast10_15());
  EXPECT_FALSE(kbxIsOperatingSystemAtLeastVersion({0, 0, 0}));
  system.foundationNumber = 1057;
  EXPECT_TRUE(kbxIsMacOSAtLeast10_15());
  EXPECT_TRUE(kbxIsOperatingSystemAtLeastVersion({0, 0, 0}));
}

TEST(NSProcessInfoKBX, TheVersionTextComesFromGestaltAlone) {
  FakeOperatingSystem system(1677.104, {10, 15, 7});
  ScopedService<OperatingSystem> installed(system);
  EXPECT_EQ(text(kbxOSVersionString()), "10.15.7");
  system.gestaltAnswers = {{gestaltSystemVersionMajor, 10}, {gestaltSystemVersionMinor, 9}};
  EXPECT_EQ(text(kbxOSVersionString()), "10.9.0");
  system.gestaltAnswers = {{gestaltSystemVersionBugFix, 3}};
  EXPECT_EQ(text(kbxOSVersionString()), "0.0.3");
  system.gestaltAnswers = {};
  EXPECT_EQ(text(kbxOSVersionString()), "0.0.0");
}

TEST(NSProcessInfoKBX, AVersionIsReadFromTwoOrThreeNumbers) {
  struct Case {
    const char* text;
    NSOperatingSystemVersion version;
  };
  for (auto [text, expected] : {Case{"10.15", {10, 15, 0}},
                                {"10.15.4", {10, 15, 4}},
                                {"a.b", {0, 0, 0}},
                                {"10.x", {10, 0, 0}},
                                {".", {0, 0, 0}},
                                {"..", {0, 0, 0}},
                                {"10.", {10, 0, 0}},
                                {" 10. 15x.-4", {10, 15, -4}},
                                {"+1.2", {1, 2, 0}}}) {
    SCOPED_TRACE(text);
    NSOperatingSystemVersion version{7, 7, 7};
    Ref<NSError> error;
    EXPECT_TRUE(kbxGetOperatingSystemVersion(&version, string(text), &error));
    EXPECT_EQ(version, expected);
    EXPECT_EQ(error, nullptr);
  }
}

TEST(NSProcessInfoKBX, AnythingElseIsNoVersion) {
  for (const char* text : {"", "10", "10.15.4.1", "10.15.4.", "..."}) {
    SCOPED_TRACE(text);
    NSOperatingSystemVersion version{7, 7, 7};
    Ref<NSError> error;
    EXPECT_FALSE(kbxGetOperatingSystemVersion(&version, string(text), &error));
    EXPECT_EQ(version, (NSOperatingSystemVersion{7, 7, 7}));
    ASSERT_TRUE(error);
    EXPECT_TRUE(isEqual(error->domain(), NSOSStatusErrorDomain()));
    EXPECT_EQ(error->code(), -50);
    EXPECT_EQ(error->userInfo()->count(), 1u);
    EXPECT_EQ(kbx::text(error->userInfo()->objectForKey(NSLocalizedDescriptionKey())),
              "Error parsing OS version: "s + text);
  }
}

TEST(NSProcessInfoKBX, AnAbsentTextIsNoVersion) {
  NSOperatingSystemVersion version;
  Ref<NSError> error;
  EXPECT_FALSE(kbxGetOperatingSystemVersion(&version, nullptr, &error));
  EXPECT_EQ(text(error->localizedDescription()), "Error parsing OS version: (null)");
}

TEST(NSProcessInfoKBX, WithoutAPlaceToStoreItNothingIsAVersion) {
  Ref<NSError> error;
  EXPECT_FALSE(kbxGetOperatingSystemVersion(nullptr, "10.15"_ns, &error));
  EXPECT_EQ(text(error->localizedDescription()), "Error parsing OS version: 10.15");
}

TEST(NSProcessInfoKBX, NobodyNeedsToWantTheError) {
  NSOperatingSystemVersion version;
  EXPECT_FALSE(kbxGetOperatingSystemVersion(&version, "10"_ns, nullptr));
  EXPECT_FALSE(kbxGetOperatingSystemVersion(nullptr, nullptr, nullptr));
}

// ---- Limits, edition, surroundings ---------------------------------------------------------

TEST(NSProcessInfoKBX, TheSoftLimitIsTheNumberOfOpenFiles) {
  FakeResourceLimits limits;
  ScopedService<ResourceLimits> installed(limits);
  EXPECT_EQ(kbxMaximumOpenFilesCount(), 0u);
  limits.answer = ResourceLimit{256, 4096};
  EXPECT_EQ(kbxMaximumOpenFilesCount(), 256u);
  limits.answer = ResourceLimit{UINT64_MAX, UINT64_MAX};
  EXPECT_EQ(kbxMaximumOpenFilesCount(), UINT64_MAX);
}

TEST(NSProcessInfoKBX, SettingTheNumberOfOpenFilesSetsBothLimits) {
  FakeResourceLimits limits;
  limits.accepts = false;  // which is nobody's concern
  ScopedService<ResourceLimits> installed(limits);
  kbxSetMaximumOpenFilesCount(1024);
  EXPECT_EQ(limits.requests, (std::vector<ResourceLimit>{{1024, 1024}}));
}

TEST(NSProcessInfoKBX, ThisIsNoStoresEdition) { EXPECT_FALSE(kbxIsMacAppStoreVersion()); }

TEST(NSProcessInfoKBX, TheSandboxIsAUserDefault) {
  TemporaryPreferences preferences;
  auto* defaults = NSUserDefaults::standardUserDefaults();
  EXPECT_FALSE(kbxIsInAppSandbox());
  defaults->setBoolForKey(true, "KBXAppSandbox"_ns);
  EXPECT_TRUE(kbxIsInAppSandbox());
  defaults->setObjectForKey("no"_ns, "KBXAppSandbox"_ns);
  EXPECT_FALSE(kbxIsInAppSandbox());
}

TEST(NSProcessInfoKBX, TheDevelopmentEnvironmentIsToldByAVariableOfAnyValue) {
  FakeEnvironment environment;
  ScopedService<Environment> installed(environment);
  for (auto [variable, isInXcode] : {std::pair{"__XCODE_BUILT_PRODUCTS_DIR_PATHS=/a", true},
                                     {"__XCODE_BUILT_PRODUCTS_DIR_PATHS=", true},
                                     {"__XCODE_BUILT_PRODUCTS_DIR_PATHS=NO", true},
                                     {"KBXIsInXcode=YES", false},
                                     {"X__XCODE_BUILT_PRODUCTS_DIR_PATHS=1", false}}) {
    environment.entries = {variable};
    EXPECT_EQ(kbxIsInXcode(), isInXcode) << variable;
  }
  environment.entries = {};
  EXPECT_FALSE(kbxIsInXcode());
}

TEST(NSProcessInfoKBX, TerminationIsSupportedFirstAndForbiddenThen) {
  FakeAutomaticTermination termination;
  ScopedService<AutomaticTermination> installed(termination);
  kbxPreventPartialLaunching();
  EXPECT_EQ(termination.calls,
            (std::vector<std::string>{"support on", "disable: need to receive IPC"}));
}

TEST(NSProcessInfoKBX, TheClassAnswersBySelectorAndItsInstancesDoNot) {
  NSClass* processInfo = NSProcessInfo::classObject();
  for (const char* name : {"kbxIsMacAppStoreVersion", "kbxIsInAppSandbox"}) {
    EXPECT_TRUE(processInfo->respondsToSelector(SEL(name))) << name;
    EXPECT_FALSE(NSProcessInfo::processInfo()->respondsToSelector(SEL(name))) << name;
  }
}

TEST(NSProcessInfoKBX, WhatIsFoundBySelectorGivesTheSameAnswer) {
  TemporaryPreferences preferences;
  NSClass* processInfo = NSProcessInfo::classObject();
  const auto ask = [processInfo](const char* name) {
    signed char answer = 77;
    invoke(processInfo, *processInfo->objectClass()->instanceMethod(SEL(name)), &answer, {});
    return int{answer};
  };
  EXPECT_EQ(ask("kbxIsInAppSandbox"), 0);
  NSUserDefaults::standardUserDefaults()->setBoolForKey(true, "KBXAppSandbox"_ns);
  EXPECT_EQ(ask("kbxIsInAppSandbox"), 1);
  EXPECT_EQ(ask("kbxIsMacAppStoreVersion"), 0);
}

// ---- Hardware and kernel values ------------------------------------------------------------

template <class Number>
std::string bytesOf(Number number) {
  return {reinterpret_cast<const char*>(&number), sizeof number};
}

TEST(NSProcessInfoKBX, AKernelTextEndsAtItsZero) {
  FakeSystemControl control;
  control.values = {{"terminated", "MacBook\0"s},
                    {"bare", "MacBook"},
                    {"cut", "Mac\0Book\0"s},
                    {"only a zero", "\0"s},
                    {"UTF-8", "Grüße\0"s}};
  ScopedService<SystemControl> installed(control);
  EXPECT_EQ(text(kbxSysctlStringForKey("terminated"_ns)), "MacBook");
  EXPECT_EQ(text(kbxSysctlStringForKey("bare"_ns)), "MacBook");
  EXPECT_EQ(text(kbxSysctlStringForKey("cut"_ns)), "Mac");
  EXPECT_EQ(text(kbxSysctlStringForKey("only a zero"_ns)), "");
  EXPECT_EQ(text(kbxSysctlStringForKey("UTF-8"_ns)), "Grüße");
}

TEST(NSProcessInfoKBX, AKernelTextMayBeAbsent) {
  FakeSystemControl control;
  control.values = {{"empty", ""}, {"no UTF-8", "a\xFF\0"s}};
  ScopedService<SystemControl> installed(control);
  for (auto* key : {"empty"_ns, "no UTF-8"_ns, "unknown"_ns, ""_ns})
    EXPECT_EQ(kbxSysctlStringForKey(key), nullptr) << text(key);
  EXPECT_EQ(kbxSysctlStringForKey(nullptr), nullptr);
  EXPECT_EQ(kbxSysctlStringForKey(NSString::stringWithUTF16(u"\xD800")), nullptr);
}

TEST(NSProcessInfoKBX, AKernelTextThatFailsToComeIsAbsent) {
  FakeSystemControl control;
  control.values = {{"hw.model", "MacBook\0"s}};
  control.fetchError = EPERM;
  ScopedService<SystemControl> installed(control);
  EXPECT_EQ(kbxSysctlStringForKey("hw.model"_ns), nullptr);
}

TEST(NSProcessInfoKBX, AKernelIntegerIsZeroWhenItCannotBeHad) {
  FakeSystemControl control;
  control.values = {{"narrow", bytesOf<std::int32_t>(-5)},
                    {"wide", bytesOf<std::int64_t>(1LL << 40)}};
  ScopedService<SystemControl> installed(control);
  EXPECT_EQ(kbxSysctlInt32ForKey("narrow"_ns), -5);
  EXPECT_EQ(kbxSysctlInt32ForKey("wide"_ns), 0);
  EXPECT_EQ(kbxSysctlInt64ForKey("wide"_ns), 1LL << 40);
  EXPECT_EQ(kbxSysctlInt64ForKey("narrow"_ns), 0xFFFFFFFB);  // the upper half starts at zero
  EXPECT_EQ(kbxSysctlInt32ForKey("unknown"_ns), 0);
  EXPECT_EQ(kbxSysctlInt64ForKey("unknown"_ns), 0);
  EXPECT_EQ(kbxSysctlInt32ForKey(nullptr), 0);
  EXPECT_EQ(kbxSysctlInt64ForKey(nullptr), 0);
}

TEST(NSProcessInfoKBX, TheHardwareIsToldByThreeKernelValues) {
  FakeSystemControl control;
  control.values = {{"hw.model", "MacBookPro16,1\0"s},
                    {"hw.physicalcpu_max", bytesOf<std::int32_t>(8)},
                    {"hw.cpufrequency_max", bytesOf<std::int64_t>(2400000000)}};
  ScopedService<SystemControl> installed(control);
  EXPECT_EQ(text(kbxHardwareModel()), "MacBookPro16,1");
  EXPECT_EQ(kbxMaxPhysicalProcessorCount(), 8);
  EXPECT_EQ(kbxMaxProcessorFrequency(), 2400000000);
}

TEST(NSProcessInfoKBX, UnknownHardwareIsCalledSo) {
  FakeSystemControl control;
  ScopedService<SystemControl> installed(control);
  EXPECT_EQ(text(kbxHardwareModel()), "unknown");
  EXPECT_EQ(kbxMaxPhysicalProcessorCount(), 0);
  EXPECT_EQ(kbxMaxProcessorFrequency(), 0);
}

}  // namespace
}  // namespace kbx
