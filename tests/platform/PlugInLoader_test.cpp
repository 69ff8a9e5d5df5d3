// The plug-in loader, through the functions that hosts and bundles call.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "platform/CoreFoundation.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"
#include "platform/plugins/PlugInServices.h"
#include "tests/support/Bundles.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/Text.h"

using namespace kbx;

namespace {

constexpr const char* kType = "AAAAAAAA-0000-4000-8000-000000000001";
constexpr const char* kOtherType = "AAAAAAAA-0000-4000-8000-000000000002";
constexpr const char* kFactory = "BBBBBBBB-0000-4000-8000-000000000001";
constexpr const char* kOtherFactory = "BBBBBBBB-0000-4000-8000-000000000002";
constexpr const char* kThirdFactory = "BBBBBBBB-0000-4000-8000-000000000003";

Ref<PlugIn> create(NSURL* bundle) {
  return adoptCF(CFPlugInCreate(kCFAllocatorDefault, toCF(bundle)));
}

Ref<NSUUID> uuid(const char* text) { return NSUUID::UUIDWithString(string(text)); }

Ref<NSArray> factories(const char* type, PlugIn* plugIn) {
  return adoptCF(CFPlugInFindFactoriesForPlugInTypeInPlugIn(toCF(uuid(type)), toCF(plugIn)));
}

std::string importerType() { return text(fromCF(kMDImporterTypeID)); }

/// An instance of an importer; released when it goes.
class Instance {
 public:
  explicit Instance(const char* factory, CFUUIDRef type = kMDImporterTypeID)
      : _interface(static_cast<IUnknownVTbl**>(
            CFPlugInInstanceCreate(kCFAllocatorDefault, toCF(uuid(factory)), type))) {}
  ~Instance() { release(); }
  Instance(const Instance&) = delete;
  Instance& operator=(const Instance&) = delete;

  explicit operator bool() const { return _interface; }
  IUnknownVTbl* table() const { return *_interface; }
  void release() {
    if (auto* interface = std::exchange(_interface, nullptr)) (*interface)->Release(interface);
  }

 private:
  IUnknownVTbl** _interface;
};

std::string reason(NSURL* bundle) { return PlugInServices::current().failureReason(bundle); }

constexpr const char* kSecondFactory = "0A5E2F6C-7D57-4C35-8F4C-0C9E3B1B6D02";
constexpr const char* kFirstFactory = "F77BB3FB-2D01-4B6A-9B1F-0C9E3B1B6D01";
constexpr const char* kLegacyFactory = "5C0F1D2E-3A4B-4C5D-8E6F-0C9E3B1B6D03";
constexpr const char* kTestMailFactory = "E1A35C08-6A77-4C2B-9D3E-0C9E3B1B6D04";
constexpr const char* kNothingFactory = "3D9B7A51-84E2-4F0C-A6D7-0C9E3B1B6D05";
constexpr const char* kMissingFactory = "7B1E0D94-52C6-4A3F-B8E9-0C9E3B1B6D06";
constexpr const char* kFactoryOfOtherType = "C48F2E6A-1B7D-4958-9C0A-0C9E3B1B6D07";

}  // namespace

// ---- Creating ----------------------------------------------------------------------------

TEST(PlugInLoader, AMissingPathGivesNone) {
  TemporaryFolder folder;
  Ref<NSURL> bundle = folder.url("None.mdimporter");
  EXPECT_FALSE(create(bundle));
  EXPECT_EQ(reason(bundle), "No such file or directory: " + (folder / "None.mdimporter").string());
}

TEST(PlugInLoader, APlainFileGivesNone) {
  TemporaryFolder folder;
  Ref<NSURL> bundle = folder.write("File.mdimporter", "text");
  EXPECT_FALSE(create(bundle));
  EXPECT_EQ(reason(bundle), "not a folder: " + (folder / "File.mdimporter").string());
}

TEST(PlugInLoader, AnAbsentLocationGivesNone) {
  EXPECT_FALSE(create(nullptr));
  EXPECT_EQ(reason(nullptr), "");
}

TEST(PlugInLoader, AnEmptyFolderGivesAPlugInWithoutFactories) {
  TemporaryFolder folder;
  std::filesystem::create_directory(folder / "Empty.mdimporter");
  Ref<NSURL> bundle = folder.url("Empty.mdimporter");
  EXPECT_TRUE(create(bundle));
  EXPECT_TRUE(reason(bundle).starts_with("Contents/Info.plist: ")) << reason(bundle);
}

