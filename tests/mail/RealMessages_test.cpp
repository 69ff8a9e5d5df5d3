// Real messages of public collections, against what three independent parsers found in them.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <set>

#include "mail/Addresses.h"
#include "mail/Dates.h"
#include "mail/HeaderFields.h"
#include "mail/HeaderText.h"
#include "tests/mail/Messages.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

const fs::path kFolder = fs::path(FERNCASE_SOURCE_DIR).parent_path() / "shared/data/eml";

std::string bytesOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// As the importer's driver writes messages: every line ends in a line feed.
std::string normalised(std::string_view bytes) {
  std::string result;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') continue;
    result += bytes[i] == '\r' ? '\n' : bytes[i];
  }
  return result;
}

/// Runs of white space, no-break spaces among them, as one blank; none at the ends.
std::string collapsed(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isNoBreak = text.substr(i).starts_with("\xC2\xA0");
    const bool isBlank = isNoBreak || std::string_view(" \t\r\n\f\v").find(text[i]) != text.npos;
    if (isNoBreak) ++i;
    if (!isBlank)
      result += text[i];
    else if (!result.empty() && result.back() != ' ')
      result += ' ';
  }
  if (result.ends_with(' ')) result.pop_back();
  return result;
}

std::string lowered(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c | 0x20);
  return text;
}

Json peopleOf(std::string_view raw, TextDecoder& decoder) {
  Json people = Json::array();
  for (const Mailbox& one : mailboxes(raw, decoder))
    people.push_back({{"name", collapsed(one.name)}, {"address", lowered(one.address)}});
  return people;
}

Json comparable(const Json& value) {
  if (value.is_string()) return collapsed(value.get<std::string>());
  if (!value.is_array()) return value;
  Json result = Json::array();
  for (const Json& one : value) {
    if (one.is_string())
      result.push_back(collapsed(one.get<std::string>()));
    else
      result.push_back({{"name", collapsed(one["name"].get<std::string>())},
                        {"address", lowered(one["address"])}});
  }
  return result;
}

/// What is found, under the names of the expectations.
Json foundIn(const std::string& message) {
  TextDecoder decoder;
  MessageReader reader(decoder);
  reader.add(message);
  MessageContent content = reader.take();
  const HeaderFields header(content.header);
  auto attributes = attributesOf(message);
  const auto shownOf = [&](NSString* name) {
    NSObject* value = attributes->objectForKey(name);
    return value ? collapsed(shown(value)) : std::string();
  };
  Json found;
  found["subject"] = shownOf("kMDItemSubject"_ns);
  found["from"] = peopleOf(header[HeaderField::From], decoder);
  found["to"] = peopleOf(header[HeaderField::To], decoder);
  found["cc"] = peopleOf(header[HeaderField::Cc], decoder);
  found["message_id"] = shownOf("kMDItemIdentifier"_ns);
  const std::string date = text(attributes->objectForKey("com_apple_mail_dateSent"_ns));
  found["date"] = date == "(null)" ? "" : date.substr(0, 10) + "T" + date.substr(11, 8) + "Z";
  found["has_text_body"] = content.hasPlainPart;
  found["has_html_body"] = content.hasHTMLPart;
  found["attachment_names"] = Json::array();
  for (const Attachment& part : content.namedParts)
    found["attachment_names"].push_back(collapsed(part.name));
  found["text"] = shownOf("kMDItemTextContent"_ns) + collapsed(shownOf("kMDItemHTMLContent"_ns));
  return found;
}

/// Where two of the three parsers agree and we do not, with the reason.
const std::map<std::string, std::string> kOwnReadings = {
    {"cpython-msg_35.eml has_text_body", "a header that ends without a blank line keeps its body"},
    {"mime4j-hdr-fakeout.eml has_text_body", "so does one that ends in a line of blanks"},
    {"mimekit-missing-subtype.eml has_text_body", "what has no valid type is text"},
    {"rubymail-example13.eml to", "a folded line without its indent belongs to the field"},
    {"rubymail-example13.eml date", "comments and blanks may stand within a time"},
    {"rubymail-raw_email_double_at_in_header.eml message_id", "an identifier is not cut"},
    {"rubymail-raw_email_with_binary_encoded.eml subject", "the first of two fields wins"},
    {"stalwart-malformed-019.eml date", "the first of two fields wins"},
    {"stalwart-malformed-019.eml has_text_body", "a part without a blank line keeps its body"},
    {"stalwart-malformed-021.eml has_text_body", "what stands before the first part is not shown"},
};

constexpr const char* kValues[] = {
    "subject",         "from", "to", "cc", "date", "message_id", "has_text_body", "has_html_body",
    "attachment_names"};

/// Calls visit(file, expected values, found values) for each message; false without the folder.
template <class Visitor>
bool forEachMessage(Visitor&& visit) {
  if (!fs::exists(kFolder / "expected.json")) return false;
  const Json expected = Json::parse(bytesOf(kFolder / "expected.json"));
  for (const auto& [file, values] : expected.items())
    visit(file, values, foundIn(normalised(bytesOf(kFolder / file))));
  return true;
}

#define SKIP_WITHOUT_MESSAGES(visited) \
  if (!(visited)) GTEST_SKIP() << "no real messages in " << kFolder

TEST(RealMessages, EveryValueOnWhichThreeParsersAgreeIsOurs) {
  const bool visited = forEachMessage([](auto& file, const Json& values, const Json& found) {
    for (const char* name : kValues)
      if (!values[name].is_null()) {
        EXPECT_EQ(found[name], comparable(values[name])) << file << " " << name;
      }
  });
  SKIP_WITHOUT_MESSAGES(visited);
}

TEST(RealMessages, AValueThatTwoParsersShareIsOursOrDiffersForAReason) {
  std::set<std::string> different;
  const bool visited = forEachMessage([&](auto& file, const Json& values, const Json& found) {
    for (const auto& [name, majority] : values["majority"].items())
      if (found.contains(name) && found[name] != comparable(majority["value"]))
        different.insert(file + " " + name);
  });
  SKIP_WITHOUT_MESSAGES(visited);
  std::set<std::string> explained;
  for (const auto& [value, reason] : kOwnReadings) explained.insert(value);
  EXPECT_EQ(different, explained);
}

TEST(RealMessages, TheTextHoldsTheWordsOfTheFirstPlainPart) {
  const bool visited = forEachMessage([](auto& file, const Json& values, const Json& found) {
    if (!values["text_excerpt"].is_string()) return;
    // The last word may be cut.
    std::istringstream words(values["text_excerpt"].get<std::string>());
    std::vector<std::string> excerpt;
    for (std::string word; words >> word;) excerpt.push_back(word);
    if (excerpt.size() > 1) excerpt.pop_back();
    for (const std::string& word : excerpt)
      EXPECT_NE(found["text"].template get<std::string>().find(word), std::string::npos)
          << file << " " << word;
  });
  SKIP_WITHOUT_MESSAGES(visited);
}

}  // namespace
}  // namespace kbx
