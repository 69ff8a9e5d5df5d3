#include "host/import/InputFiles.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/console/FerncaseErrors.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using testing::ElementsAre;

/// A folder to walk; inputs in it are shown without its path.
class InputFilesTest : public testing::Test {
 protected:
  void makeFile(std::string_view name) {
    std::filesystem::create_directories((_folder / name).parent_path());
    _folder.write(name, "");
  }
  void makeLink(std::string_view name, const std::filesystem::path& target) {
    std::filesystem::create_symlink(target, _folder / name);
  }
  std::string path(std::string_view name) { return (_folder / name).string(); }

  /// "!" and the code stand behind an input with an error.
  std::vector<std::string> inputsOf(std::vector<std::string> arguments) {
    InputFiles inputs(std::move(arguments));
    std::vector<std::string> found;
    while (auto input = inputs.next()) {
      std::string name = input->path;
      const std::string prefix = path("");
      if (name.starts_with(prefix)) name.erase(0, prefix.size());
      if (input->error) name += "!" + std::to_string(input->error->code());
      found.push_back(std::move(name));
    }
    return found;
  }
  std::vector<std::string> walk() { return inputsOf({_folder.path().string()}); }

  TemporaryFolder _folder;
};

TEST_F(InputFilesTest, ArgumentsThatAreNoFoldersAreGivenAsTheyAre) {
  makeFile("letter.txt");
  EXPECT_THAT(inputsOf({path("missing"), path("letter.txt"), "-", "", "a//b"}),
              ElementsAre("missing", "letter.txt", "-", "", "a//b"));
}

TEST_F(InputFilesTest, TheNameOfStandardInputIsNeverAFolder) {
  makeFile("-/a.eml");
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(_folder.path());
  EXPECT_THAT(inputsOf({"-", "./-"}), ElementsAre("-", "./-/a.eml"));
  std::filesystem::current_path(before);
}

TEST_F(InputFilesTest, NothingGivesNothing) { EXPECT_TRUE(inputsOf({}).empty()); }

TEST_F(InputFilesTest, AFolderStandsForItsMessagesSortedByTheBytesOfTheirNames) {
  for (auto name :
       {"b.eml", "a.eml", "C.eml", "é.eml", "a b.eml", "-x.eml", "\xFF.eml", "a\nb.eml"})
    makeFile(name);
  EXPECT_THAT(walk(), ElementsAre("-x.eml", "C.eml", "a\nb.eml", "a b.eml", "a.eml", "b.eml",
                                  "é.eml", "\xFF.eml"));
}

TEST_F(InputFilesTest, TheEndingDecidesInEitherCase) {
  for (auto name : {"a.eml", "b.EML", "c.Eml", ".d.eml", ".eml", "eml", "e.emlx", "f.eml.txt", "g",
                    "h.partial.emlx", "i.EMLX"})
    makeFile(name);
  EXPECT_THAT(walk(), ElementsAre(".d.eml", ".eml", "a.eml", "b.EML", "c.Eml", "e.emlx",
                                  "h.partial.emlx", "i.EMLX"));
}

TEST_F(InputFilesTest, EveryFileInAMaildirIsAMessage) {
  for (auto name : {"mail/cur/2.host:2,S", "mail/cur/1.host:2,", "mail/cur/.list",
                    "mail/new/3.host", "mail/tmp/4.host", "mail/dovecot-uidlist",
                    "mail/.Sent/cur/5.host:2,S", "mail/.Sent/new/6.eml", "cur/7.host"})
    makeFile(name);
  EXPECT_THAT(walk(), ElementsAre("mail/.Sent/cur/5.host:2,S", "mail/.Sent/new/6.eml",
                                  "mail/cur/1.host:2,", "mail/cur/2.host:2,S", "mail/new/3.host"));
  EXPECT_THAT(inputsOf({path("mail/new/")}), ElementsAre("mail/new/3.host"));
}

TEST_F(InputFilesTest, WhatAnImporterIsWritingIsPassedOver) {
  makeFile(".temp-KBXEMLXFile-1.emlx");
  makeFile(".temp-KBXEMLXFile-2.eml");
  makeFile(".temp-KBXEMLXFile-3/a.eml");
  makeFile("b.eml");
  EXPECT_THAT(walk(), ElementsAre("b.eml"));
}