TEST(PlugInLoader, AnUnreadablePropertyListGivesAPlugInAndKeepsTheParsersWords) {
  TemporaryFolder folder;
  struct Case {
    const char *name, *list;
  };
  for (auto [name, list] : {Case{"Broken", "<plist><dict><key>CFPlugIn"}, Case{"Nothing", ""},
                            Case{"Binary", "bplist00"}, Case{"Text", "words"}}) {
    SCOPED_TRACE(name);
    Ref<NSURL> bundle = writeBundle(folder, name, list);
    EXPECT_TRUE(create(bundle));
    EXPECT_TRUE(reason(bundle).starts_with("Contents/Info.plist: ")) << reason(bundle);
  }
}

TEST(PlugInLoader, APropertyListThatIsNoDictionaryIsLikeAnUnreadableOne) {
  TemporaryFolder folder;
  Ref<NSURL> bundle = writeBundle(folder, "Array", "<plist><array/></plist>");
  EXPECT_TRUE(create(bundle));
  EXPECT_EQ(reason(bundle), "Contents/Info.plist: not a dictionary");
}

TEST(PlugInLoader, EntriesOfAnotherFormAreLeftOut) {
  TemporaryFolder folder;
  const std::string type = kType, factory = kFactory;
  Ref<PlugIn> plugIn = create(writeBundle(
      folder, "Odd",
      "<plist><dict><key>CFBundleExecutable</key><integer>1</integer>"
      "<key>CFPlugInFactories</key><dict><key>no UUID</key><string>A</string><key>" +
          factory + "</key><string>B</string><key>" + kOtherFactory +
          "</key><array/></dict><key>CFPlugInTypes</key><dict><key>no UUID</key><array/><key>" +
          std::string(kOtherType) + "</key><string>x</string><key>" + type +
          "</key><array><integer>1</integer><string>no UUID</string><string>" + kThirdFactory +
          "</string><string>" + factory + "</string></array></dict></dict></plist>"));
  ASSERT_TRUE(plugIn);
  Ref<NSArray> list = factories(kType, plugIn);
  ASSERT_TRUE(list);
  ASSERT_EQ(list->count(), 1u);
  EXPECT_TRUE(isSame(list->objectAtIndex(0), uuid(kFactory)));
  EXPECT_FALSE(factories(kOtherType, plugIn));
}

TEST(PlugInLoader, AFactoryThatAnotherBundleRegisteredGivesNone) {
  TemporaryFolder folder;
  Ref<NSURL> first = writeBundle(folder, "First", propertyListOf({"", {{kFactory, "F"}}}));
  Ref<NSURL> second =
      writeBundle(folder, "Second", propertyListOf({"", {{kOtherFactory, "G"}, {kFactory, "F"}}}));
  Ref<PlugIn> registered = create(first);
  ASSERT_TRUE(registered);
  EXPECT_FALSE(create(second));
  EXPECT_EQ(reason(second),
            "factory " + std::string(kFactory) + " is registered by " + registered->path());
  EXPECT_EQ(reason(first), "");
}

TEST(PlugInLoader, ABundleThatGivesNoneRegistersNothing) {
  TemporaryFolder folder;
  auto bundle = [&](const char* name, std::vector<const char*> uuids) {
    WrittenBundle contents;
    for (auto* each : uuids) contents.factories.emplace_back(each, "F");
    return writeBundle(folder, name, propertyListOf(contents));
  };
  Ref<PlugIn> first = create(bundle("First", {kFactory}));
  EXPECT_FALSE(create(bundle("Second", {kOtherFactory, kFactory})));
  EXPECT_TRUE(create(bundle("Third", {kOtherFactory})));
}

TEST(PlugInLoader, AFactoryIsFreeAgainWhenItsPlugInHasGone) {
  TemporaryFolder folder;
  const std::string list = propertyListOf({"", {{kFactory, "F"}}});
  EXPECT_TRUE(create(writeBundle(folder, "First", list)));
  Ref<NSURL> second = writeBundle(folder, "Second", list);
  EXPECT_TRUE(create(second));
  EXPECT_EQ(reason(second), "");
}

TEST(PlugInLoader, TheSamePathGivesTheSameObject) {
  Ref<PlugIn> plugIn = create(testBundle("NoInstance"));
  ASSERT_TRUE(plugIn);
  EXPECT_TRUE(isSame(plugIn, create(testBundle("NoInstance"))));
}

TEST(PlugInLoader, TheBundleOfALivingPlugInIsNotReadAgain) {
  TemporaryFolder folder;
  Ref<NSURL> bundle = writeBundle(folder, "Once", propertyListOf({"", {{kFactory, "F"}}}));
  Ref<PlugIn> plugIn = create(bundle);
  writeBundle(folder, "Once", "broken");
  EXPECT_TRUE(isSame(plugIn, create(bundle)));
  EXPECT_EQ(reason(bundle), "");
}

