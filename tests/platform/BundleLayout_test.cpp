#include "platform/resources/BundleLayout.h"

#include <gtest/gtest.h>

#include "tests/support/FakeFiles.h"

namespace kbx {
namespace {

void bundle(FakeFiles& files, const std::string& path, const std::string& executables) {
  for (const auto& folder : {path, path + "/Contents", path + "/Contents/" + executables})
    files.folder(folder);
  files.file(path + "/Contents/Info.plist");
}

TEST(BundleLayout, AnApplicationIsKnownByItsNameAndItsLayout) {
  FakeFiles files;
  bundle(files, "/Tool.app", "Linux");
  bundle(files, "/Other.APP", "MacOS");
  bundle(files, "/Tool.bundle", "Linux");
  bundle(files, "/Tool", "Linux");
  files.folder("/Empty.app");
  EXPECT_TRUE(isApplication("/Tool.app"));
  EXPECT_TRUE(isApplication("/Other.APP"));
  EXPECT_FALSE(isApplication("/Tool.bundle"));
  EXPECT_FALSE(isApplication("/Tool"));
  EXPECT_FALSE(isApplication("/Empty.app"));
}

TEST(BundleLayout, NoPartOfTheLayoutMayBeMissing) {
  for (const char* missing : {"/A.app/Contents/Info.plist", "/A.app/Contents/Linux"}) {
    FakeFiles files;
    bundle(files, "/A.app", "Linux");
    ASSERT_TRUE(isApplication("/A.app"));
    files.vanish(missing);
    EXPECT_FALSE(isApplication("/A.app")) << missing;
    files.link(missing, missing);
    EXPECT_FALSE(isApplication("/A.app")) << "a loop of links";
  }
}

TEST(BundleLayout, APackageIsKnownByItsNameOrItsLayout) {
  FakeFiles files;
  bundle(files, "/Tool", "Linux");
  for (const char* path : {"/a/Tool.app", "/Mail.mdimporter", "/letter.RTFD"})
    EXPECT_TRUE(isPackage(path)) << path;
  EXPECT_TRUE(isPackage("/Tool"));
  for (const char* path : {"/folder", "/folder.d", "/.app", "/app", "/Tool.app.d", "/", "/x.app/y"})
    EXPECT_FALSE(isPackage(path)) << path;
}

}  // namespace
}  // namespace kbx
