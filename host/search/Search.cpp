#include "host/search/Search.h"

#include <algorithm>
#include <limits>

#include "host/search/AttributeFunctions.h"
#include "host/search/IdSet.h"
#include "host/search/PrefixWalk.h"
#include "host/search/SearchFunctions.h"
#include "host/search/SearchPlan.h"
#include "host/search/SnippetText.h"

namespace kbx {
namespace {

using Step = Statement::Step;
using Order = SearchSettings::Order;
using Ids = std::vector<std::int64_t>;
using IdList = std::span<const std::int64_t>;

/// What is asked of each message that is found.
enum class Columns : std::uint8_t { Id, Path };

/// So few messages are looked at each by itself; more are met on the way along the index of dates.
constexpr std::size_t kFew = 500;
/// So many of what is found are compared by their words. Who looks for the best of more would not
/// be helped by an order among words that everybody uses, and each costs time.
constexpr std::size_t kMostRanked = 5000;

constexpr char kNewestFirst[] = "m.date DESC, m.id DESC", kOldestFirst[] = "m.date, m.id";

/// Everything within sees one state of the store.
class Snapshot {
 public:
  explicit Snapshot(Database& database) : _database(database) {
    _database.run("SAVEPOINT ferncase_search", nullptr);
  }
  ~Snapshot() { _database.run("RELEASE ferncase_search", nullptr); }
  Snapshot(const Snapshot&) = delete;
  Snapshot& operator=(const Snapshot&) = delete;

 private:
  Database& _database;
};

/// Calls `take` with the statement at each row until it answers false. False on failure.
template <class Take>
bool eachRow(Statement& statement, Take take, Ref<NSError>* error) {
  for (;;) {
    switch (statement.step(error)) {
      case Step::Failed:
        return false;
      case Step::Done:
        return true;
      case Step::Row:
        if (!take(statement)) return true;
    }
  }
}

bool addIds(Statement& statement, Ids& ids, Ref<NSError>* error) {
  const auto add = [&](const Statement& row) {
    ids.push_back(row.integer(0));
    return true;
  };
  return eachRow(statement, add, error);
}

std::string listOf(IdList ids) {
  std::string list;
  for (const std::int64_t id : ids) list += (list.empty() ? "" : ",") + std::to_string(id);
  return list;
}

}  // namespace

/// The statements that look at one message, each made when it is first wanted.
struct Search::Lookups {
  Lookups(Database& database, const std::string& matchWords)
      : words(matchWords), _database(database) {}

  Statement& path() { return made(_path, "SELECT path FROM file WHERE id = ?1"); }
  Statement& message() {
    return made(_message,
                "SELECT f.path, m.date, m.sender, m.subject FROM message m"
                " JOIN file f ON f.id = m.id WHERE m.id = ?1");
  }
  Statement& passage() {
    return made(_passage,
                "SELECT snippet(word, -1, ?1, ?2, '…', 20) FROM word"
                " WHERE word MATCH ?3 AND rowid = ?4");
  }
  Statement& beginning() {
    return made(_beginning, "SELECT substr(body, 1, 300), length(body) FROM message WHERE id = ?1");
  }

  const std::string words;

 private:
  Statement& made(std::optional<Statement>& statement, std::string_view sql) {
    return statement ? *statement : statement.emplace(_database, sql);
  }

  Database& _database;
  std::optional<Statement> _path, _message, _passage, _beginning;
};

/// One run of a search: the sets of its matches and the statement over them.
class Search::Run {
 public:
  Run(StoreReader& reader, const SearchPlan& plan, const SearchSettings& settings)
      : _reader(reader), _plan(plan), _settings(settings), _rows(reader) {}

  /// Asks the full-text index. False on failure.
  bool prepare(Ref<NSError>* error);
  /// Calls `take` with the statement at each row, which has the columns, until it answers false.
  template <class Take>
  bool each(Columns columns, Take take, Ref<NSError>* error);
  std::optional<std::uint64_t> count(Ref<NSError>* error);
  /// What each() would find, where all of it was ranked.
  std::optional<IdList> rankedPage() const;

