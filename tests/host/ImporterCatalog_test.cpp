#include "host/import/ImporterCatalog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/Bundles.h"
#include "tests/support/FakeEnvironment.h"

namespace kbx {
namespace {

using testing::ElementsAre;

std::string listWithTypes(std::vector<std::string> types) {
  std::string text =
      "<plist version=\"1.0\"><dict><key>CFBundleDocumentTypes</key><array><dict>"
      "<key>LSItemContentTypes</key><array>";
  for (const auto& type : types) text += "<string>" + type + "</string>";
  return text + "</array></dict></array></dict></plist>";
}

/// A user's folder and a system root in the folder of the test.
class ImporterCatalogTest : public testing::Test {
 protected:
  ImporterCatalogTest() {
    _environment.entries = {"XDG_DATA_HOME=" + (_folder / "data").string(),
                            "KBX_SYSTEM_ROOT=" + (_folder / "root").string()};
  }
  std::string add(const std::string& name, std::string_view list) {
    writeBundle(_folder, name, list);
    return (_folder / (name + ".mdimporter")).string();
  }

  TemporaryFolder _folder;
  FakeEnvironment _environment;
  ScopedService<Environment> _installed{_environment};
  const std::string _user = "data/ferncase/Library/Spotlight/",
                    _library = "root/Library/Spotlight/",
                    _system = "root/System/Library/Spotlight/";
};

TEST_F(ImporterCatalogTest, TheUsersFolderComesBeforeTheSystems) {
  const auto third = add(_system + "A", listWithTypes({"x.c"}));
  const auto second = add(_library + "A", listWithTypes({"x.b"}));
  const auto first = add(_user + "B", listWithTypes({"x.a", "x.a2"}));
  const auto zeroth = add(_user + "A", listWithTypes({}));
  auto found = installedImporters();
  ASSERT_EQ(found.size(), 4u);
  EXPECT_EQ(found[0].path, zeroth);
  EXPECT_EQ(found[1].path, first);
  EXPECT_THAT(found[1].types, ElementsAre("x.a", "x.a2"));
  EXPECT_EQ(found[2].path, second);
  EXPECT_EQ(found[3].path, third);
  EXPECT_TRUE(found[3].takes("x.c"));
  EXPECT_FALSE(found[3].takes("x.a"));
}

TEST_F(ImporterCatalogTest, WhatIsNoBundleOrHasNoTypesDoesNoHarm) {
  add(_user + "Broken", "<plist");
  add(_user + "Odd",
      "<plist version=\"1.0\"><dict><key>CFBundleDocumentTypes</key><array><string>x</string>"
      "<dict><key>LSItemContentTypes</key><string>x</string></dict><dict>"
      "<key>LSItemContentTypes</key><array><integer>1</integer><string>x.y</string></array>"
      "</dict></array></dict></plist>");
  _folder.write(_user + "File.mdimporter", "");
  std::filesystem::create_directory(_folder / (_user + "folder"));
  auto found = installedImporters();
  ASSERT_EQ(found.size(), 3u);
  EXPECT_TRUE(found[0].types.empty());
  EXPECT_TRUE(found[1].types.empty());
  EXPECT_THAT(found[2].types, ElementsAre("x.y"));
}

TEST_F(ImporterCatalogTest, WithoutFoldersThereIsNothing) {
  EXPECT_TRUE(installedImporters().empty());
  EXPECT_EQ(importerFolders().size(), 3u);
}

}  // namespace
}  // namespace kbx
