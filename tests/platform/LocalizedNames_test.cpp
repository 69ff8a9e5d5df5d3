#include "platform/resources/LocalizedNames.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/FakeEnvironment.h"
#include "tests/support/FakeMountTable.h"
#include "tests/support/MessageCatalogs.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

class LocalizedNames : public testing::Test {
 protected:
  LocalizedNames() {
    std::filesystem::create_directories(folder / "applications/kde");
    environment.entries = {"HOME=/home/ada", "XDG_DATA_HOME=" + folder.path().string(),
                           "LANG=de_DE.UTF-8"};
  }
  std::string shown(std::string_view name) { return text(localizedName((folder / name).string())); }

  TemporaryFolder folder;
  FakeMountTable volumes{{{"/", "8:1", "/dev/sda1"}}};
  FakeEnvironment environment;

 private:
  ScopedService<Environment> _installed{environment};
};

TEST_F(LocalizedNames, AFileIsCalledWhatItIsCalled) {
  EXPECT_EQ(shown("a.eml"), "a.eml");
  EXPECT_EQ(shown("a:b"), "a:b");
  EXPECT_EQ(localizedName("/caf\xE9")->characterAtIndex(3), 0xDCE9);
}

TEST_F(LocalizedNames, TheRootIsCalledLikeItsVolume) {
  EXPECT_EQ(text(localizedName("/")), "/");
  volumes.labels["/dev/sda1"] = "System Disk";
  EXPECT_EQ(text(localizedName("/")), "System Disk");
  volumes.entries.clear();
  EXPECT_EQ(text(localizedName("/")), "/");
}

TEST_F(LocalizedNames, AnApplicationIsCalledWhatItsEntrySays) {
  folder.write("applications/files.desktop", "[Desktop Entry]\nName=Files\nName[de]=Dateien\n");
  folder.write("applications/kde/mail.desktop", "[Desktop Entry]\nName=Mail\n");
  EXPECT_EQ(shown("applications/files.desktop"), "Dateien");
  EXPECT_EQ(shown("applications/kde/mail.desktop"), "Mail");
}

TEST_F(LocalizedNames, OnlyInFoldersOfApplicationsDoesAFileChooseItsName) {
  folder.write("invoice.pdf.desktop", "[Desktop Entry]\nName=invoice.pdf\n");
  folder.write("applications/a.txt", "[Desktop Entry]\nName=Other\n");
  EXPECT_EQ(shown("invoice.pdf.desktop"), "invoice.pdf.desktop");
  EXPECT_EQ(shown("applications/a.txt"), "a.txt");
}

TEST_F(LocalizedNames, AnEntryThatCannotBeShownLeavesTheFilesName) {
  for (const std::string& name : {std::string("Name=\xFF"), std::string("Name="), std::string(),
                                 "Name=a\n#" + std::string(300 << 10, 'x')}) {
    folder.write("applications/a.desktop", "[Desktop Entry]\n" + name);
    EXPECT_EQ(shown("applications/a.desktop"), "a.desktop");
  }
}

TEST_F(LocalizedNames, AFolderOfTheDesktopIsTranslated) {
  std::filesystem::create_directories(folder / "locale/de/LC_MESSAGES");
  folder.write("user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n");
  folder.write("locale/de/LC_MESSAGES/xdg-user-dirs.mo",
               messageCatalog({{"Downloads", "Geläden"}}));
  environment.entries.push_back("XDG_CONFIG_HOME=" + folder.path().string());
  EXPECT_EQ(text(localizedName("/home/ada/Downloads")), "Geläden");
  folder.write("locale/de/LC_MESSAGES/xdg-user-dirs.mo", messageCatalog({{"Downloads", "\xFF"}}));
  EXPECT_EQ(text(localizedName("/home/ada/Downloads")), "Downloads") << "no text";
}

}  // namespace
}  // namespace kbx
