// Random queries find the same messages as a scan over all attributes.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "host/search/Search.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FakeLocalTime.h"
#include "tests/support/MailStore.h"

namespace kbx {
namespace {

using Words = std::vector<std::string>;

/// A message as the scan sees it: each text in words, small and without marks.
struct Scanned {
  std::map<std::string, Words> texts;  // by the query's field
  std::map<std::string, std::string> plain;
  std::optional<double> date;
  std::optional<bool> isRead, isFlagged;
  bool hasAttachment = false;
};

const std::vector<std::pair<std::string, std::string>> kMarked{
    {"é", "e"}, {"É", "e"}, {"ü", "u"}, {"Ü", "u"}, {"ö", "o"}};

std::string folded(std::string text) {
  for (const auto& [marked, letter] : kMarked)
    for (std::size_t at; (at = text.find(marked)) != std::string::npos;)
      text.replace(at, marked.size(), letter);
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  return text;
}

Words wordsOf(const std::string& text) {
  Words words;
  std::string word;
  for (const char c : folded(text) + " ") {
    const bool isUnspaced = static_cast<unsigned char>(c) >= 0x80;
    if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || isUnspaced) {
      word += c;
    } else if (!word.empty()) {
      words.push_back(std::exchange(word, ""));
    }
  }
  return words;
}

Scanned scannedOf(NSDictionary* attributes) {
  Scanned scanned;
  const auto add = [&](const std::string& field, NSString* name) {
    NSObject* value = attributes->objectForKey(name);
    std::string all;
    if (auto* text = cast<NSString>(value)) all = text->lossyUTF8();
    if (auto* list = cast<NSArray>(value))
      for (const auto& each : *list) all += cast<NSString>(each)->lossyUTF8() + " , ";
    const Words words = wordsOf(all);
    auto& place = scanned.texts[field];
    place.insert(place.end(), words.begin(), words.end());
    scanned.plain[field] += all + " ";
  };
  add("subject", "kMDItemSubject"_ns);
  add("body", "kMDItemTextContent"_ns);
  add("from", "kMDItemAuthors"_ns);
  add("from", "kMDItemAuthorEmailAddresses"_ns);
  add("to", "kMDItemPrimaryRecipientEmailAddresses"_ns);
  add("attachment", "kMDItemAttachmentNames"_ns);
  add("list", "org_ferncase_mail_listID"_ns);
  const auto flag = [&](NSString* name) -> std::optional<bool> {
    auto* number = cast<NSNumber>(attributes->objectForKey(name));
    return number ? std::optional(number->boolValue()) : std::nullopt;
  };
  if (auto* date = cast<NSDate>(attributes->objectForKey("kMDItemContentCreationDate"_ns)))
    scanned.date = date->timeIntervalSince1970();
  scanned.isRead = flag("com_apple_mail_read"_ns);
  scanned.isFlagged = flag("com_apple_mail_flagged"_ns);
  scanned.hasAttachment = flag("org_ferncase_mail_hasAttachment"_ns).value_or(false);
  return scanned;
}

bool holdsRow(const Words& words, const Words& row, bool isPrefix) {
  for (std::size_t first = 0; first + row.size() <= words.size(); ++first) {
    bool isThere = true;
    for (std::size_t i = 0; i < row.size() && isThere; ++i) {
      const bool mayGoOn = isPrefix && i + 1 == row.size();
      isThere = mayGoOn ? words[first + i].starts_with(row[i]) : words[first + i] == row[i];
    }
    if (isThere) return true;
  }
  return false;
}

const Words kVocabulary{"engine",  "Analytical", "weaves", "budget", "café",   "MÜLLER", "plan",
                        "planet",  "planning",   "ada",    "röst",   "report", "42",     "2024",
                        "invoice", "meeting",    "re",     "and",    "not",    "or"};
/// Scripts without blanks: a row of characters is found wherever it stands.
const Words kUnspaced{"東京会議室", "会議", "京都", "東京"};
const Words kFields{"subject", "body", "from", "to", "attachment", "list"};

/// A query and who it finds, made side by side.
struct Generated {
  std::string text;
  std::function<bool(const Scanned&)> finds;
};

class Generator {
 public:
  explicit Generator(unsigned seed) : _random(seed) {}

