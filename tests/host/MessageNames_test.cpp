#include "host/import/MessageNames.h"

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

class MessageNamesTest : public testing::Test {
 protected:
  void makeFolders(std::initializer_list<const char*> names) {
    for (const char* name : names) std::filesystem::create_directories(_folder / name);
  }
  std::string path(std::string_view name) { return (_folder / name).string(); }

  TemporaryFolder _folder;
};

TEST_F(MessageNamesTest, TheEndingDecidesInEitherCase) {
  for (auto name : {"a.eml", "b.EML", ".eml", "1.emlx", "2.EmlX", "3.partial.emlx"})
    EXPECT_TRUE(isMessageName(name)) << name;
  for (auto name : {"", "eml", "a.eml.txt", "aeml", "a.emlxx", "a.mbox", "a.emlx "})
    EXPECT_FALSE(isMessageName(name)) << name;
}

TEST_F(MessageNamesTest, AMaildirIsKnownByTwoOfItsThreeFolders) {
  makeFolders({"whole/cur", "whole/new", "whole/tmp", "copied/cur", "copied/new", "cut/new",
               "cut/tmp", "alone/cur", "other/cur", "other/old"});
  for (auto name : {"whole/cur", "whole/new", "whole/cur/", "whole/./new/.", "copied/cur",
                    "copied/new", "cut/new"})
    EXPECT_TRUE(isMaildirFolder(path(name))) << name;
  for (auto name : {"whole/tmp", "whole", "alone/cur", "other/cur", "whole/CUR", "cut/cur/x"})
    EXPECT_FALSE(isMaildirFolder(path(name))) << name;
}

TEST_F(MessageNamesTest, AFileIsNoFolderOfAMaildir) {
  makeFolders({"cur"});
  _folder.write("new", "");
  EXPECT_FALSE(isMaildirFolder(path("cur")));
}

TEST_F(MessageNamesTest, TheWorkingFolderMayBeAMaildirs) {
  makeFolders({"cur", "new"});
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(_folder / "cur");
  EXPECT_TRUE(isMaildirFolder("."));
  EXPECT_TRUE(isMaildirFolder("../new"));
  EXPECT_TRUE(isMaildirMessage("1.host:2,S"));
  EXPECT_FALSE(isMaildirFolder(".."));
  std::filesystem::current_path(before);
}

TEST_F(MessageNamesTest, FilesOfAMaildirAreMessagesUnlessTheirNameSaysMore) {
  makeFolders({"cur", "new", "tmp"});
  for (auto name : {"cur/1288.M5P6.host:2,S", "new/1288.host.example.zip", "cur/message"})
    EXPECT_TRUE(isMaildirMessage(path(name))) << name;
  for (auto name : {"cur/.uidlist", "cur/a.emlx", "new/b.EML", "tmp/1288.host", "dovecot-uidlist"})
    EXPECT_FALSE(isMaildirMessage(path(name))) << name;
}

TEST_F(MessageNamesTest, APathWithoutAFileIsNoMessage) {
  for (auto name : {"", "/", "cur", "//"}) EXPECT_FALSE(isMaildirMessage(name)) << name;
}

}  // namespace
}  // namespace kbx
