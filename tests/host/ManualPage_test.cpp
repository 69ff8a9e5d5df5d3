#include "host/documents/ManualPage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/Process.h"

namespace kbx {
namespace {

using testing::HasSubstr;

/// As the page writes it.
std::string hyphened(std::string_view text) {
  std::string result;
  for (const char c : text) result += c == '-' ? "\\-" : std::string(1, c);
  return result;
}

TEST(ManualPage, EveryOptionOfEveryCommandHasAnEntry) {
  for (const CommandOutline& command : allOutlines()) {
    const std::string page = manualPage(command);
    EXPECT_THAT(page, HasSubstr("\\- " + command.summary.substr(0, command.summary.size() - 1)));
    for (const OptionOutline& option : command.options)
      for (const std::string& name : option.names)
        EXPECT_THAT(page, HasSubstr("\\fB" + hyphened(name) + "\\fR")) << command.name;
  }
}

TEST(ManualPage, TheGeneralPageNamesEveryCommand) {
  const auto commands = allOutlines();
  const std::string page = manualPage(commands);
  for (const CommandOutline& command : commands)
    EXPECT_THAT(page, HasSubstr("\\fBferncase\\-" + command.name + "\\fR(1)"));
}

TEST(ManualPage, NoTextIsTakenForACommandOfTheFormatter) {
  CommandOutline command{"x", "Do it.", "", ".TH a\n'b\n\\fBc\n\n  kept \\d", {}};
  EXPECT_THAT(manualPage(command),
              HasSubstr("\\&.TH a\n\\&'b\n\\efBc\n.PP\n.nf\n  kept \\ed\n.fi\n"));
}

TEST(ManualPage, TheFormatterHasNoComplaints) {
  if (!std::filesystem::exists("/usr/bin/groff")) GTEST_SKIP() << "no groff";
  const auto commands = allOutlines();
  std::vector<std::string> pages{manualPage(commands)};
  for (const CommandOutline& command : commands) pages.push_back(manualPage(command));
  for (const std::string& page : pages) {
    auto shown = Process({"/usr/bin/groff", "-man", "-ww", "-Tutf8"}).input(page).run();
    EXPECT_EQ(shown.complaints, "");
    EXPECT_EQ(shown.exitCode, 0);
  }
}

}  // namespace
}  // namespace kbx