  std::size_t below(std::size_t count) { return _random() % count; }
  bool isChosen(std::size_t outOf) { return below(outOf) == 0; }
  const std::string& anyOf(const Words& words) { return words[below(words.size())]; }
  std::string text(std::size_t most) {
    std::string text;
    for (std::size_t count = below(most) + 1; count > 0; --count)
      text += (text.empty()  ? ""
               : isChosen(8) ? ", "
                             : " ") +
              anyOf(isChosen(10) ? kUnspaced : kVocabulary);
    return text;
  }

  TestMail mail(int number) {
    TestMail mail{.path = "/mail/" + std::to_string(number) + ".eml"};
    if (!isChosen(8)) mail.subject = text(6);
    if (!isChosen(8)) mail.body = text(40);
    for (std::size_t count = below(3); count > 0; --count) {
      mail.authors.push_back(anyOf(kVocabulary) + " Smith");
      mail.authorAddresses.push_back(isChosen(2) ? "ada@example.org" : "bob@plan.example.com");
    }
    if (isChosen(2)) mail.recipientAddresses = {isChosen(2) ? "ada@example.org" : "eve@x.org"};
    if (isChosen(4)) mail.attachments = {text(2) + ".pdf"};
    if (isChosen(4)) mail.list = "plan.lists.example.org";
    if (!isChosen(6)) mail.date = 1640995200 + static_cast<double>(below(900)) * 86400 + 7;
    if (isChosen(2)) mail.isRead = isChosen(2);
    if (isChosen(3)) mail.isFlagged = isChosen(2);
    return mail;
  }

  Generated query(int depth) {
    if (depth == 0 || isChosen(3)) return leaf();
    switch (below(4)) {
      case 0:
        return negation(query(depth - 1));
      case 1:
        return combined(query(depth - 1), query(depth - 1), true);
      default:
        return combined(query(depth - 1), query(depth - 1), false);
    }
  }

 private:
  Generated leaf() {
    switch (below(10)) {
      case 0:
        return date();
      case 1:
        return flag();
      case 2:
        return unspaced();
      case 3:
      case 4:
        return words(below(2) + 2, true);
      case 5:
        return words(1, false, true);
      case 6:
        return words(2, true, true);
      default:
        return words(1, false);
    }
  }

  /// A word, a phrase or the beginning of one, in a field or anywhere.
  Generated words(std::size_t count, bool isQuoted, bool isPrefix = false) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += (i ? " " : "") + anyOf(kVocabulary);
    if (isPrefix && static_cast<unsigned char>(text.back()) < 0x80 && text.size() > 3)
      text.pop_back();
    if (static_cast<unsigned char>(text.back()) >= 0xC0) text.pop_back();
    const Words row = wordsOf(text);
    if (isQuoted) text = "\"" + text + "\"";
    if (isPrefix) text += "*";
    const auto field = isChosen(2) ? "" : anyOf(kFields);
    const auto finds = [=](const Scanned& mail) {
      return std::ranges::any_of(mail.texts, [&](const auto& each) {
        return (field.empty() || each.first == field) && holdsRow(each.second, row, isPrefix);
      });
    };
    return {field.empty() ? text : field + ":" + text, finds};
  }

  Generated unspaced() {
    const std::string text = anyOf(kUnspaced);
    const auto finds = [=](const Scanned& mail) {
      return std::ranges::any_of(mail.plain, [&](const auto& each) {
        return each.second.find(text) != std::string::npos;
      });
    };
    return {text, finds};
  }

