#include "platform/desktop/DesktopEntry.h"

#include <gtest/gtest.h>

#include <vector>

namespace kbx {
namespace {

std::optional<std::string> name(std::string_view text, std::vector<std::string> languages = {}) {
  return nameInDesktopEntry(text, languages);
}

constexpr std::string_view kEntry =
    "# a comment\r\n\n[Desktop Entry]\nType=Application\nName[de]=Dateien\nName = Files\r\n"
    "Name[de_AT]=Dateiln\nGenericName=Browser\n[Desktop Action new]\nName=New Window\n";

TEST(DesktopEntry, TheBestLanguageThatHasANameCounts) {
  EXPECT_EQ(name(kEntry), "Files");
  EXPECT_EQ(name(kEntry, {"fr"}), "Files");
  EXPECT_EQ(name(kEntry, {"de_DE", "de"}), "Dateien");
  EXPECT_EQ(name(kEntry, {"de_AT", "de"}), "Dateiln");
}

TEST(DesktopEntry, OtherGroupsCountForNothing) {
  EXPECT_EQ(name("Name=before\n[Other]\nName=other\n"), std::nullopt);
  EXPECT_EQ(name("[Other]\nName=other\n[Desktop Entry]\nName=own"), "own");
}

TEST(DesktopEntry, EscapesAreDecoded) {
  EXPECT_EQ(name("[Desktop Entry]\nName=a\\sb\\\\n\\tc\\"), "a b\\n\tc\\");
}

TEST(DesktopEntry, WhatIsNoEntryHasNoName) {
  for (const char* text : {"", "[Desktop Entry]", "[Desktop Entry]\nName=", "[Desktop Entry]\nName",
                           "[Desktop Entry]\nName[de=x\nNamed=y\n=z", "\n\n=", "["})
    EXPECT_EQ(name(text), std::nullopt) << text;
}

}  // namespace
}  // namespace kbx
