#include "importer/MetadataImporterPlugin.h"

#include "platform/objects/NSArray.h"
#include "platform/plugins/PlugInServices.h"
#include "platform/propertylists/NSPropertyListSerialization.h"
#include "tests/importer/ImporterFixture.h"

using namespace kbx;

namespace {

/// Counts what is added to and removed from a factory.
class CountingPlugIns final : public PlugInServices {
 public:
  Ref<PlugIn> create(NSURL*) override { return nullptr; }
  Ref<NSArray> findFactories(NSUUID*, PlugIn*) override { return nullptr; }
  void* createInstance(NSUUID*, NSUUID*) override { return nullptr; }
  void addInstance(NSUUID* factory) override { calls += "+" + text(factory); }
  void removeInstance(NSUUID* factory) override { calls += "-" + text(factory); }
  std::string failureReason(NSURL*) override { return ""; }

  std::string calls;

 private:
  ScopedService<PlugInServices> _installed{*this};
};

class MetadataImporterPlugin : public ImporterFixture {};

CFUUIDRef unknownInterface() {
  return CFUUIDGetConstantUUIDWithBytes(kCFAllocatorDefault, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12,
                                        13, 14, 15, 16);
}

}  // namespace

TEST_F(MetadataImporterPlugin, TheFactoryServesImportersAlone) {
  auto factory = IMPORTER_FUNCTION(MetadataImporterPluginFactory);
  EXPECT_EQ(factory(kCFAllocatorDefault, kMDImporterInterfaceID), nullptr);
  EXPECT_EQ(factory(kCFAllocatorDefault, nullptr), nullptr);
  auto* instance = makeInstance();
  ASSERT_TRUE(instance);
  EXPECT_EQ(instance->functionTable->Release(instance), 0u);
}

TEST_F(MetadataImporterPlugin, AnInstanceIsCountedForItsFactoryWhileItLives) {
  CountingPlugIns services;
  auto* instance = makeInstance();
  EXPECT_EQ(services.calls, std::string("+") + kFactoryText);
  EXPECT_EQ(text(fromCF(instance->factoryID)), kFactoryText);
  services.calls.clear();
  instance->functionTable->Release(instance);
  EXPECT_EQ(services.calls, std::string("-") + kFactoryText);
}

TEST_F(MetadataImporterPlugin, AnInstanceWithoutAFactoryIsFreedWithoutCounting) {
  CountingPlugIns services;
  auto* instance = IMPORTER_FUNCTION(AllocMetadataImporterPluginType)(nullptr);
  ASSERT_TRUE(instance);
  EXPECT_EQ(instance->referenceCount, 1u);
  services.calls.clear();
  IMPORTER_FUNCTION(DeallocMetadataImporterPluginType)(instance);
  EXPECT_EQ(services.calls, "");
}

TEST_F(MetadataImporterPlugin, ReferencesAreCountedFromOne) {
  auto* instance = makeInstance();
  EXPECT_EQ(instance->referenceCount, 1u);
  EXPECT_EQ(instance->functionTable->AddRef(instance), 2u);
  EXPECT_EQ(instance->functionTable->Release(instance), 1u);
  EXPECT_EQ(instance->functionTable->Release(instance), 0u);
}

TEST_F(MetadataImporterPlugin, TheTableHasItsFunctionsInOrder) {
  auto* instance = makeInstance();
  auto* table = reinterpret_cast<void* const*>(instance->functionTable);
  EXPECT_EQ(table[0], nullptr);
  EXPECT_EQ(table[1], importerSymbol("MetadataImporterQueryInterface"));
  EXPECT_EQ(table[2], importerSymbol("MetadataImporterPluginAddRef"));
  EXPECT_EQ(table[3], importerSymbol("MetadataImporterPluginRelease"));
  EXPECT_EQ(table[4], nullptr);
  instance->functionTable->Release(instance);
}

TEST_F(MetadataImporterPlugin, EveryOfferedInterfaceIsTheInstanceWithOneMoreReference) {
  for (CFUUIDRef identifier : {IUnknownUUID, kMDImporterInterfaceID, kMDImporterURLInterfaceID}) {
    SCOPED_TRACE(text(fromCF(identifier)));
    auto* instance = makeInstance();
    void* found = nullptr;
    EXPECT_EQ(query(instance, identifier, &found), 0);
    EXPECT_EQ(found, instance);
    EXPECT_EQ(instance->referenceCount, 2u);
    instance->functionTable->Release(instance);
    instance->functionTable->Release(instance);
  }
}

TEST_F(MetadataImporterPlugin, AnotherInterfaceIsNotSupported) {
  auto* instance = makeInstance();
  void* found = instance;
  EXPECT_EQ(static_cast<std::uint32_t>(query(instance, unknownInterface(), &found)), 0x80000004u);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(instance->referenceCount, 1u);
  instance->functionTable->Release(instance);
}

