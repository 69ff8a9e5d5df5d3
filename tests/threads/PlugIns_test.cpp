// UUIDs and the plug-in loader under several threads.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "platform/CoreFoundation.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"
#include "tests/support/Bundles.h"

using namespace kbx;

namespace {

constexpr const char* kFactory = "CCCCCCCC-0000-4000-8000-000000000001";

/// Runs the work in four threads, each with its number.
void inFourThreads(const std::function<void(int)>& work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(work, i);
  for (auto& thread : threads) thread.join();
}

Ref<PlugIn> create(NSURL* bundle) {
  return adoptCF(CFPlugInCreate(kCFAllocatorDefault, toCF(bundle)));
}

/// Makes an instance and releases it; whether there was one.
bool makeInstance(NSUUID* factory) {
  auto* instance = static_cast<IUnknownVTbl**>(
      CFPlugInInstanceCreate(kCFAllocatorDefault, toCF(factory), kMDImporterTypeID));
  return instance && (*instance)->Release(instance) == 0;
}

}  // namespace

TEST(NSUUIDThreads, EqualOnesAreTheSameObjectWhileOthersAreDying) {
  std::atomic<bool> different{false};
  inFourThreads([&](int) {
    for (int round = 0; round < 5000; ++round) {
      auto first = NSUUID::UUIDWithBytes({42}), second = NSUUID::UUIDWithBytes({42});
      if (!isSame(first, second)) different = true;
    }
  });
  EXPECT_FALSE(different);
}

TEST(PlugInLoaderThreads, ManyThreadsMayCreateUseAndReleaseTheSameBundles) {
  std::atomic<int> failures{0};
  inFourThreads([&](int number) {
    for (int round = 0; round < 100; ++round) {
      Ref<PlugIn> plugIn = create(testBundle("SecondFactory"));
      if (!plugIn || !makeInstance(plugIn->declaration().factories[number % 2].identifier))
        ++failures;
      if (!create(testBundle(number % 2 ? "LegacyOnly" : "NoInstance"))) ++failures;
    }
  });
  EXPECT_EQ(failures, 0);
}

TEST(PlugInLoaderThreads, OneOfTwoBundlesWithTheSameFactoryWins) {
  TemporaryFolder folder;
  const std::string list = propertyListOf({"", {{kFactory, "F"}}});
  Ref<NSURL> bundles[] = {writeBundle(folder, "A", list), writeBundle(folder, "B", list)};
  for (int round = 0; round < 50; ++round) {
    Ref<PlugIn> made[2];
    std::thread first([&] { made[0] = create(bundles[0]); });
    std::thread second([&] { made[1] = create(bundles[1]); });
    first.join();
    second.join();
    EXPECT_NE(made[0] == nullptr, made[1] == nullptr);
  }
}
