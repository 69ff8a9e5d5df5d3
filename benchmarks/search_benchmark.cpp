// How long an answer takes. In the process: a page of a search beside the bare question to the
// full-text index that it cannot do without. As people wait for it: whole processes, beside one
// that does nothing and beside the host, which starts with all that imports.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "host/search/Search.h"
#include "tests/support/MailStore.h"

namespace kbx {
namespace {

constexpr int kMessages = 20'000;

/// Words as unevenly frequent as those of a language: that of rank r is in every (r+10)th place.
std::vector<TestMail> mails() {
  std::mt19937 random(7);
  std::vector<std::string> words;
  std::vector<double> sums;
  double sum = 0;
  for (int rank = 0; rank < 20'000; ++rank) {
    std::string word;
    for (std::size_t length = 2 + random() % 8; length > 0; --length)
      word += static_cast<char>('a' + std::min(random() % 26, random() % 26));
    words.push_back(std::move(word));
    sums.push_back(sum += 1.0 / (rank + 10));
  }
  std::uniform_real_distribution<double> anywhere(0, sum);
  const auto next = [&] {
    const auto at = std::ranges::upper_bound(sums, anywhere(random)) - sums.begin();
    return words[std::min<std::size_t>(at, words.size() - 1)] + " ";
  };
  std::vector<TestMail> mails(kMessages);
  for (int i = 0; i < kMessages; ++i) {
    mails[i].path = "/mail/" + std::to_string(i) + ".eml";
    mails[i].date = static_cast<double>(random() % 1'000'000'000);
    for (int count = 0; count < 5; ++count) mails[i].subject += next();
    for (int count = 0; count < 150; ++count) mails[i].body += next();
    if (i % 5 == 0) mails[i].body += "invoice";
    if (i % 2 == 0) mails[i].body += " the message";
  }
  return mails;
}

const MailStore& store() {
  static const MailStore store(mails());
  return store;
}

using Order = SearchSettings::Order;

void found(benchmark::State& state, const char* query, Order order,
           std::optional<std::uint64_t> limit) {
  const auto reader = store().reader();
  std::size_t count = 0;
  for (auto _ : state) {
    Search search(*reader, parseQuery(query), {.order = order, .limit = limit});
    count = 0;
    if (!search.runPaths([&](auto) { return ++count > 0; }, nullptr)) std::abort();
  }
  if (count == 0) std::abort();
  state.counters["found"] = static_cast<double>(count);
}

/// The peer: the ids, in the index's order.
void indexAlone(benchmark::State& state, const char* match) {
  const auto reader = store().reader();
  std::size_t count = 0;
  for (auto _ : state) {
    Statement ids(reader->database(), "SELECT rowid FROM word WHERE word MATCH ?1");
    ids.bind(1, match);
    for (count = 0; ids.step(nullptr) == Statement::Step::Row; ++count)
      benchmark::DoNotOptimize(ids.integer(0));
  }
  if (count == 0) std::abort();
  state.counters["found"] = static_cast<double>(count);
}

#define PAGE(name, query, match)                                          \
  BENCHMARK_CAPTURE(indexAlone, name, match);                             \
  BENCHMARK_CAPTURE(found, name##_all, query, Order::Date, std::nullopt); \
  BENCHMARK_CAPTURE(found, name##_page, query, Order::Date, 100);         \
  BENCHMARK_CAPTURE(found, name##_page_by_rank, query, Order::Rank, 100)
PAGE(word, "invoice", "invoice");
PAGE(phrase, "\"the message\"", "\"the message\"");
PAGE(beginning, "a*", "a*");
#undef PAGE

/// Starts the program and waits for its end; what it prints goes nowhere.
void process(benchmark::State& state, std::vector<std::string> words) {
  for (std::string& word : words)
    if (word == "STORE") word = store().path();
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  for (auto _ : state) {
    pid_t child = 0;
    int status = 0;
    if (::posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ) != 0 ||
        ::waitpid(child, &status, 0) != child || status != 0)
      std::abort();
  }
  ::posix_spawn_file_actions_destroy(&actions);
}

using Words = std::vector<std::string>;
#define PROCESS(name, ...) \
  BENCHMARK_CAPTURE(process, name, Words{__VA_ARGS__})->UseRealTime()->Unit(benchmark::kMillisecond)
PROCESS(nothing, "/bin/true");
PROCESS(count_phrase, FERNCASE_BINARY, "search", "--db", "STORE", "--count", "\"invoice the\"");
PROCESS(search_word, FERNCASE_BINARY, "search", "--db", "STORE", "invoice");
PROCESS(search_word_host, FERNCASE_HOST, "search", "--db", "STORE", "invoice");
PROCESS(search_phrase, FERNCASE_BINARY, "search", "--db", "STORE", "\"the message\"");
PROCESS(search_objects, FERNCASE_BINARY, "search", "--db", "STORE", "--limit", "100", "--ndjson",
        "invoice");
PROCESS(version, FERNCASE_BINARY, "--version");
#undef PROCESS

}  // namespace
}  // namespace kbx
