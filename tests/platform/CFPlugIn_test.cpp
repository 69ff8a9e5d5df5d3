// The plug-in functions ask whatever answers for PlugInServices.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/CoreFoundation.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"
#include "platform/plugins/PlugInServices.h"

using namespace kbx;

namespace {

class RecordingPlugIns final : public PlugInServices {
 public:
  Ref<PlugIn> create(NSURL* bundle) override {
    calls.push_back("create " + bundle->path()->lossyUTF8());
    return nullptr;
  }
  Ref<NSArray> findFactories(NSUUID* type, PlugIn*) override {
    calls.push_back("find " + type->UUIDString()->lossyUTF8());
    return NSArray::arrayWithObjects({type});
  }
  void* createInstance(NSUUID* factory, NSUUID* type) override {
    calls.push_back(isSame(factory, type) ? "instance" : "mixed up");
    return this;
  }
  void addInstance(NSUUID*) override { calls.push_back("add"); }
  void removeInstance(NSUUID*) override { calls.push_back("remove"); }
  std::string failureReason(NSURL*) override { return ""; }

  std::vector<std::string> calls;
};

}  // namespace

TEST(CFPlugIn, EveryFunctionAsksTheServices) {
  RecordingPlugIns services;
  ScopedService<PlugInServices> installed(services);
  auto url = NSURL::fileURLWithPath("/x"_ns, true);
  EXPECT_EQ(CFPlugInCreate(kCFAllocatorDefault, toCF(url)), nullptr);
  auto found = adoptCF(CFPlugInFindFactoriesForPlugInTypeInPlugIn(kMDImporterTypeID, nullptr));
  EXPECT_EQ(CFArrayGetValueAtIndex(toCF(found), 0), kMDImporterTypeID);
  EXPECT_EQ(CFPlugInInstanceCreate(kCFAllocatorDefault, kMDImporterTypeID, kMDImporterTypeID),
            &services);
  CFPlugInAddInstanceForFactory(kMDImporterTypeID);
  CFPlugInRemoveInstanceForFactory(kMDImporterTypeID);
  const std::vector<std::string> expected{"create /x", "find 8B08C4BF-415B-11D8-B3F9-0003936726FC",
                                          "instance", "add", "remove"};
  EXPECT_EQ(services.calls, expected);
}
