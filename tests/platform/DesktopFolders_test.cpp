#include "platform/desktop/DesktopFolders.h"

#include <gmock/gmock.h>

#include "tests/support/FakeEnvironment.h"

namespace kbx {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class DesktopFolders : public testing::Test {
 protected:
  void set(std::vector<std::string> variables) { _environment.entries = std::move(variables); }

 private:
  FakeEnvironment _environment;
  ScopedService<Environment> _installed{_environment};
};

TEST_F(DesktopFolders, AVariableIsFoundByItsWholeName) {
  set({"HOMEPAGE=x", "HOME=/h", "EMPTY="});
  EXPECT_EQ(environmentVariable("HOME"), "/h");
  EXPECT_EQ(environmentVariable("EMPTY"), "");
  EXPECT_EQ(environmentVariable("HOM"), std::nullopt);
}

TEST_F(DesktopFolders, TheUsersFoldersAreNamedOrLieInTheHomeFolder) {
  set({"HOME=/h/"});
  EXPECT_EQ(configurationFolder(), "/h/.config");
  EXPECT_EQ(userDataFolder(), "/h/.local/share");
  set({"HOME=/h", "XDG_CONFIG_HOME=/c//", "XDG_DATA_HOME=/d"});
  EXPECT_EQ(configurationFolder(), "/c");
  EXPECT_EQ(userDataFolder(), "/d");
  set({"HOME=/"});
  EXPECT_EQ(configurationFolder(), "/.config");
}

TEST_F(DesktopFolders, ARelativePathCountsForNothing) {
  set({"HOME=h", "XDG_CONFIG_HOME=c", "XDG_DATA_HOME="});
  EXPECT_EQ(configurationFolder(), std::nullopt);
  EXPECT_EQ(userDataFolder(), std::nullopt);
  set({"XDG_DATA_DIRS=a:/b/:::c:/d"});
  EXPECT_THAT(dataFolders(), ElementsAre("/b", "/d"));
}

TEST_F(DesktopFolders, SharedDataLiesInTheUsualFoldersUnlessOthersAreNamed) {
  set({"HOME=/h"});
  EXPECT_THAT(dataFolders(), ElementsAre("/h/.local/share", "/usr/local/share", "/usr/share"));
  set({"XDG_DATA_DIRS="});
  EXPECT_THAT(dataFolders(), ElementsAre("/usr/local/share", "/usr/share"));
}

TEST_F(DesktopFolders, AnEndlessListIsCut) {
  std::string list = "XDG_DATA_DIRS=/a";
  for (int i = 0; i < 10'000; ++i) list += ":/a";
  set({list});
  EXPECT_THAT(dataFolders(), SizeIs(64));
}

TEST_F(DesktopFolders, LanguagesAreReadAsTextsAreLabelled) {
  set({"LANG=de_AT.UTF-8"});
  EXPECT_THAT(userLanguages(), ElementsAre("de_AT", "de"));
  set({"LANG=sr_RS.UTF-8@latin"});
  EXPECT_THAT(userLanguages(), ElementsAre("sr_RS@latin", "sr_RS", "sr@latin", "sr"));
  set({"LANG=fr"});
  EXPECT_THAT(userLanguages(), ElementsAre("fr"));
}

TEST_F(DesktopFolders, TheStrongerVariableDecides) {
  set({"LANG=fr", "LC_MESSAGES=it", "LC_ALL="});
  EXPECT_THAT(userLanguages(), ElementsAre("it"));
  set({"LANG=fr", "LC_MESSAGES=it", "LC_ALL=es"});
  EXPECT_THAT(userLanguages(), ElementsAre("es"));
  set({"LANG=fr", "LANGUAGE=pt_BR:pt:en"});
  EXPECT_THAT(userLanguages(), ElementsAre("pt_BR", "pt", "en", "fr"));
}

TEST_F(DesktopFolders, WithoutALocaleTextsAreReadAsTheyAre) {
  for (const char* locale : {"LANG=C", "LANG=POSIX", "LANG=C.UTF-8", "LANG="}) {
    set({locale, "LANGUAGE=de"});
    EXPECT_THAT(userLanguages(), IsEmpty()) << locale;
  }
}

TEST_F(DesktopFolders, ALanguageCannotLeadOutOfAFolder) {
  set({"LANG=../../etc", "LANGUAGE=a/b:de@../x:@:.:it"});
  EXPECT_THAT(userLanguages(), ElementsAre("it"));
}

}  // namespace
}  // namespace kbx
