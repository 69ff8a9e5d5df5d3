#include "platform/desktop/UserFolders.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "tests/support/FakeEnvironment.h"
#include "tests/support/MessageCatalogs.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(UserFolders, TheLinesOfTheListNameFolders) {
  EXPECT_THAT(pathsInUserFolders("# made by a program\n\nXDG_DESKTOP_DIR=\"$HOME/Desktop\"\n"
                                 " XDG_MUSIC_DIR = \"/data/My \\\"Music\\\"/\"\r\n",
                                 "/home/ada/"),
              ElementsAre("/home/ada/Desktop", "/data/My \"Music\""));
}

TEST(UserFolders, WhatNamesNoFolderCountsForNothing) {
  for (const char* line :
       {"", "XDG_X_DIR", "XDG_X_DIR=", "XDG_X_DIR=\"", "XDG_X_DIR=\"\"", "XDG_X_DIR=$HOME/a",
        "XDG_X_DIR=\"a\"", "XDG_X_DIR=\"$HOME\"", "XDG_X_DIR=\"$HOME/\"", "XDG_X=\"/a\"",
        "X_DIR=\"/a\"", "XDG_X_DIR=\"/home/ada\""})
    EXPECT_THAT(pathsInUserFolders(line, "/home/ada"), IsEmpty()) << line;
}

class UserFoldersOnDisk : public testing::Test {
 protected:
  UserFoldersOnDisk() {
    std::filesystem::create_directories(_folder / "locale/fr/LC_MESSAGES");
    _folder.write("user-dirs.dirs",
                  "XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n"
                  "XDG_PICTURES_DIR=\"$HOME/My Pictures\"\n");
    _folder.write("locale/fr/LC_MESSAGES/xdg-user-dirs.mo",
                  messageCatalog({{"Downloads", "Téléchargements"}}));
  }
  void speak(const std::string& language) {
    const std::string path = _folder.path().string();
    _environment.entries = {"HOME=/home/ada", "XDG_CONFIG_HOME=" + path, "XDG_DATA_HOME=" + path,
                            "XDG_DATA_DIRS=/no/such/folder", "LANG=" + language};
  }

 private:
  TemporaryFolder _folder;
  FakeEnvironment _environment;
  ScopedService<Environment> _installed{_environment};
};

TEST_F(UserFoldersOnDisk, AFolderOfTheDesktopHasANameInTheUsersLanguage) {
  speak("fr_FR.UTF-8");
  EXPECT_EQ(localizedNameOfUserFolder("/home/ada/Downloads"), "Téléchargements");
}

TEST_F(UserFoldersOnDisk, OthersKeepTheirs) {
  speak("fr_FR.UTF-8");
  EXPECT_EQ(localizedNameOfUserFolder("/home/eve/Downloads"), std::nullopt);
  EXPECT_EQ(localizedNameOfUserFolder("/home/ada/My Pictures"), std::nullopt) << "not translated";
  for (const char* language : {"C", "it_IT.UTF-8"}) {
    speak(language);
    EXPECT_EQ(localizedNameOfUserFolder("/home/ada/Downloads"), std::nullopt) << language;
  }
}

}  // namespace
}  // namespace kbx
