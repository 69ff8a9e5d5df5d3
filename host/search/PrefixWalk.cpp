#include "host/search/PrefixWalk.h"

#include <algorithm>
#include <string_view>
#include <variant>

#include "host/search/MatchText.h"
#include "host/tokenizer/Tokenizer.h"

namespace kbx {
namespace {

using Order = SearchSettings::Order;
using Step = Statement::Step;

/// Longer beginnings are of few words, which the index gathers quickly.
constexpr std::size_t kLongestBeginning = 3;
constexpr std::uint64_t kLargestPage = 1000;
constexpr int kTextColumns = 9;
/// So many messages are looked at before it is judged whether to go on.
constexpr std::size_t kSample = 32;
/// Messages with much text are read slowly.
constexpr std::size_t kMostBytes = 16 << 20;

/// The one word of a text as the index has it; empty where there is none or more than one.
std::string onlyWordOf(const std::string& text) {
  struct Found {
    std::string word;
    int count = 0;
  } found;
  const auto take = [](void* context, int, const char* word, int length, int, int) {
    auto* all = static_cast<Found*>(context);
    if (all->count++ == 0) all->word.assign(word, static_cast<std::size_t>(length));
    return 0;
  };
  tokenize(text, TokenPurpose::PrefixQuery, {take, &found});
  return found.count == 1 ? found.word : std::string();
}

const TextTest* beginningIn(const QueryNode& query) {
  if (query.kind != QueryNode::Kind::Test) return nullptr;
  const auto* test = std::get_if<TextTest>(&query.test);
  return test && test->isPrefix ? test : nullptr;
}

/// Stops the tokenizer at the first word that begins so.
int isOther(void* beginning, int, const char* word, int length, int, int) {
  const std::string_view found(word, static_cast<std::size_t>(length));
  return found.starts_with(*static_cast<const std::string*>(beginning)) ? 1 : 0;
}

}  // namespace

bool PrefixWalk::isFor(const QueryNode& query, const SearchSettings& settings) {
  const TextTest* test = beginningIn(query);
  if (!test || !settings.folders.empty() || !settings.limit) return false;
  if (*settings.limit > kLargestPage || settings.offset > kLargestPage) return false;
  const std::string word = onlyWordOf(test->words);
  return !word.empty() && word.size() <= kLongestBeginning;
}

PrefixWalk::PrefixWalk(Database& database, const QueryNode& query, const SearchSettings& settings)
    : _database(database),
      _settings(settings),
      _columns(beginningIn(query)->field == TextField::Any ? kTextColumns : 1),
      _beginning(onlyWordOf(beginningIn(query)->words)),
      _texts(database,
             "SELECT " + columnsOf(beginningIn(query)->field) + " FROM word WHERE rowid = ?1") {}

std::string PrefixWalk::order() const {
  const std::string way = _settings.isReversed ? "" : " DESC";
  if (_settings.order != Order::Path)
    return "SELECT id FROM message ORDER BY date" + way + ", id" + way;
  return std::string(
             "SELECT m.id FROM file f CROSS JOIN message m ON m.id = f.id ORDER BY f.path") +
         (_settings.isReversed ? " DESC" : "");
}

std::optional<bool> PrefixWalk::isMatch(std::int64_t id) {
  const auto step = _texts.bind(1, id).step(nullptr);
  bool isFound = false;
  for (int column = 0; step == Step::Row && column < _columns && !isFound; ++column) {
    const std::string_view text = _texts.text(column);
    _bytesRead += text.size();
    isFound = tokenize(text, TokenPurpose::Index, {isOther, &_beginning}) != 0;
  }
  _texts.reset();
  return step == Step::Failed ? std::nullopt : std::optional(isFound);
}

std::optional<std::vector<std::int64_t>> PrefixWalk::page() {
  std::vector<std::int64_t> ids;
  const std::uint64_t wanted = *_settings.limit + _settings.offset;
  Statement rows(_database, order());
  for (std::size_t seen = 1; ids.size() < wanted; ++seen) {
    const auto step = rows.step(nullptr);
    if (step == Step::Done) break;
    const auto isFound = step == Step::Row ? isMatch(rows.integer(0)) : std::nullopt;
    if (!isFound || _bytesRead > kMostBytes) return std::nullopt;
    if (*isFound) ids.push_back(rows.integer(0));
    if (seen % kSample == 0 && ids.size() * 2 < seen) return std::nullopt;
  }
  const std::uint64_t before = std::min<std::uint64_t>(_settings.offset, ids.size());
  ids.erase(ids.begin(), ids.begin() + static_cast<std::ptrdiff_t>(before));
  return ids;
}

}  // namespace kbx
