// The bundle as its hosts meet it: through the plug-in loader alone.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"
#include "tests/mail/Messages.h"
#include "tests/support/RecordingLog.h"

namespace kbx {
namespace {

class MailImporter : public ::testing::Test {
 protected:
  void SetUp() override {
    _plugIn = adoptCF(CFPlugInCreate(kCFAllocatorDefault, toCF(bundle())));
    ASSERT_TRUE(_plugIn);
    _factories =
        adoptCF(CFPlugInFindFactoriesForPlugInTypeInPlugIn(kMDImporterTypeID, toCF(_plugIn)));
    ASSERT_EQ(_factories->count(), 1u);
    _instance = static_cast<IUnknownVTbl**>(instanceOf(kMDImporterTypeID));
    ASSERT_TRUE(_instance);
  }
  void TearDown() override {
    if (_instance) (*_instance)->Release(_instance);
  }

  static NSURL* bundle() {
    static const Ref<NSURL> url = NSURL::fileURLWithFileSystemRepresentation(
        FERNCASE_SYSTEM_SPOTLIGHT_DIR "/Mail.mdimporter", true);
    return url;
  }
  void* instanceOf(CFUUIDRef type) {
    return CFPlugInInstanceCreate(
        kCFAllocatorDefault, static_cast<CFUUIDRef>(toCFType(_factories->objectAtIndex(0))), type);
  }
  /// The interface, or null; releases the reference of the query, as the instance holds one more.
  void* query(CFUUIDRef identifier, HRESULT expected) {
    void* interface = this;
    EXPECT_EQ((*_instance)->QueryInterface(_instance, CFUUIDGetUUIDBytes(identifier), &interface),
              expected);
    if (interface) (*_instance)->Release(_instance);
    return interface;
  }

  Ref<PlugIn> _plugIn;
  Ref<NSArray> _factories;
  IUnknownVTbl** _instance = nullptr;
};

TEST_F(MailImporter, ServesTheImporterTypeAlone) { EXPECT_FALSE(instanceOf(IUnknownUUID)); }

TEST_F(MailImporter, OffersBothImporterInterfacesAndTheBaseAlone) {
  EXPECT_EQ(query(kMDImporterInterfaceID, S_OK), _instance);
  EXPECT_EQ(query(kMDImporterURLInterfaceID, S_OK), _instance);
  EXPECT_EQ(query(IUnknownUUID, S_OK), _instance);
  EXPECT_EQ(query(kMDImporterTypeID, E_NOINTERFACE), nullptr);
}

TEST_F(MailImporter, CountsItsReferences) {
  EXPECT_EQ((*_instance)->AddRef(_instance), 2u);
  EXPECT_EQ((*_instance)->Release(_instance), 1u);
  EXPECT_EQ((*_instance)->Release(_instance), 0u);
  _instance = nullptr;
}

TEST_F(MailImporter, GivesTheSameThroughPathsAndURLs) {
  TemporaryFolder folder;
  Ref<NSURL> file =
      folder.write("m.emlx", emlx("Subject: a\nDate: 10 Jan 2024 15:02:47 +0000\n\nb\n"));
  auto byURL = NSMutableDictionary::dictionary();
  auto* urls = static_cast<MDImporterURLInterfaceStruct**>(query(kMDImporterURLInterfaceID, S_OK));
  EXPECT_TRUE((*urls)->ImporterImportURLData(urls, toCF(byURL), CFSTR("x.y"), toCF(file)));

  auto byPath = NSMutableDictionary::dictionary();
  auto* paths = static_cast<MDImporterInterfaceStruct**>(query(kMDImporterInterfaceID, S_OK));
  EXPECT_TRUE((*paths)->ImporterImportData(paths, toCF(byPath), CFSTR("x.y"), toCF(file->path())));

  EXPECT_EQ(text(byURL->objectForKey("kMDItemSubject"_ns)), "a");
  EXPECT_TRUE(isEqual(byURL, byPath));
}

TEST_F(MailImporter, FailsForAMissingFileAndKeepsWhatTheDictionaryHas) {
  TemporaryFolder folder;
  RecordingLog log;
  auto* urls = static_cast<MDImporterURLInterfaceStruct**>(query(kMDImporterURLInterfaceID, S_OK));
  auto attributes = NSMutableDictionary::dictionary();
  attributes->setObjectForKey("old"_ns, "kept"_ns);
  EXPECT_FALSE((*urls)->ImporterImportURLData(urls, toCF(attributes), nullptr,
                                              toCF(folder.url("missing.emlx"))));
  EXPECT_EQ(attributes->count(), 1u);
  EXPECT_THAT(log.lines(), testing::ElementsAre("Mail error: The file “missing.emlx” couldn’t be "
                                                "opened because there is no such file."));
  EXPECT_FALSE((*urls)->ImporterImportURLData(urls, toCF(attributes), nullptr, nullptr));
  EXPECT_FALSE((*urls)->ImporterImportURLData(urls, nullptr, nullptr, toCF(folder.url())));
}

}  // namespace
}  // namespace kbx
