#include <gtest/gtest.h>

#include "NSURL+KBXFileBasics.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/FakeFiles.h"
#include "tests/support/FakeMountTable.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

class NSURLKBXFileBasicsDisplay : public testing::Test {
 protected:
  NSURLKBXFileBasicsDisplay() {
    for (const char* path : {"/a", "/a/b", "/Volumes", "/Volumes/Backup", "/Volumes/Backup/a"})
      files.folder(path);
    files.file("/a/b/one:two.eml");
    volumes.labels["/dev/sda1"] = "System";
  }
  static Ref<NSURL> file(std::string_view path) {
    return NSURL::fileURLWithFileSystemRepresentation(path, false);
  }
  static std::string shown(std::string_view path) { return text(kbxDisplayPath(file(path))); }

  FakeFiles files;
  FakeMountTable volumes{{{"/", "8:1", "/dev/sda1"}, {"/Volumes/Backup", "8:17", "/dev/sdb1"}}};
  FakeEnvironment environment;
  ScopedService<Environment> installed{environment};
};

TEST_F(NSURLKBXFileBasicsDisplay, AColonIsShownAsASlash) {
  EXPECT_EQ(text(kbxDisplayNameWithExtension(file("/a/one:two:.eml"))), "one/two/.eml");
  EXPECT_EQ(text(kbxDisplayNameWithExtension(file("/a/b"))), "b");
  EXPECT_EQ(kbxDisplayNameWithExtension(nullptr), nullptr);
}

TEST_F(NSURLKBXFileBasicsDisplay, TheDisplayNameIsTheSystemsWhereTheItemExists) {
  EXPECT_EQ(text(kbxDisplayName(file("/"))), "System");
  EXPECT_EQ(text(kbxDisplayName(file("/a/b/one:two.eml"))), "one:two.eml");
  EXPECT_EQ(text(kbxDisplayName(file("/a/none.eml"))), "none.eml");
  EXPECT_EQ(kbxDisplayName(nullptr), nullptr);
}

TEST_F(NSURLKBXFileBasicsDisplay, AnItemThatVanishesMeanwhileHasItsOwnName) {
  int asked = 0;
  files.beforeQuestion = [&](const std::string& path) {
    if (++asked == 2) files.vanish(path);
  };
  EXPECT_EQ(text(kbxDisplayName(file("/a/b/one:two.eml"))), "one:two.eml");
  EXPECT_EQ(asked, 2);
}

TEST_F(NSURLKBXFileBasicsDisplay, TheNamesOfAnExistingPathAreJoined) {
  EXPECT_EQ(shown("/a/b/one:two.eml"), "System ‣ a ‣ b ‣ one:two.eml");
  EXPECT_EQ(shown("/a/./b//../b"), "System ‣ a ‣ b");
  EXPECT_EQ(shown("/"), "System");
  EXPECT_EQ(shown("/Volumes/Backup/a"), "Backup ‣ a");
}

TEST_F(NSURLKBXFileBasicsDisplay, AMissingPathUnderVolumesDropsTheFirstTwo) {
  EXPECT_EQ(shown("/Volumes/Gone/a"), "Gone ‣ a");
  EXPECT_EQ(shown("/Volumes/Gone"), "Gone");
  EXPECT_EQ(shown("/Volumes/Backup/none"), "Backup ‣ none");
}

TEST_F(NSURLKBXFileBasicsDisplay, FewerThanThreeComponentsKeepTheirVolumes) {
  files.vanish("/Volumes/Backup/a");
  files.vanish("/Volumes/Backup");
  files.vanish("/Volumes");
  EXPECT_EQ(shown("/Volumes"), "System ‣ Volumes");
}

TEST_F(NSURLKBXFileBasicsDisplay, AMissingPathOnTheRootVolumeBeginsWithItsName) {
  EXPECT_EQ(shown("/a/none/x"), "System ‣ a ‣ none ‣ x");
  EXPECT_EQ(shown("/a/Volumes/x"), "System ‣ a ‣ Volumes ‣ x");
  volumes.labels.clear();
  EXPECT_EQ(shown("/a/none/x"), "/ ‣ a ‣ none ‣ x") << "a volume without a name";
  EXPECT_EQ(shown("/a/b"), "/ ‣ a ‣ b");
}

TEST_F(NSURLKBXFileBasicsDisplay, APathThatVanishesMeanwhileIsShownByWhatWasFound) {
  // The last question is whether the path exists, after its names were found.
  int asked = 0;
  files.beforeQuestion = [&](const std::string& path) { asked += path == "/a/b"; };
  EXPECT_EQ(shown("/a/b"), "System ‣ a ‣ b");
  const int all = asked;
  asked = 0;
  files.beforeQuestion = [&](const std::string& path) {
    if (path == "/a/b" && ++asked == all) files.vanish(path);
  };
  EXPECT_EQ(shown("/a/b"), "System ‣ a ‣ b");
  EXPECT_EQ(shown("/a/b"), "System ‣ a ‣ b") << "now missing, with the root volume's name";
}

TEST_F(NSURLKBXFileBasicsDisplay, ANameThatIsNotUTF8IsShownAsFarAsItCanBe) {
  files.folder("/caf\xE9");
  for (const char* path : {"/caf\xE9", "/caf\xE8"})
    EXPECT_EQ(shown(path), "System ‣ caf\xEF\xBF\xBD") << path;
}

TEST_F(NSURLKBXFileBasicsDisplay, ADanglingLinkIsShownByItsNames) {
  files.link("/a/dangling", "gone");
  EXPECT_EQ(shown("/a/dangling"), "System ‣ a ‣ dangling");
}

TEST_F(NSURLKBXFileBasicsDisplay, AnAbsentLocationHasNoPath) {
  EXPECT_EQ(kbxDisplayPath(nullptr), nullptr);
}

}  // namespace
}  // namespace kbx