TEST_F(MetadataImporterPlugin, TheLastSlotHoldsWhatTheLastQueryForAnImporterAskedFor) {
  auto* instance = makeInstance();
  auto slot = [&] {
    return reinterpret_cast<void*>(instance->functionTable->ImporterImportURLData);
  };
  void* const forURLs = importerSymbol("GetMetadataForURL");
  void* found = nullptr;
  query(instance, IUnknownUUID, &found);
  EXPECT_EQ(slot(), nullptr);
  query(instance, kMDImporterURLInterfaceID, &found);
  EXPECT_EQ(slot(), forURLs);
  query(instance, kMDImporterInterfaceID, &found);
  void* const forPaths = slot();
  EXPECT_NE(forPaths, nullptr);
  EXPECT_NE(forPaths, forURLs);
  query(instance, IUnknownUUID, &found);
  query(instance, unknownInterface(), &found);
  EXPECT_EQ(slot(), forPaths);
  while (instance->functionTable->Release(instance) > 0) continue;
}

TEST_F(MetadataImporterPlugin, InstancesDoNotShareTheirTables) {
  auto *first = makeInstance(), *second = makeInstance();
  void* found = nullptr;
  query(first, kMDImporterURLInterfaceID, &found);
  EXPECT_EQ(second->functionTable->ImporterImportURLData, nullptr);
  auto* third = makeInstance();
  EXPECT_EQ(third->functionTable->ImporterImportURLData, nullptr);
  first->functionTable->Release(first);
  for (auto* instance : {first, second, third}) instance->functionTable->Release(instance);
}

// ---- The bundle --------------------------------------------------------------------------

TEST_F(MetadataImporterPlugin, TheLoaderFindsTheFactoryAndMakesInstances) {
  auto bundle = NSURL::fileURLWithFileSystemRepresentation(kImporterBundle, true);
  auto plugIn = adoptCF(CFPlugInCreate(kCFAllocatorDefault, toCF(bundle)));
  ASSERT_TRUE(plugIn);
  auto factories =
      adoptCF(CFPlugInFindFactoriesForPlugInTypeInPlugIn(kMDImporterTypeID, toCF(plugIn)));
  ASSERT_TRUE(factories);
  ASSERT_EQ(factories->count(), 1u);
  EXPECT_EQ(text(factories->objectAtIndex(0)), kFactoryText);
  auto* instance = static_cast<MetadataImporterPluginType*>(CFPlugInInstanceCreate(
      kCFAllocatorDefault, toCF(cast<NSUUID>(factories->objectAtIndex(0))), kMDImporterTypeID));
  ASSERT_TRUE(instance) << PlugInServices::current().failureReason(bundle);
  EXPECT_EQ(instance->functionTable->Release(instance), 0u);
}

TEST_F(MetadataImporterPlugin, ThePropertyListDeclaresWhatHostsLookFor) {
  auto file = NSURL::fileURLWithFileSystemRepresentation(
      std::string(kImporterBundle) + "/Contents/Info.plist", false);
  auto bytes = NSData::dataWithContentsOfURL(file, NSDataReadingNone, nullptr);
  Ref<NSObject> object = NSPropertyListSerialization::propertyListWithData(
      bytes, NSPropertyListImmutable, nullptr, nullptr);
  auto* list = cast<NSDictionary>(object);
  ASSERT_TRUE(list);
  EXPECT_EQ(text(list->objectForKey("CFBundleIdentifier"_ns)), "org.ferncase.spotlight-importer");
  EXPECT_EQ(text(list->objectForKey("CFBundleExecutable"_ns)), "FerncaseSpotlightImporter");
  EXPECT_TRUE(cast<NSString>(list->objectForKey("CFBundleVersion"_ns)));
  EXPECT_TRUE(cast<NSString>(list->objectForKey("CFBundleShortVersionString"_ns)));
  auto* factories = cast<NSDictionary>(list->objectForKey("CFPlugInFactories"_ns));
  EXPECT_EQ(text(factories->objectForKey(string(kFactoryText))), "MetadataImporterPluginFactory");
  auto* types = cast<NSArray>(list->objectForKey("CFBundleDocumentTypes"_ns));
  auto* type = cast<NSDictionary>(types->objectAtIndex(0));
  EXPECT_TRUE(cast<NSArray>(type->objectForKey("LSItemContentTypes"_ns))
                  ->containsObject("com.apple.mail.email"_ns));
  EXPECT_TRUE(
      cast<NSArray>(type->objectForKey("CFBundleTypeExtensions"_ns))->containsObject("eml"_ns));
}

TEST_F(MetadataImporterPlugin, EveryEntryPointIsExportedAndTheLegacyFunctionIsNot) {
  for (const char* name : {"MetadataImporterPluginFactory", "AllocMetadataImporterPluginType",
                           "DeallocMetadataImporterPluginType", "MetadataImporterQueryInterface",
                           "MetadataImporterPluginAddRef", "MetadataImporterPluginRelease",
                           "GetMetadataForURL", "addMetadataForURLToAttributes"})
    EXPECT_TRUE(importerSymbol(name)) << name;
  EXPECT_THROW(importerSymbol("LegacyGetMetadataForFile"), std::runtime_error);
}
