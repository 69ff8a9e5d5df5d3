#include "host/import/ImporterBundle.h"

#include <gtest/gtest.h>

#include "platform/preferences/Preferences.h"
#include "tests/support/FakeImporter.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

NSString* messageType() { return "com.apple.mail.email"_ns; }

std::string attribute(NSDictionary* attributes, NSString* name) {
  return text(attributes->objectForKey(name));
}

TEST(ImporterBundle, TheFirstFactoryWithAnInterfaceIsUsed) {
  std::string reason;
  auto importer = ImporterBundle::load(testBundle("SecondFactory"), &reason);
  ASSERT_TRUE(importer) << reason;
  TemporaryFolder folder;
  auto attributes = NSMutableDictionary::dictionary();
  EXPECT_TRUE(importer->importFile(folder.write("a.eml", ""), messageType(), attributes));
  EXPECT_EQ(attribute(attributes, "kMDItemTextContent"_ns), "from the second factory");
}

TEST(ImporterBundle, TheInterfaceForPathsServesWhereThereIsNoOther) {
  std::string reason;
  auto importer = ImporterBundle::load(testBundle("LegacyOnly"), &reason);
  ASSERT_TRUE(importer) << reason;
  TemporaryFolder folder;
  auto attributes = NSMutableDictionary::dictionary();
  EXPECT_TRUE(importer->importFile(folder.write("ä.eml", ""), messageType(), attributes));
  EXPECT_EQ(attribute(attributes, "kMDItemTextContent"_ns), (folder / "ä.eml").string());
  EXPECT_EQ(attribute(attributes, "LegacyContentType"_ns), "com.apple.mail.email");
}

TEST(ImporterBundle, TheInterfaceForPathsIsAskedForOnlyWhereThereIsNoOther) {
  // An instance may have one place for both import functions, which the last question fills.
  std::string reason;
  auto importer = ImporterBundle::load(testBundle("Recorder"), &reason);
  ASSERT_TRUE(importer) << reason;
  TemporaryFolder folder;
  auto attributes = NSMutableDictionary::dictionary();
  EXPECT_TRUE(importer->importFile(folder.write("a.eml", ""), messageType(), attributes));
  EXPECT_EQ(attribute(attributes, "kMDItemTextContent"_ns), " URL");
}

/// Notes which domains are asked for.
class NotingPreferences final : public Preferences {
 public:
  Ref<NSDictionary> domain(NSString* name) override {
    asked.push_back(text(name));
    return nullptr;
  }

  std::vector<std::string> asked;
};

TEST(ImporterBundle, TheDefaultsOfLoggingAreReadOnceHoweverManyFilesThereAre) {
  NotingPreferences preferences;
  ScopedService<Preferences> installed(preferences);
  std::string reason;
  auto importer = ImporterBundle::load(testBundle("Recorder"), &reason);
  ASSERT_TRUE(importer) << reason;
  const std::vector<std::string> once{"ferncase"};
  EXPECT_EQ(preferences.asked, once);
  TemporaryFolder folder;
  auto file = folder.write("a.eml", "");
  for (int i = 0; i < 3; ++i)
    EXPECT_TRUE(importer->importFile(file, messageType(), NSMutableDictionary::dictionary()));
  EXPECT_EQ(preferences.asked, once);
}

TEST(ImporterBundle, OneInstanceServesManyFiles) {
  int calls = 0;
  FakeImporter fake([&](auto...) { return ++calls < 3; });
  std::string reason;
  auto importer = ImporterBundle::load(fake.bundle(), &reason);
  ASSERT_TRUE(importer) << reason;
  TemporaryFolder folder;
  auto attributes = NSMutableDictionary::dictionary();
  EXPECT_TRUE(importer->importFile(folder.write("a.eml", ""), messageType(), attributes));
  EXPECT_TRUE(importer->importFile(folder.write("b.eml", ""), messageType(), attributes));
  EXPECT_FALSE(importer->importFile(folder.write("c.eml", ""), messageType(), attributes));
}

TEST(ImporterBundle, ABundleWithoutAnImporterGivesNoneAndAReason) {
  TemporaryFolder folder;
  folder.write("file.mdimporter", "");
  struct Case {
    Ref<NSURL> bundle;
    const char* reason;
  };
  for (const auto& [bundle, expected] :
       {Case{folder.url("missing.mdimporter"), "No such file or directory"},
        {folder.url("file.mdimporter"), "not a folder"},
        {folder.url(), "Info.plist"},
        {testBundle("NoInstance"), "made no instance"},
        {testBundle("NoExecutable"), "cannot open shared object file"},
        {testBundle("OtherType"), "the bundle holds no metadata importer"}}) {
    std::string reason;
    EXPECT_FALSE(ImporterBundle::load(bundle, &reason));
    EXPECT_NE(reason.find(expected), std::string::npos) << reason;
  }
}

}  // namespace
}  // namespace kbx
