// Every word of a message finds it, whatever its script. What a word is says ICU, which the product
// does not ask for that.
#include <gtest/gtest.h>
#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/search/Search.h"
#include "tests/generators/MailMix.h"
#include "tests/support/Process.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;

/// The ids of the messages that have a word, in ascending order.
using WordPlaces = std::unordered_map<std::string, std::vector<std::int64_t>>;

bool hasLetterOrDigit(const icu::UnicodeString& word) {
  for (int32_t i = 0; i < word.length(); i = word.moveIndex32(i, 1))
    if (u_isalnum(word.char32At(i))) return true;
  return false;
}

class WordFinder {
 public:
  WordFinder() {
    UErrorCode failure = U_ZERO_ERROR;
    _words.reset(icu::BreakIterator::createWordInstance(icu::Locale::getRoot(), failure));
    if (U_FAILURE(failure)) throw std::runtime_error("ICU knows no words");
  }

  void add(std::string_view bytes, std::int64_t id, WordPlaces& places) {
    const auto text =
        icu::UnicodeString::fromUTF8({bytes.data(), static_cast<int32_t>(bytes.size())});
    _words->setText(text);
    int32_t start = _words->first();
    for (int32_t end; (end = _words->next()) != icu::BreakIterator::DONE; start = end) {
      const icu::UnicodeString word = text.tempSubStringBetween(start, end);
      if (!hasLetterOrDigit(word)) continue;
      std::string name;
      word.toUTF8String(name);
      std::ranges::replace(name, '"', ' ');  // part of some Hebrew words, and the end of a phrase
      auto& ids = places[name];
      if (ids.empty() || ids.back() != id) ids.push_back(id);
    }
  }

 private:
  std::unique_ptr<icu::BreakIterator> _words;
};

class EveryWordTest : public testing::Test {
 protected:
  std::string store() const { return (_folder / "mail.db").string(); }

  void index(const fs::path& mail) {
    const auto finished =
        Process({FERNCASE_BINARY, "index", "--quiet", "--db", store(), mail.string()}).run();
    ASSERT_TRUE(finished.exitCode == 0 || finished.exitCode == 3) << finished.complaints;
    _reader = StoreReader::open(store(), nullptr);
    ASSERT_TRUE(_reader);
  }
  WordPlaces words() {
    WordPlaces places;
    WordFinder finder;
    Statement rows(_reader->database(),
                   "SELECT id, subject, sender, recipient, cc, attachment, list, body FROM message"
                   " ORDER BY id");
    while (rows.step(nullptr) == Statement::Step::Row)
      for (int column = 1; column < 8; ++column)
        finder.add(rows.text(column), rows.integer(0), places);
    return places;
  }
  void expectEveryWordFindsItsMessages() {
    const auto places = words();
    int missed = 0;
    for (const auto& [word, ids] : places) {
      std::set<std::int64_t> found;
      Search search(*_reader, parseQuery("\"" + word + "\""));
      ASSERT_TRUE(search.run([&](std::int64_t id) { return found.insert(id).second; }, nullptr));
      if (std::ranges::includes(found, ids)) continue;
      EXPECT_LT(++missed, 20) << "and more";
      if (missed < 20) ADD_FAILURE() << "\"" << word << "\" does not find all " << ids.size();
    }
    RecordProperty("words", static_cast<int>(places.size()));
    EXPECT_GT(places.size(), 2000u);
  }

  TemporaryFolder _folder;
  std::unique_ptr<StoreReader> _reader;
};

TEST_F(EveryWordTest, OfARealMessageFindsIt) {
  const fs::path mail = FERNCASE_SOURCE_DIR "/../shared/data/eml";
  if (!fs::exists(mail)) GTEST_SKIP() << "no real messages in " << mail;
  ASSERT_NO_FATAL_FAILURE(index(mail));
  expectEveryWordFindsItsMessages();
}

/// FERNCASE_MESSAGES says how many there are.
TEST_F(EveryWordTest, OfAGeneratedMessageFindsIt) {
  const char* wish = std::getenv("FERNCASE_MESSAGES");
  const MailMix mix(11, wish ? static_cast<std::size_t>(std::atoi(wish)) : 150);
  for (std::size_t i = 0; i < mix.count(); ++i) {
    const fs::path path = _folder / ("mail/" + MailMix::fileName(i));
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << mix.message(i);
  }
  ASSERT_NO_FATAL_FAILURE(index(_folder / "mail"));
  expectEveryWordFindsItsMessages();
}

}  // namespace
}  // namespace kbx
