// The store beside what it cannot do without: its tokenizer beside SQLite's, and messages put into
// it beside the same texts put into a plain full-text index of the same database.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "host/store/Maintenance.h"
#include "host/store/Store.h"
#include "host/tokenizer/Tokenizer.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

constexpr std::size_t kTextSize = 32 * 1024;
constexpr std::size_t kTexts = 500;

/// Texts whose words are as unevenly frequent as those of a language, the same in every run.
class Writer {
 public:
  explicit Writer(std::u32string_view letters) {
    double sum = 0;
    for (int rank = 0; rank < 50'000; ++rank) {
      std::string word;
      for (std::size_t length = 2 + _random() % 9; length > 0; --length)
        append(word, letters[std::min(_random() % letters.size(), _random() % letters.size())]);
      _words.push_back(std::move(word));
      _sums.push_back(sum += 1.0 / (rank + 10));
    }
  }

  std::string text(std::size_t size) {
    std::string text;
    std::uniform_real_distribution<double> anywhere(0, _sums.back());
    for (int count = 0; text.size() < size; ++count) {
      const auto rank = std::upper_bound(_sums.begin(), _sums.end(), anywhere(_random));
      text += _words[std::min<std::size_t>(rank - _sums.begin(), _words.size() - 1)];
      text += count % 13 == 12 ? ".\n" : " ";
    }
    return text;
  }

 private:
  static void append(std::string& text, char32_t letter) {
    if (letter < 0x80) {
      text += static_cast<char>(letter);
    } else if (letter < 0x800) {
      text += static_cast<char>(0xC0 | letter >> 6);
      text += static_cast<char>(0x80 | (letter & 0x3F));
    } else {
      text += static_cast<char>(0xE0 | letter >> 12);
      text += static_cast<char>(0x80 | (letter >> 6 & 0x3F));
      text += static_cast<char>(0x80 | (letter & 0x3F));
    }
  }

  std::mt19937_64 _random{1};
  std::vector<std::string> _words;
  std::vector<double> _sums;
};

constexpr std::u32string_view kEnglish = U"etaoinshrdlucmfwypvbgkjqxzETAOIN0123";
constexpr std::u32string_view kGerman = U"enisratdhulcgmobwfkzüvpäßjöyqxENISÄÖ";
constexpr std::u32string_view kRussian = U"оеаинтсрвлкмдпуяыьгзбчйхжшюцщэфъёОЕАИН";
constexpr std::u32string_view kJapanese =
    U"のにはをたがでとしれさあるいするもな日本人年大国一中時見行分前会";

int countToken(void* context, int, const char*, int, int, int) {
  ++*static_cast<std::size_t*>(context);
  return 0;
}

std::u32string_view lettersOf(const benchmark::State& state) {
  constexpr std::u32string_view all[] = {kEnglish, kGerman, kRussian, kJapanese};
  return all[state.range(0)];
}

