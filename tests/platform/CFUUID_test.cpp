#include <gtest/gtest.h>

#include <cstring>

#include "platform/CoreFoundation.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"

using namespace kbx;

namespace {

std::string text(CFUUIDRef uuid) {
  return adoptCF(CFUUIDCreateString(kCFAllocatorDefault, uuid))->lossyUTF8();
}

}  // namespace

TEST(CFUUID, TheIdentifiersOfTheInterfaces) {
  EXPECT_EQ(text(kMDImporterTypeID), "8B08C4BF-415B-11D8-B3F9-0003936726FC");
  EXPECT_EQ(text(kMDImporterInterfaceID), "6EBC27C4-899C-11D8-84AE-0003936726FC");
  EXPECT_EQ(text(kMDImporterURLInterfaceID), "13F60F02-3622-4F35-9891-EC10E6CD08F8");
  EXPECT_EQ(text(IUnknownUUID), "00000000-0000-0000-C000-000000000046");
}

TEST(CFUUID, EveryWayToAnEqualOneEndsAtTheSameObject) {
  auto parsed = adoptCF(
      CFUUIDCreateFromString(kCFAllocatorDefault, CFSTR("{8b08c4bf-415b-11d8-b3f9-0003936726fc}")));
  auto copied =
      adoptCF(CFUUIDCreateFromUUIDBytes(kCFAllocatorDefault, CFUUIDGetUUIDBytes(toCF(parsed))));
  EXPECT_EQ(toCF(parsed), kMDImporterTypeID);
  EXPECT_EQ(toCF(copied), kMDImporterTypeID);
}

TEST(CFUUID, TextThatIsNoneGivesNone) {
  EXPECT_EQ(CFUUIDCreateFromString(kCFAllocatorDefault, CFSTR("factory")), nullptr);
  EXPECT_EQ(CFUUIDCreateFromString(kCFAllocatorDefault, nullptr), nullptr);
}

TEST(CFUUID, AnAbsentOneHasNoTextAndZeroBytes) {
  EXPECT_EQ(CFUUIDCreateString(kCFAllocatorDefault, nullptr), nullptr);
  const CFUUIDBytes zeros{};
  const CFUUIDBytes bytes = CFUUIDGetUUIDBytes(nullptr);
  EXPECT_EQ(std::memcmp(&bytes, &zeros, sizeof zeros), 0);
}

TEST(CFUUID, CreateMakesANewOne) {
  auto first = adoptCF(CFUUIDCreate(kCFAllocatorDefault));
  auto second = adoptCF(CFUUIDCreate(kCFAllocatorDefault));
  EXPECT_FALSE(isSame(first, second));
}
