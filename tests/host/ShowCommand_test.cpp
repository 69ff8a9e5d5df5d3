// The whole command as a user runs it, on a store that the test fills itself.
#include "host/show/ShowCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/index/FolderReader.h"
#include "host/store/Store.h"
#include "tests/support/Process.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;

class ShowCommandTest : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directory(_mail);
    Ref<NSError> error;
    const auto store = StoreWriter::open((_folder / "mail.db").string(), &error);
    ASSERT_TRUE(store);
    auto attributes = NSDictionary::dictionaryWithPairs(
        {{"kMDItemSubject"_ns, "Plans"_ns}, {"kMDItemTextContent"_ns, "The body"_ns}});
    ASSERT_TRUE(store->put(path("a.eml"), write("a.eml"), "", attributes, &error));
    ASSERT_TRUE(store->putFailure(path("bad.eml"), write("bad.eml"), "It is no message.", &error));
    _id = store->idOfPath(path("a.eml"), &error).value_or(0);
  }
  std::string path(std::string_view name) const { return (_mail / name).string(); }
  FileState write(std::string_view name) const {
    _folder.write("mail/" + std::string(name), "Subject: not read\n\n");
    FolderEntry entry;
    EXPECT_EQ(FolderReader::current().stateOfFile(path(name), &entry), 0);
    return entry.state;
  }
  Finished show(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(),
                     {FERNCASE_BINARY, "show", "--db", (_folder / "mail.db").string()});
    return Process(std::move(arguments)).folder(_mail).run();
  }

  TemporaryFolder _folder;
  const fs::path _mail = fs::canonical(_folder.path()) / "mail";
  std::int64_t _id = 0;
};

TEST_F(ShowCommandTest, AMessageIsKnownByItsPathAndByItsId) {
  const std::string text = "kMDItemSubject     = \"Plans\"\nkMDItemTextContent = \"The body\"\n";
  fs::create_directory_symlink(_mail, _folder / "link");
  fs::create_symlink(_mail / "a.eml", _folder / "letter");
  for (const std::string& operand :
       {std::string("a.eml"), std::string("./x/../a.eml"), path("a.eml"),
        (_folder / "link/a.eml").string(), (_folder / "letter").string(), std::to_string(_id)}) {
    SCOPED_TRACE(operand);
    auto [code, output, complaints] = show({operand});
    EXPECT_EQ(code, 0);
    EXPECT_EQ(output, text);
    EXPECT_EQ(complaints, "");
  }
}

TEST_F(ShowCommandTest, TheFormsAreThoseOfImport) {
  const auto array = json::parse(show({"--json", "a.eml"}).output);
  EXPECT_EQ(array[0].at("path"), path("a.eml"));
  EXPECT_EQ(array[0].at("attributes").at("kMDItemSubject"), "Plans");
  EXPECT_EQ(json::parse(show({"--ndjson", "a.eml"}).output), array[0]);
  EXPECT_EQ(show({"--raw", "--name", "kMDItemSubject", "--name", "none", "a.eml"}).output,
            std::string("Plans\0(null)\0", 13));
  EXPECT_EQ(show({"--no-text", "a.eml"}).output, "kMDItemSubject = \"Plans\"\n");
  EXPECT_THAT(show({"--plist", "a.eml"}).output, HasSubstr("<string>Plans</string>"));
}

TEST_F(ShowCommandTest, AFileThatChangedOrIsGoneIsShownAndTold) {
  _folder.write("mail/a.eml", "Subject: longer than before\n\n");
  auto changed = show({"a.eml"});
  EXPECT_EQ(changed.exitCode, 0);
  EXPECT_THAT(changed.output, HasSubstr("Plans"));
  EXPECT_EQ(changed.complaints,
            "ferncase: " + path("a.eml") + ": It has changed since it was indexed.\n");
  fs::remove(_mail / "a.eml");
  auto gone = show({"a.eml"});
  EXPECT_EQ(gone.exitCode, 0);
  EXPECT_THAT(gone.output, HasSubstr("Plans"));
  EXPECT_THAT(gone.complaints, HasSubstr("It is gone since it was indexed."));
}

TEST_F(ShowCommandTest, WhatTheStoreDoesNotKnowIsAnErrorEach) {
  for (auto operand : {"b.eml", "12345678", "99999999999999999999", ""}) {
    auto [code, output, complaints] = show({operand});
    EXPECT_EQ(code, 4);
    EXPECT_EQ(output, "");
    EXPECT_THAT(complaints, HasSubstr("The store knows no such message."));
  }
  auto [code, output, complaints] = show({"bad.eml", "a.eml"});
  EXPECT_EQ(code, 3);
  EXPECT_THAT(output, HasSubstr("Plans"));
  EXPECT_THAT(complaints, HasSubstr("bad.eml: It is no message."));
}

TEST_F(ShowCommandTest, WrongUsageAndAMissingStoreAreTold) {
  EXPECT_EQ(show({}).exitCode, 2);
  EXPECT_EQ(show({"--raw", "a.eml"}).exitCode, 2);
  EXPECT_EQ(show({"--json", "--plist", "a.eml"}).exitCode, 2);
  fs::remove(_folder / "mail.db");
  EXPECT_EQ(show({"a.eml"}).exitCode, 5);
}

}  // namespace
}  // namespace kbx