 private:
  bool collectMatches(Ref<NSError>* error);
  bool collectFolders(Ref<NSError>* error);
  bool collectRanks(Ref<NSError>* error);
  /// The ids among which everything is that will be found, when they are few.
  const IdSet* fewIds() const;
  std::string selection(Columns columns) const;
  std::string condition() const;
  std::string order() const;
  void bind(Statement& statement);

  StoreReader& _reader;
  const SearchPlan& _plan;
  const SearchSettings& _settings;
  AttributeRows _rows;
  std::vector<IdSet> _sets;
  std::vector<MatcherCall> _calls;
  std::optional<IdSet> _folders;
  RankTable _ranks;
  Ids _ranked;  // in the order that is wanted
};

bool Search::Run::prepare(Ref<NSError>* error) {
  for (const auto& matcher : _plan.matchers()) _calls.push_back({matcher.get(), &_rows});
  const bool hasRanks = _settings.order == Order::Rank && !_plan.words().empty();
  return collectMatches(error) && collectFolders(error) && (!hasRanks || collectRanks(error));
}

bool Search::Run::collectMatches(Ref<NSError>* error) {
  Statement match(_reader.database(), "SELECT rowid FROM word WHERE word MATCH ?1");
  for (const std::string& text : _plan.matches()) {
    Ids ids;
    match.bind(1, text);
    if (!addIds(match, ids, error)) return false;
    match.reset();
    _sets.emplace_back(std::move(ids));
  }
  return true;
}

bool Search::Run::collectFolders(Ref<NSError>* error) {
  if (_settings.folders.empty()) return true;
  Statement files(_reader.database(),
                  "SELECT id FROM file WHERE path >= ?1 AND path < ?2"
                  " UNION ALL SELECT id FROM file WHERE path = ?3");
  Ids ids;
  for (std::string folder : _settings.folders) {
    while (folder.ends_with('/')) folder.pop_back();
    const std::string first = folder + '/', last = folder + '0';  // the byte behind the slash
    files.bindBytes(1, first).bindBytes(2, last).bindBytes(3, folder);
    if (!addIds(files, ids, error)) return false;
    files.reset();
  }
  _folders.emplace(std::move(ids));
  return true;
}

bool Search::Run::collectRanks(Ref<NSError>* error) {
  // The newest of what is found, as a list by date shows them.
  Statement found(_reader.database(), "SELECT m.id FROM message m" + condition() + " ORDER BY " +
                                          kNewestFirst + " LIMIT " + std::to_string(kMostRanked));
  bind(found);
  if (!addIds(found, _ranked, error)) return false;
  IdSet ranked(_ranked);
  // A word in the subject says more than one in the body, as the names of people do.
  Statement match(_reader.database(),
                  "SELECT rowid, bm25(word, 10, 5, 3, 2, 2, 1, 3, 1, 1) FROM word"
                  " WHERE word MATCH ?1 AND ferncase_in(?2, rowid)");
  match.bind(1, _plan.words()).bindPointer(2, &ranked, kIdSetType);
  const auto add = [this](const Statement& row) {
    _ranks.emplace(row.integer(0), row.number(1));
    return true;
  };
  if (!eachRow(match, add, error)) return false;
  std::ranges::stable_sort(_ranked, {}, [this](std::int64_t id) { return rankOf(_ranks, id); });
  if (_settings.isReversed) std::ranges::reverse(_ranked);
  return true;
}

std::optional<IdList> Search::Run::rankedPage() const {
  if (_ranks.empty()) return std::nullopt;
  const std::uint64_t count = _ranked.size();
  const bool isAll = count < kMostRanked;
  const std::uint64_t first = std::min(_settings.offset, count);
  const std::uint64_t length = std::min(_settings.limit.value_or(UINT64_MAX), count - first);
  if (!isAll && (_settings.isReversed || !_settings.limit || *_settings.limit > length))
    return std::nullopt;
  return IdList(_ranked).subspan(first, length);
}

const IdSet* Search::Run::fewIds() const {
  const IdSet* fewest = _folders && _folders->count() <= kFew ? &*_folders : nullptr;
  for (const std::size_t index : _plan.required())
    if (_sets[index].count() <= (fewest ? fewest->count() : kFew)) fewest = &_sets[index];
  return fewest;
}

std::string Search::Run::selection(Columns columns) const {
  std::string text = columns == Columns::Id ? "SELECT m.id FROM " : "SELECT f.path FROM ";
  // The order decides which table is walked and which is looked up.
  if (_settings.order == Order::Path) return text + "file f CROSS JOIN message m ON m.id = f.id";
  text += "message m";
  return columns == Columns::Id ? text : text + " CROSS JOIN file f ON f.id = m.id";
}

std::string Search::Run::condition() const {
  std::string text = " WHERE " + _plan.condition();
  const std::size_t count = _plan.parameters().size();
  if (_folders) text += " AND ferncase_in(?" + std::to_string(count + 1) + ", m.id)";
  if (const IdSet* few = fewIds()) text += " AND m.id IN (" + listOf(few->ids()) + ")";
  return text;
}

std::string Search::Run::order() const {
  const std::string rank = "?" + std::to_string(_plan.parameters().size() + 2);
  const bool isReversed = _settings.isReversed;
  const std::string dates = isReversed ? kOldestFirst : kNewestFirst;
  if (_settings.order == Order::Path) return isReversed ? "f.path DESC" : "f.path";
  if (_settings.order == Order::Date || _ranks.empty()) return dates;
  return "ferncase_rank(" + rank + ", m.id)" + (isReversed ? " DESC, " : ", ") + dates;
}

void Search::Run::bind(Statement& statement) {
  int index = 0;
  for (const SearchPlan::Parameter& parameter : _plan.parameters()) {
    ++index;
    if (const auto* number = std::get_if<double>(&parameter))
      statement.bind(index, *number);
    else if (const auto* match = std::get_if<SearchPlan::Match>(&parameter))
      statement.bindPointer(index, &_sets[match->index], kIdSetType);
    else
      statement.bindPointer(index, &_calls[std::get<SearchPlan::Matcher>(parameter).index],
                            kMatcherType);
  }
  if (_folders) statement.bindPointer(index + 1, &*_folders, kIdSetType);
  statement.bindPointer(index + 2, &_ranks, kRankType);
}

template <class Take>
bool Search::Run::each(Columns columns, Take take, Ref<NSError>* error) {
  const std::size_t count = _plan.parameters().size();
  const std::string limit = "?" + std::to_string(count + 3),
                    offset = "?" + std::to_string(count + 4);
  Statement found(_reader.database(), selection(columns) + condition() + " ORDER BY " + order() +
                                          " LIMIT " + limit + " OFFSET " + offset);
  bind(found);
  constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
  found.bind(static_cast<int>(count + 3), std::min(_settings.limit.value_or(kMost), kMost));
  found.bind(static_cast<int>(count + 4), std::min(_settings.offset, kMost));
  return eachRow(found, take, error);
}

std::optional<std::uint64_t> Search::Run::count(Ref<NSError>* error) {
  std::uint64_t all = 0;
  if (_plan.isMatchAlone() && !_folders) {
    all = _sets.front().count();
  } else {
    Statement counted(_reader.database(), "SELECT count(*) FROM message m" + condition());
    bind(counted);
    if (counted.step(error) != Step::Row) return std::nullopt;
    all = static_cast<std::uint64_t>(counted.integer(0));
  }
  const std::uint64_t behind = all - std::min(all, _settings.offset);
  return std::min(behind, _settings.limit.value_or(behind));
}

Search::Search(StoreReader& reader, const QueryNode& query, SearchSettings settings)
    : _reader(reader),
      _settings(std::move(settings)),
      _beginning(PrefixWalk::isFor(query, _settings) ? std::optional(query) : std::nullopt),
      _plan(std::make_unique<SearchPlan>(query)),
      _lookups(std::make_unique<Lookups>(reader.database(), _plan->words())) {
  registerSearchFunctions(reader.database());
  registerAttributeFunctions(reader.database());
}

Search::~Search() = default;

std::optional<std::vector<std::int64_t>> Search::walkedPage() {
  if (!_beginning) return std::nullopt;
  return PrefixWalk(_reader.database(), *_beginning, _settings).page();
}

bool Search::run(const std::function<bool(std::int64_t id)>& take, Ref<NSError>* error) {
  const Snapshot snapshot(_reader.database());
  if (const auto page = walkedPage()) {
    std::ranges::all_of(*page, take);
    return true;
  }
  Run run(_reader, *_plan, _settings);
  if (!run.prepare(error)) return false;
  if (const auto page = run.rankedPage()) {
    std::ranges::all_of(*page, take);
    return true;
  }
  const auto takeId = [&](const Statement& row) { return take(row.integer(0)); };
  return run.each(Columns::Id, takeId, error);
}

bool Search::eachPath(IdList ids, const std::function<bool(std::string_view path)>& take,
                      Ref<NSError>* error) {
  for (const std::int64_t id : ids) {
    const auto each = path(id, error);
    if (!each) return false;
    if (!take(*each)) break;
  }
  return true;
}

bool Search::runPaths(const std::function<bool(std::string_view path)>& take, Ref<NSError>* error) {
  const Snapshot snapshot(_reader.database());
  if (const auto page = walkedPage()) return eachPath(*page, take, error);
  Run run(_reader, *_plan, _settings);
  if (!run.prepare(error)) return false;
  if (const auto page = run.rankedPage()) return eachPath(*page, take, error);
  const auto takePath = [&](const Statement& row) { return take(row.bytes(0)); };
  return run.each(Columns::Path, takePath, error);
}

std::optional<std::uint64_t> Search::count(Ref<NSError>* error) {
  const Snapshot snapshot(_reader.database());
  Run run(_reader, *_plan, _settings);
  if (!run.prepare(error)) return std::nullopt;
  return run.count(error);
}

std::optional<std::string> Search::path(std::int64_t id, Ref<NSError>* error) {
  Statement& row = _lookups->path();
  std::optional<std::string> path;
  if (row.bind(1, id).step(error) == Step::Row) path = row.bytes(0);
  row.reset();
  return path;
}

std::optional<FoundMessage> Search::message(std::int64_t id, Ref<NSError>* error) {
  Statement& row = _lookups->message();
  std::optional<FoundMessage> message;
  if (row.bind(1, id).step(error) == Step::Row) {
    message.emplace();
    message->path = row.bytes(0);
    if (!row.isNothing(1)) message->date = row.number(1);
    message->sender = row.text(2);
    message->subject = row.text(3);
  }
  row.reset();
  return message;
}

std::optional<Snippet> Search::snippet(std::int64_t id, Ref<NSError>* error) {
  std::optional<Snippet> snippet;
  if (!_lookups->words.empty()) {
    Statement& row = _lookups->passage();
    row.bind(1, kSnippetBegin).bind(2, kSnippetEnd).bind(3, _lookups->words).bind(4, id);
    if (row.step(error) == Step::Row) snippet = snippetOf(row.text(0));
    row.reset();
    if (snippet) return snippet;
  }
  Statement& row = _lookups->beginning();
  if (row.bind(1, id).step(error) == Step::Row)
    snippet = beginningOf(row.text(0), row.integer(1) > 300);
  row.reset();
  return snippet;
}

}  // namespace kbx
