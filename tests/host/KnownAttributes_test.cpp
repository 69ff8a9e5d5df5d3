// The table against what the importers that the build made deliver.
#include "host/results/KnownAttributes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>

#include "tests/support/Process.h"

namespace kbx {
namespace {

using nlohmann::json;

const KnownAttribute* knownNamed(std::string_view name) {
  const auto known = std::ranges::find(knownAttributes(), name, &KnownAttribute::name);
  return known == knownAttributes().end() ? nullptr : &*known;
}

bool hasType(const json& value, std::string_view type) {
  static const std::regex date("\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d(\\.\\d+)?Z");
  if (type == "string") return value.is_string();
  if (type == "number") return value.is_number();
  if (type == "boolean") return value.is_boolean();
  if (type == "date") return value.is_string() && std::regex_match(value.get<std::string>(), date);
  return type == "array of strings" && value.is_array() &&
         std::ranges::all_of(value, [](const json& element) { return element.is_string(); });
}

/// The names of all attributes that the messages have; each must be known, and of its type.
std::set<std::string, std::less<>> checkedNames(const std::string& path) {
  std::set<std::string, std::less<>> names;
  std::istringstream stream(
      Process({FERNCASE_BINARY, "import", "--ndjson", "--extra", path}).run().output);
  for (std::string line; std::getline(stream, line);) {
    const json result = json::parse(line);
    for (const auto& [name, value] : result.at("attributes").items()) {
      const KnownAttribute* known = knownNamed(name);
      EXPECT_TRUE(known && hasType(value, known->type)) << name << " of " << result.at("path");
      names.insert(name);
    }
  }
  return names;
}

TEST(KnownAttributes, AreSortedAndNamedOnce) {
  const auto table = knownAttributes();
  EXPECT_TRUE(std::ranges::is_sorted(table, std::ranges::less(), &KnownAttribute::name));
  EXPECT_EQ(std::ranges::adjacent_find(table, {}, &KnownAttribute::name), table.end());
}

/// A message of which everything is known.
constexpr char kMessage[] =
    "From: a@x\nSender: s@x\nTo: b@x\nCc: c@x\nBcc: d@x\nReply-To: e@x\nSubject: Hello\n"
    "Date: Sat, 21 Nov 2026 03:56:00 +0000\nMessage-ID: <1@x>\nIn-Reply-To: <0@x>\n"
    "References: <0@x>\nList-Id: <list.x>\nKeywords: k\nContent-Language: en\nX-Mailer: m\n"
    "X-Priority: 1\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n"
    "--b\nContent-Type: text/html\n\n<p>Hello</p>\n"
    "--b\nContent-Disposition: attachment; filename=f.pdf\n\nx\n--b--\n";
constexpr char kList[] =
    "<plist version=\"1.0\"><dict><key>flags</key><integer>16777217</integer></dict></plist>";

TEST(KnownAttributes, AllCanBeDelivered) {
  TemporaryFolder folder;
  folder.write("1.emlx", std::to_string(sizeof kMessage - 1) + "\n" + kMessage + kList);
  const auto names = checkedNames((folder / "1.emlx").string());
  for (const KnownAttribute& known : knownAttributes())
    EXPECT_TRUE(names.contains(known.name)) << known.name;
}

TEST(KnownAttributes, RealMessagesHaveNoOthers) {
  const std::string messages = FERNCASE_SOURCE_DIR "/../shared/data/eml";
  if (!std::filesystem::exists(messages)) GTEST_SKIP() << "no messages in " << messages;
  EXPECT_GT(checkedNames(messages).size(), 25u);
}

}  // namespace
}  // namespace kbx
