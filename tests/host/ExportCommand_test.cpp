// The whole command as a user runs it, on a store that the test fills itself.
#include "host/export/ExportCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/store/Store.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "tests/support/JSONLines.h"
#include "tests/support/Process.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr char kPython[] = "/usr/bin/python3";

class ExportCommandTest : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directory(_mail);
    put("a.eml", "Plans", "Subject: Plans\r\n\r\nFrom here on\r\n>From there\r\n");
    put("b.emlx", "Wrapped", "23   \nSubject: Wrapped\n\nbody\n<?xml version=\"1.0\"?>\n<plist/>");
    put("c.eml", "Plain", "Return-Path: <r@x.org>\nSubject: Plain\n\nlast line without end");
  }
  void put(const std::string& name, std::string_view subject, std::string_view bytes) const {
    _folder.write("mail/" + name, bytes);
    Ref<NSError> error;
    const auto store = StoreWriter::open((_folder / "mail.db").string(), &error);
    ASSERT_TRUE(store);
    auto text = NSString::stringWithLossyUTF8(subject);
    auto sender = NSArray::arrayWithObjects({"ada@example.org"_ns});
    auto date = NSDate::dateWithTimeIntervalSince1970(1795233360);
    auto attributes = NSDictionary::dictionaryWithPairs({{"kMDItemSubject"_ns, text},
                                                         {"kMDItemAuthorEmailAddresses"_ns, sender},
                                                         {"kMDItemContentCreationDate"_ns, date},
                                                         {"kMDItemTextContent"_ns, text}});
    ASSERT_TRUE(store->put(path(name), {}, "", attributes, &error));
  }
  std::string path(std::string_view name) const { return (_mail / name).string(); }
  Finished run(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(),
                     {FERNCASE_BINARY, "export", "--db", (_folder / "mail.db").string()});
    return Process(std::move(arguments)).folder(_folder.path()).run();
  }
  /// What a Python program prints that reads the file "out".
  std::string python(const std::string& program) const {
    auto finished = Process({kPython, "-c", program}).folder(_folder.path()).run();
    EXPECT_EQ(finished.exitCode, 0) << finished.complaints;
    return finished.output;
  }

  TemporaryFolder _folder;
  const fs::path _mail = fs::canonical(_folder.path()) / "mail";
};

TEST_F(ExportCommandTest, EverythingIsOneObjectALineWithAllAttributes) {
  auto [code, output, complaints] = run({});
  EXPECT_EQ(code, 0);
  EXPECT_EQ(complaints, "");
  const auto messages = jsonLines(output);
  ASSERT_EQ(messages.size(), 3u);
  EXPECT_EQ(messages[0], (json{{"path", path("a.eml")},
                               {"attributes",
                                {{"kMDItemSubject", "Plans"},
                                 {"kMDItemTextContent", "Plans"},
                                 {"kMDItemAuthorEmailAddresses", {"ada@example.org"}},
                                 {"kMDItemContentCreationDate", "2026-11-21T03:56:00Z"}}}}));
  EXPECT_EQ(messages[2].at("path"), path("c.eml"));
}

TEST_F(ExportCommandTest, AQueryChoosesTheMessages) {
  const auto messages = jsonLines(run({"subject:wrapped", "OR", "subject:plain"}).output);
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_EQ(messages[0].at("path"), path("b.emlx"));
  EXPECT_EQ(jsonLines(run({"-plans"}).output).size(), 2u);
  EXPECT_EQ(run({"nothing"}).exitCode, 1);
  auto [code, output, complaints] = run({"form:ada"});
  EXPECT_EQ(code, 2);
  EXPECT_THAT(complaints, HasSubstr("^"));
}