TEST(PlugInLoader, OtherSpellingsAndLinksOfAPathAreTheSameBundle) {
  TemporaryFolder folder;
  Ref<PlugIn> plugIn = create(writeBundle(folder, "One", propertyListOf({"", {{kFactory, "F"}}})));
  std::filesystem::create_directory_symlink(folder / "One.mdimporter", folder / "Link");
  for (const char* name :
       {"./One.mdimporter", "One.mdimporter/", "One.mdimporter/Contents/..", "Link"}) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(isSame(plugIn, create(folder.url(name))));
  }
}

TEST(PlugInLoader, BundlesOfTheSystemAreLookedUpBelowTheSystemRoot) {
  FakeEnvironment environment({testSystemRoot()});
  ScopedService<Environment> installed(environment);
  Ref<NSURL> bundle = NSURL::fileURLWithPath("/System/Library/Spotlight/Mail.mdimporter"_ns, true);
  EXPECT_TRUE(create(bundle)) << reason(bundle);
}

TEST(PlugInLoader, AMissingBundleOfTheSystemIsNamedWhereItWasLookedUp) {
  FakeEnvironment environment({"KBX_SYSTEM_ROOT=/no/such/root"});
  ScopedService<Environment> installed(environment);
  Ref<NSURL> bundle = NSURL::fileURLWithPath("/System/Library/Spotlight/Mail.mdimporter"_ns, true);
  EXPECT_FALSE(create(bundle));
  EXPECT_EQ(reason(bundle),
            "No such file or directory: /no/such/root/System/Library/Spotlight/Mail.mdimporter");
}

// ---- Finding factories -------------------------------------------------------------------

TEST(PlugInLoader, TheListIsAbsentWhileNoBundleServesTheType) {
  TemporaryFolder folder;
  const WrittenBundle contents{"", {{kFactory, "F"}}, {{kType, {kFactory}}}};
  Ref<PlugIn> other = create(writeBundle(folder, "Other", propertyListOf({"", {}})));
  EXPECT_FALSE(factories(kType, other));
  {
    Ref<PlugIn> serving = create(writeBundle(folder, "Serving", propertyListOf(contents)));
    EXPECT_EQ(factories(kType, serving)->count(), 1u);
    Ref<NSArray> list = factories(kType, other);
    ASSERT_TRUE(list) << "a bundle without a factory gives an empty list once another has one";
    EXPECT_EQ(list->count(), 0u);
  }
  EXPECT_FALSE(factories(kType, other));
}

TEST(PlugInLoader, TheListIsInTheOrderOfTheTypesEntry) {
  TemporaryFolder folder;
  Ref<PlugIn> plugIn = create(
      writeBundle(folder, "Order",
                  propertyListOf({"",
                                  {{kFactory, "A"}, {kOtherFactory, "B"}, {kThirdFactory, "C"}},
                                  {{kType, {kThirdFactory, kFactory, kOtherFactory}}}})));
  Ref<NSArray> list = factories(kType, plugIn);
  ASSERT_EQ(list->count(), 3u);
  EXPECT_TRUE(isSame(list->objectAtIndex(0), uuid(kThirdFactory)));
  EXPECT_TRUE(isSame(list->objectAtIndex(1), uuid(kFactory)));
  EXPECT_TRUE(isSame(list->objectAtIndex(2), uuid(kOtherFactory)));
}

TEST(PlugInLoader, WithoutATypeOrAPlugInThereIsNoList) {
  Ref<PlugIn> plugIn = create(testBundle("NoInstance"));
  EXPECT_EQ(CFPlugInFindFactoriesForPlugInTypeInPlugIn(nullptr, toCF(plugIn)), nullptr);
  EXPECT_EQ(CFPlugInFindFactoriesForPlugInTypeInPlugIn(kMDImporterTypeID, nullptr), nullptr);
}

TEST(PlugInLoader, IdentifiersAreReadLeniently) {
  TemporaryFolder folder;
  Ref<PlugIn> plugIn =
      create(writeBundle(folder, "Lenient",
                         propertyListOf({"",
                                         {{"{bbbbbbbb-0000-4000-8000-000000000001}", "F"}},
                                         {{"aaaaaaaa-0000-4000-8000-000000000001", {kFactory}}}})));
  EXPECT_EQ(factories(kType, plugIn)->count(), 1u);
}

