#include "platform/system/OperatingSystem.h"

#include <gtest/gtest.h>

#include "platform/system/NSProcessInfo.h"
#include "tests/support/FakeOperatingSystem.h"

namespace kbx {
namespace {

TEST(OperatingSystem, LinuxAnswersAsOneCertainRelease) {
  EXPECT_EQ(NSFoundationVersionNumber(), 1677.104);
  EXPECT_EQ(NSProcessInfo::processInfo()->operatingSystemVersion(),
            (NSOperatingSystemVersion{10, 15, 7}));
  EXPECT_TRUE(isAvailable({10, 15, 7}));
  EXPECT_FALSE(isAvailable({10, 15, 8}));
  std::int32_t numbers[3] = {};
  EXPECT_EQ(Gestalt(gestaltSystemVersionMajor, &numbers[0]), 0);
  EXPECT_EQ(Gestalt(gestaltSystemVersionMinor, &numbers[1]), 0);
  EXPECT_EQ(Gestalt(gestaltSystemVersionBugFix, &numbers[2]), 0);
  EXPECT_EQ(numbers[0], 10);
  EXPECT_EQ(numbers[1], 15);
  EXPECT_EQ(numbers[2], 7);
}

TEST(OperatingSystem, AnUnknownSelectorFailsAndStoresNothing) {
  std::int32_t response = 77;
  EXPECT_NE(Gestalt(fourCharacterCode("nope"), &response), 0);
  EXPECT_EQ(response, 77);
}

TEST(OperatingSystem, TheFourQuestionsAreSeparate) {
  FakeOperatingSystem system(833.1, {10, 16, 0});
  system.availableVersion = {10, 9, 0};
  system.gestaltAnswers = {{gestaltSystemVersionMajor, 11}};
  ScopedService<OperatingSystem> installed(system);
  EXPECT_EQ(NSFoundationVersionNumber(), 833.1);
  EXPECT_TRUE(NSProcessInfo::processInfo()->isOperatingSystemAtLeastVersion({10, 16, 0}));
  EXPECT_FALSE(isAvailable({10, 10, 0}));
  std::int32_t response = 0;
  EXPECT_EQ(Gestalt(gestaltSystemVersionMajor, &response), 0);
  EXPECT_EQ(response, 11);
  EXPECT_NE(Gestalt(gestaltSystemVersionMinor, &response), 0);
}

TEST(OperatingSystem, FourCharactersMakeACodeFromTheHighestByte) {
  EXPECT_EQ(gestaltSystemVersionMajor, 0x73797331u);
}

}  // namespace
}  // namespace kbx