TEST_F(ExportCommandTest, BulkHasAnActionAndADocumentForEach) {
  const auto both = jsonLines(run({"--format", "bulk", "--index", "post", "plans"}).output);
  ASSERT_EQ(both.size(), 2u);
  EXPECT_EQ(both[0].at("index").at("_index"), "post");
  EXPECT_TRUE(both[0].at("index").at("_id").is_string());
  EXPECT_EQ(both[1].at("path"), path("a.eml"));
  EXPECT_EQ(both[1].at("kMDItemSubject"), "Plans");
}

TEST_F(ExportCommandTest, PythonReadsTheBulkFile) {
  if (!fs::exists(kPython)) GTEST_SKIP() << "no python3";
  ASSERT_EQ(run({"--format=bulk", "-o", "out"}).exitCode, 0);
  EXPECT_EQ(
      python("import json\n"
             "lines = [json.loads(line) for line in open('out')]\n"
             "for action, document in zip(lines[::2], lines[1::2]):\n"
             "    print(list(action), action['index']['_index'], document['kMDItemSubject'])"),
      "['index'] mail Plans\n['index'] mail Wrapped\n['index'] mail Plain\n");
}

TEST_F(ExportCommandTest, AMailboxHoldsTheMessagesAsTheyAre) {
  EXPECT_EQ(run({"--format", "mbox"}).output,
            "From ada@example.org Sat Nov 21 03:56:00 2026\n"
            "Subject: Plans\n\n>From here on\n>>From there\n\n"
            "From ada@example.org Sat Nov 21 03:56:00 2026\n"
            "Subject: Wrapped\n\nbody\n\n"
            "From r@x.org Sat Nov 21 03:56:00 2026\n"
            "Return-Path: <r@x.org>\nSubject: Plain\n\nlast line without end\n\n");
}

TEST_F(ExportCommandTest, PythonReadsTheMailbox) {
  if (!fs::exists(kPython)) GTEST_SKIP() << "no python3";
  ASSERT_EQ(run({"--format=mbox", "--output", "out"}).exitCode, 0);
  EXPECT_EQ(python("import mailbox, re\n"
                   "for message in mailbox.mbox('out'):\n"
                   "    body = re.sub('(?m)^>(>*From )', r'\\1', message.get_payload())\n"
                   "    print(message['subject'], message.get_from().split()[0], repr(body))"),
            "Plans ada@example.org 'From here on\\n>From there\\n'\n"
            "Wrapped ada@example.org 'body\\n'\n"
            "Plain r@x.org 'last line without end\\n'\n");
}

TEST_F(ExportCommandTest, FilesThatAreGoneAreToldAndOthersGoOn) {
  fs::remove(_mail / "b.emlx");
  auto [code, output, complaints] = run({"--format=mbox"});
  EXPECT_EQ(code, 3);
  EXPECT_THAT(output, HasSubstr("Subject: Plain"));
  EXPECT_THAT(complaints, HasSubstr("b.emlx: "));
  EXPECT_EQ(run({"--format=mbox", "wrapped"}).exitCode, 4);
  EXPECT_EQ(run({"wrapped"}).exitCode, 0);  // from the store alone
}

TEST_F(ExportCommandTest, AFileIsThereWhenItIsCompleteOrNotAtAll) {
  _folder.write("out", "old");
  EXPECT_EQ(run({"-o", "out", "nothing"}).exitCode, 1);
  EXPECT_EQ(_folder.read("out"), "old");
  EXPECT_EQ(run({"-o", "out", "plans"}).exitCode, 0);
  EXPECT_EQ(jsonLines(_folder.read("out")).size(), 1u);
  auto [code, output, complaints] = run({"-o", "gone/out"});
  EXPECT_EQ(code, 1);
  EXPECT_THAT(complaints, HasSubstr("gone/out: "));
}

TEST_F(ExportCommandTest, WrongUsageIsTold) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--format=csv"}, {"--index=x"}, {"--format=bulk", "--index="}})
    EXPECT_EQ(run(arguments).exitCode, 2);
  fs::remove(_folder / "mail.db");
  EXPECT_EQ(run({}).exitCode, 5);
}

}  // namespace
}  // namespace kbx