// ---- Instances ---------------------------------------------------------------------------

namespace {

/// A bundle of the test's own with its own copy of the code of a bundle from the build.
Ref<NSURL> writeBundleWithCode(const TemporaryFolder& folder, const std::string& name,
                               const WrittenBundle& contents, const std::string& code) {
  Ref<NSURL> bundle = writeBundle(folder, name, propertyListOf(contents));
  const auto place = folder / (name + ".mdimporter/Contents/Linux");
  std::filesystem::create_directory(place);
  std::filesystem::copy_file(FERNCASE_BUNDLES_DIR "/" + code + ".mdimporter/Contents/Linux/" + code,
                             place / "Code");
  return bundle;
}

bool isOpen(const std::filesystem::path& executable) {
  void* handle = dlopen(executable.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (handle) dlclose(handle);
  return handle;
}

}  // namespace

TEST(PlugInLoader, TheExecutableIsOpenedAtTheFirstInstance) {
  TemporaryFolder folder;
  Ref<PlugIn> plugIn = create(writeBundleWithCode(
      folder, "Lazy", {"Code", {{kFactory, "SecondFactory"}}, {{importerType(), {kFactory}}}},
      "SecondFactory"));
  const auto executable = folder / "Lazy.mdimporter/Contents/Linux/Code";
  EXPECT_FALSE(isOpen(executable));
  Instance instance(kFactory);
  EXPECT_TRUE(instance);
  EXPECT_TRUE(isOpen(executable));
}

TEST(PlugInLoader, ABundleInPlainCWorks) {
  Ref<PlugIn> plugIn = create(testBundle("LegacyOnly"));
  Instance instance(kLegacyFactory);
  ASSERT_TRUE(instance) << reason(testBundle("LegacyOnly"));
  EXPECT_EQ(reason(testBundle("LegacyOnly")), "");
}

TEST(PlugInLoader, AnInstanceIsAbsent) {
  Ref<PlugIn> nothing = create(testBundle("NoInstance"));
  Ref<PlugIn> missing = create(testBundle("NoExecutable"));
  Ref<PlugIn> other = create(testBundle("OtherType"));
  const CFUUIDRef otherType = toCF(other->declaration().types.at(0).identifier);
  const std::string executable = FERNCASE_BUNDLES_DIR "/NoExecutable.mdimporter/Contents/Linux/";
  struct Case {
    const char *rule, *factory;
    CFUUIDRef type;
    const char* bundle;
    std::string reason;
  };
  for (const auto& [rule, factory, type, bundle, expected] :
       {Case{"for a factory that nobody has", kFactory, kMDImporterTypeID, "NoInstance", ""},
        Case{"for a type that the factory does not serve", kFactoryOfOtherType, kMDImporterTypeID,
             "OtherType",
             "factory " + std::string(kFactoryOfOtherType) + " does not serve type " +
                 importerType()},
        Case{"when the factory function makes none", kNothingFactory, kMDImporterTypeID,
             "NoInstance", "the factory function NothingFactory made no instance"},
        Case{"when no executable is named", kFactoryOfOtherType, otherType, "OtherType",
             "Contents/Info.plist names no executable"},
        Case{"when the executable is missing", kMissingFactory, kMDImporterTypeID, "NoExecutable",
             std::filesystem::canonical(FERNCASE_BUNDLES_DIR).string() +
                 "/NoExecutable.mdimporter/Contents/Linux/NoExecutable: cannot open shared object "
                 "file: No such file or directory"}}) {
    SCOPED_TRACE(rule);
    EXPECT_FALSE(Instance(factory, type));
    EXPECT_EQ(reason(testBundle(bundle)), expected);
  }
  EXPECT_EQ(CFPlugInInstanceCreate(kCFAllocatorDefault, nullptr, kMDImporterTypeID), nullptr);
  EXPECT_EQ(CFPlugInInstanceCreate(kCFAllocatorDefault, toCF(uuid(kNothingFactory)), nullptr),
            nullptr);
}

TEST(PlugInLoader, AnInstanceIsAbsentWithoutItsFactoryFunction) {
  TemporaryFolder folder;
  Ref<NSURL> bundle = writeBundleWithCode(
      folder, "NoFunction", {"Code", {{kFactory, "AbsentFactory"}}, {{kType, {kFactory}}}},
      "NoInstance");
  Ref<PlugIn> plugIn = create(bundle);
  EXPECT_FALSE(Instance(kFactory, toCF(uuid(kType))));
  EXPECT_EQ(reason(bundle), "the executable has no function AbsentFactory");
}

TEST(PlugInLoader, AnExecutableIsANameInsideTheBundle) {
  TemporaryFolder folder;
  Ref<NSURL> bundle = writeBundleWithCode(
      folder, "Escape", {"../Linux/Code", {{kFactory, "NothingFactory"}}, {{kType, {kFactory}}}},
      "NoInstance");
  Ref<PlugIn> plugIn = create(bundle);
  EXPECT_FALSE(Instance(kFactory, toCF(uuid(kType))));
  EXPECT_EQ(reason(bundle), "Contents/Info.plist names no executable");
}

TEST(PlugInLoader, AReasonIsForgottenWhenTheNextInstanceIsThere) {
  FakeEnvironment environment({testSystemRoot()});
  ScopedService<Environment> installed(environment);
  Ref<NSURL> bundle = testBundle("root/System/Library/Spotlight/Mail");
  Ref<PlugIn> plugIn = create(bundle);
  EXPECT_FALSE(Instance(kTestMailFactory, toCF(uuid(kType))));
  EXPECT_NE(reason(bundle), "");
  EXPECT_TRUE(Instance(kTestMailFactory));
  EXPECT_EQ(reason(bundle), "");
}

// ---- Unloading ---------------------------------------------------------------------------

TEST(PlugInLoader, AnInstanceKeepsItsPlugIn) {
  Ref<PlugIn> plugIn = create(testBundle("LegacyOnly"));
  Instance instance(kLegacyFactory);
  PlugIn* before = plugIn;
  plugIn = nullptr;
  EXPECT_TRUE(isSame(create(testBundle("LegacyOnly")), before));
  EXPECT_TRUE(Instance(kLegacyFactory));
}

TEST(PlugInLoader, TheLastReleaseOnlySchedulesTheUnloading) {
  Ref<PlugIn> plugIn = create(testBundle("LegacyOnly"));
  Instance instance(kLegacyFactory);
  plugIn = nullptr;
  instance.release();
  EXPECT_TRUE(Instance(kLegacyFactory)) << "the factory is registered still";
}

TEST(PlugInLoader, CreatingAnotherBundleUnloadsWhatIsScheduled) {
  TemporaryFolder folder;
  {
    Ref<PlugIn> plugIn = create(testBundle("LegacyOnly"));
    Instance instance(kLegacyFactory);
  }
  Ref<PlugIn> other = create(
      writeBundle(folder, "Other", propertyListOf({"", {{kLegacyFactory, "LegacyFactory"}}})));
  EXPECT_TRUE(other) << "the factory is free again";
}

TEST(PlugInLoader, APlugInThatIsHeldAgainOutlivesTheSchedule) {
  TemporaryFolder folder;
  {
    Ref<PlugIn> plugIn = create(testBundle("LegacyOnly"));
    Instance instance(kLegacyFactory);
  }
  Ref<PlugIn> again = create(testBundle("LegacyOnly"));
  create(writeBundle(folder, "Other", propertyListOf({"", {}})));
  EXPECT_TRUE(Instance(kLegacyFactory));
}

TEST(PlugInLoader, OpenedCodeStaysWhenItsPlugInHasGone) {
  TemporaryFolder folder;
  ULONG (*addReference)(void*) = nullptr;
  {
    Ref<PlugIn> plugIn = create(testBundle("SecondFactory"));
    Instance instance(kSecondFactory);
    addReference = instance.table()->AddRef;
  }
  create(writeBundle(folder, "Other", propertyListOf({"", {}})));
  EXPECT_FALSE(Instance(kSecondFactory));
  Dl_info code;
  EXPECT_TRUE(dladdr(reinterpret_cast<void*>(addReference), &code));
  Ref<PlugIn> again = create(testBundle("SecondFactory"));
  Instance instance(kSecondFactory);
  EXPECT_EQ(instance.table()->AddRef, addReference);
}

TEST(PlugInLoader, CountingForAFactoryThatNobodyHasDoesNothing) {
  CFPlugInAddInstanceForFactory(toCF(uuid(kFactory)));
  CFPlugInRemoveInstanceForFactory(toCF(uuid(kFactory)));
  CFPlugInAddInstanceForFactory(nullptr);
  CFPlugInRemoveInstanceForFactory(nullptr);
}

TEST(PlugInLoader, MoreEndsThanBeginningsAreIgnored) {
  Ref<PlugIn> plugIn = create(testBundle("SecondFactory"));
  for (int i = 0; i < 3; ++i) CFPlugInRemoveInstanceForFactory(toCF(uuid(kFirstFactory)));
  EXPECT_TRUE(Instance(kFirstFactory));
}