  Generated date() {
    using namespace std::chrono;
    const year_month_day day{sys_days(days(18993 + static_cast<int>(below(900))))};
    char text[64];
    year_month_day first = day;
    sys_days end = sys_days(day) + days(1);
    switch (below(3)) {
      case 0:
        std::snprintf(text, sizeof text, "%04d", int{day.year()});
        first = day.year() / 1 / 1;
        end = sys_days((day.year() + years(1)) / 1 / 1);
        break;
      case 1:
        std::snprintf(text, sizeof text, "%04d-%02u", int{day.year()}, unsigned{day.month()});
        first = day.year() / day.month() / 1;
        end = sys_days(first + months(1));
        break;
      default:
        std::snprintf(text, sizeof text, "%04d-%02u-%02u", int{day.year()}, unsigned{day.month()},
                      unsigned{day.day()});
    }
    const double from = static_cast<double>(sys_days(first).time_since_epoch().count()) * 86400;
    const double to = static_cast<double>(end.time_since_epoch().count()) * 86400;
    switch (below(3)) {
      case 0:
        return {std::string("before:") + text,
                [=](const Scanned& mail) { return mail.date && *mail.date < from; }};
      case 1:
        return {std::string("after:") + text,
                [=](const Scanned& mail) { return mail.date && *mail.date >= from; }};
      default:
        return {std::string("on:") + text, [=](const Scanned& mail) {
                  return mail.date && *mail.date >= from && *mail.date < to;
                }};
    }
  }

  Generated flag() {
    switch (below(4)) {
      case 0:
        return {"is:unread", [](const Scanned& mail) { return mail.isRead == false; }};
      case 1:
        return {"is:read", [](const Scanned& mail) { return mail.isRead == true; }};
      case 2:
        return {"is:flagged", [](const Scanned& mail) { return mail.isFlagged == true; }};
      default:
        return {"has:attachment", [](const Scanned& mail) { return mail.hasAttachment; }};
    }
  }

  Generated negation(Generated inner) {
    const auto finds = [inner](const Scanned& mail) { return !inner.finds(mail); };
    return {(isChosen(2) ? "-(" : "NOT (") + inner.text + ")", finds};
  }

  Generated combined(Generated a, Generated b, bool isEither) {
    const auto finds = [=](const Scanned& mail) {
      return isEither ? a.finds(mail) || b.finds(mail) : a.finds(mail) && b.finds(mail);
    };
    return {"(" + a.text + (isEither ? " OR " : isChosen(3) ? " AND " : " ") + b.text + ")", finds};
  }

  std::mt19937 _random;
};

TEST(SearchScan, RandomQueriesFindWhatAScanFinds) {
  constexpr int kMailCount = 250, kQueryCount = 600;
  FakeLocalTime zone;
  ScopedService<LocalTime> installed(zone);
  Generator generator(20240517);
  std::vector<TestMail> mails;
  for (int i = 0; i < kMailCount; ++i) mails.push_back(generator.mail(i));
  const MailStore store(mails);
  const auto reader = store.reader();
  std::map<std::int64_t, Scanned> all;
  for (const TestMail& mail : mails) {
    const std::int64_t id = reader->idOfPath(mail.path, nullptr).value();
    Scanned scanned = scannedOf(reader->attributesOf(id, nullptr));
    scanned.texts["file"] = wordsOf(mail.path.substr(mail.path.rfind('/') + 1));
    all.emplace(id, std::move(scanned));
  }
  std::size_t found = 0;
  for (int i = 0; i < kQueryCount; ++i) {
    const Generated query = generator.query(i % 5);
    std::set<std::int64_t> expected, actual;
    for (const auto& [id, mail] : all)
      if (query.finds(mail)) expected.insert(id);
    Search search(*reader, parseQuery(query.text));
    const auto take = [&](std::int64_t id) { return actual.insert(id).second; };
    ASSERT_TRUE(search.run(take, nullptr)) << query.text;
    ASSERT_EQ(actual, expected) << query.text;
    ASSERT_EQ(search.count(nullptr), expected.size()) << query.text;
    found += expected.size();
  }
  EXPECT_GT(found, std::size_t{kQueryCount}) << "most queries should find something";
}

}  // namespace
}  // namespace kbx