void ferncaseTokens(benchmark::State& state) {
  const std::string text = Writer(lettersOf(state)).text(1 << 20);
  std::size_t count = 0;
  for (auto _ : state) tokenize(text, TokenPurpose::Index, {countToken, &count});
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

/// SQLite's own, called as FTS5 calls it.
class Unicode61 {
 public:
  Unicode61() {
    sqlite3_open(":memory:", &_connection);
    fts5_api* api = nullptr;
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(_connection, "SELECT fts5(?1)", -1, &statement, nullptr);
    sqlite3_bind_pointer(statement, 1, static_cast<void*>(&api), "fts5_api_ptr", nullptr);
    sqlite3_step(statement);
    sqlite3_finalize(statement);
    void* context = nullptr;
    if (api->xFindTokenizer(api, "unicode61", &context, &_functions) != SQLITE_OK ||
        _functions.xCreate(context, nullptr, 0, &_tokenizer) != SQLITE_OK)
      std::abort();
  }
  ~Unicode61() {
    _functions.xDelete(_tokenizer);
    sqlite3_close(_connection);
  }
  void tokenize(const std::string& text, std::size_t& count) {
    _functions.xTokenize(_tokenizer, &count, FTS5_TOKENIZE_DOCUMENT, text.data(),
                         static_cast<int>(text.size()), countToken);
  }

 private:
  sqlite3* _connection = nullptr;
  fts5_tokenizer _functions = {};
  Fts5Tokenizer* _tokenizer = nullptr;
};

void unicode61Tokens(benchmark::State& state) {
  const std::string text = Writer(lettersOf(state)).text(1 << 20);
  Unicode61 tokenizer;
  std::size_t count = 0;
  for (auto _ : state) tokenizer.tokenize(text, count);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

// 0 English, 1 German, 2 Russian, 3 Japanese, which unicode61 does not take apart.
BENCHMARK(ferncaseTokens)->DenseRange(0, 3);
BENCHMARK(unicode61Tokens)->DenseRange(0, 3);

const std::vector<std::string>& texts() {
  static const auto* const made = [] {
    auto* list = new std::vector<std::string>;
    Writer writer(kEnglish);
    for (std::size_t i = 0; i < kTexts; ++i) list->push_back(writer.text(kTextSize));
    return list;
  }();
  return *made;
}

Ref<NSDictionary> messageOf(const std::string& text, int number) {
  Ref<NSString> name = NSString::stringWithUTF8("Priya Raman");
  Ref<NSString> address = NSString::stringWithUTF8("priya@example.org");
  return NSDictionary::dictionaryWithPairs(
      {{"kMDItemSubject"_ns, NSString::stringWithUTF8(text.substr(0, 40))},
       {"kMDItemAuthors"_ns, NSArray::arrayWithObjects({name.get()})},
       {"kMDItemAuthorEmailAddresses"_ns, NSArray::arrayWithObjects({address.get()})},
       {"kMDItemIdentifier"_ns, NSString::stringWithUTF8(std::to_string(number) + "@example.org")},
       {"com_apple_mail_dateSent"_ns, NSDate::dateWithTimeIntervalSince1970(1.6e9 + number)},
       {"org_ferncase_mail_size"_ns, NSNumber::numberWithInteger(40'000)},
       {"kMDItemTextContent"_ns, NSString::stringWithUTF8(text)}});
}

void require(bool isDone, const Ref<NSError>& error) {
  if (isDone) return;
  std::fprintf(stderr, "%s\n", error ? error->localizedDescription()->lossyUTF8().c_str() : "");
  std::abort();
}

constexpr int kMessagesOfOneTransaction = 1000;

/// range(0) messages of 32 KiB of text, with all that the store keeps of a message.
void ferncasePut(benchmark::State& state) {
  const auto& bodies = texts();
  for (auto _ : state) {
    TemporaryFolder folder;
    Ref<NSError> error;
    auto store = StoreWriter::open((folder / "mail.db").string(), &error);
    require(store && store->begin(&error), error);
    for (int i = 0; i < state.range(0); ++i) {
      const auto attributes = messageOf(bodies[i % bodies.size()], i);
      require(store->put("/mail/" + std::to_string(i) + ".eml", {}, {}, attributes, &error), error);
      if (i % kMessagesOfOneTransaction == kMessagesOfOneTransaction - 1)
        require(store->commit(&error) && store->begin(&error), error);
    }
    require(store->commit(&error), error);
    store.reset();
    state.PauseTiming();
    const auto status = statusOf((folder / "mail.db").string(), &error);
    state.counters["MB"] = static_cast<double>(status->size) / 1e6;
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// The same texts in a plain table and a full-text index of it, with SQLite's tokenizer and all its
/// defaults but the log.
void plainInsert(benchmark::State& state) {
  const auto& bodies = texts();
  for (auto _ : state) {
    TemporaryFolder folder;
    Ref<NSError> error;
    auto database =
        Database::open((folder / "mail.db").string(), Database::Access::Creating, &error);
    require(database->run("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;"
                          "CREATE TABLE message (id INTEGER PRIMARY KEY, subject, body);"
                          "CREATE VIRTUAL TABLE word USING fts5 (subject, body,"
                          " content='message', content_rowid='id'); BEGIN",
                          &error),
            error);
    Statement message(*database, "INSERT INTO message VALUES (?1, ?2, ?3)");
    Statement words(*database, "INSERT INTO word (rowid, subject, body) VALUES (?1, ?2, ?3)");
    for (int i = 0; i < state.range(0); ++i) {
      const std::string& body = bodies[i % bodies.size()];
      for (Statement* statement : {&message, &words}) {
        statement->bind(1, i + 1).bind(2, std::string_view(body).substr(0, 40));
        require(statement->bind(3, std::string_view(body)).run(&error), error);
      }
      if (i % kMessagesOfOneTransaction == kMessagesOfOneTransaction - 1)
        require(database->run("COMMIT; BEGIN", &error), error);
    }
    require(database->run("COMMIT", &error), error);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(ferncasePut)
    ->Arg(2000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->UseRealTime()
    ->MeasureProcessCPUTime();
BENCHMARK(plainInsert)
    ->Arg(2000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->UseRealTime()
    ->MeasureProcessCPUTime();

}  // namespace
}  // namespace kbx
