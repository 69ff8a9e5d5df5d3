// The whole road: the command, the plug-in, and this importer in the place of the system's.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/mail/Messages.h"
#include "tests/support/Process.h"

namespace kbx {
namespace {

using Json = nlohmann::json;

/// What the command says of the messages in a folder, one object each.
Json imported(const std::filesystem::path& folder) {
  const Finished finished =
      Process({FERNCASE_BINARY, "import", "--force", "--json", folder.string()}).run();
  EXPECT_EQ(finished.exitCode, 0) << finished.complaints;
  EXPECT_EQ(finished.complaints, "");
  return Json::parse(finished.output);
}

TEST(ForcedImport, FindsTheAttributesOfEveryExample) {
  const std::filesystem::path examples = FERNCASE_SOURCE_DIR "/examples";
  const Json messages = imported(examples);
  ASSERT_TRUE(messages.is_array());
  EXPECT_GE(messages.size(), 6u);
  for (const Json& message : messages) {
    const Json& attributes = message.contains("attributes") ? message["attributes"] : message;
    for (const char* name : {"kMDItemSubject", "kMDItemAuthors", "kMDItemTextContent",
                             "kMDItemRecipients", "com_apple_mail_dateSent", "kMDItemIdentifier"})
      EXPECT_FALSE(attributes.value(name, Json()).empty()) << name << message.dump();
  }
}

TEST(ForcedImport, MakesTextOfHTMLAloneAndLeavesTheFolderAsItWas) {
  TemporaryFolder folder;
  const std::string bytes =
      "Subject: a\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\nplain < words\n"
      "--b\nContent-Type: text/html\n\n<p>shown <!-- open\n--b\n\nlast words\n--b--\n";
  folder.write("a.eml", bytes);
  const std::string found = imported(folder.path()).dump();
  EXPECT_NE(found.find("plain < words\\nshown"), std::string::npos) << found;
  EXPECT_NE(found.find("last words"), std::string::npos) << found;
  EXPECT_EQ(folder.count(), 1u);
  EXPECT_EQ(folder.read("a.eml"), bytes);
}

}  // namespace
}  // namespace kbx