TEST_F(InputFilesTest, InnerFoldersAreWalkedAtTheirPlace) {
  for (auto name : {"a/2.eml", "a/1.eml", "a/x/3.eml", "b.eml", "c.eml/4.eml", "d/none.txt"})
    makeFile(name);
  EXPECT_THAT(walk(), ElementsAre("a/1.eml", "a/2.eml", "a/x/3.eml", "b.eml", "c.eml/4.eml"));
}

TEST_F(InputFilesTest, ATrailingSlashIsNotDoubled) {
  makeFile("a/1.eml");
  EXPECT_THAT(inputsOf({path("a/")}), ElementsAre("a/1.eml"));
}

TEST_F(InputFilesTest, SeveralArgumentsKeepTheirOrder) {
  makeFile("b/1.eml");
  makeFile("a/2.eml");
  EXPECT_THAT(inputsOf({path("b"), path("x"), path("a")}), ElementsAre("b/1.eml", "x", "a/2.eml"));
}

TEST_F(InputFilesTest, AFolderWithoutAMessageIsReported) {
  makeFile("a/inner/readme.txt");
  makeFile("b/1.eml");
  InputFiles inputs({path("a"), path("b")});
  auto empty = inputs.next();
  ASSERT_TRUE(empty && empty->error);
  EXPECT_EQ(empty->path, path("a"));
  EXPECT_EQ(text(empty->error->domain()), "FerncaseErrorDomain");
  EXPECT_EQ(empty->error->code(), FerncaseNoMessagesError);
  EXPECT_EQ(inputs.next()->path, path("b/1.eml"));
  EXPECT_FALSE(inputs.next());
}

TEST_F(InputFilesTest, AnEmptyInnerFolderIsNothingToReport) {
  makeFile("a.eml");
  std::filesystem::create_directory(_folder / "empty");
  EXPECT_THAT(walk(), ElementsAre("a.eml"));
}

TEST_F(InputFilesTest, LinksLeadToFilesButNotInCircles) {
  makeFile("a/1.eml");
  makeLink("a/self", ".");
  makeLink("a/up", "..");
  makeLink("a/2.eml", "1.eml");
  makeLink("a/3.eml", "nowhere");
  makeLink("a/4.eml", "4.eml");
  makeLink("b", "a");
  EXPECT_THAT(walk(), ElementsAre("a/1.eml", "a/2.eml", "a/3.eml", "a/4.eml"));
}

TEST_F(InputFilesTest, ALinkToAFolderIsFollowedWhereAnArgumentNamesIt) {
  makeFile("a/1.eml");
  makeLink("b", "a");
  EXPECT_THAT(inputsOf({path("b")}), ElementsAre("b/1.eml"));
}

TEST_F(InputFilesTest, WhatOnlyLooksLikeAMessageIsGivenToo) {
  ASSERT_EQ(::mkfifo(path("pipe.eml").c_str(), 0600), 0);
  EXPECT_THAT(walk(), ElementsAre("pipe.eml"));
}

/// Makes folders inside each other until their path is longer than the system takes.
void makeTooDeep(const std::filesystem::path& folder, const std::string& name) {
  int at = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  for (std::size_t length = 0; length < 5000 && at >= 0; length += name.size() + 1) {
    ASSERT_EQ(::mkdirat(at, name.c_str(), 0700), 0);
    const int inner = ::openat(at, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ::close(at);
    at = inner;
  }
  ASSERT_GE(at, 0);
  ::close(at);
}

TEST_F(InputFilesTest, AFolderThatCannotBeReadIsReportedAndTheOthersAreWalked) {
  makeFile("z.eml");
  makeTooDeep(_folder.path(), std::string(250, 'd'));
  auto found = walk();
  ASSERT_EQ(found.size(), 2u);
  EXPECT_TRUE(found[0].ends_with("d!256")) << found[0];
  EXPECT_EQ(found[1], "z.eml");
}

TEST_F(InputFilesTest, AnUnreadableInnerFolderIsReportedOnceWhereThereIsNothingElse) {
  makeTooDeep(_folder.path(), std::string(250, 'd'));
  EXPECT_EQ(walk().size(), 1u);
}

}  // namespace
}  // namespace kbx
