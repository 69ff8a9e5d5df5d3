#include "host/store/IndexCheck.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "host/tokenizer/Tokenizer.h"

namespace kbx {
namespace {

constexpr std::array<std::string_view, 9> kColumns = {
    "subject", "sender", "recipient", "cc", "bcc", "body", "attachment", "file", "list"};

/// How often progress is told, in words.
constexpr std::uint64_t kManyWords = 1 << 14;

std::uint64_t scattered(std::uint64_t value) {
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
  return value ^ (value >> 31);
}

std::uint64_t hashOf(std::string_view token) { return std::hash<std::string_view>()(token); }

/// The sum over all tokens of a message does not depend on the order in which they are met.
std::uint64_t summand(std::uint64_t tokenHash, std::uint64_t column, std::uint64_t position) {
  return scattered(tokenHash + 0x9E3779B97F4A7C15u * (column << 32 | position));
}

/// Adds up what the tokenizer makes of the texts of a message.
class TextSum {
 public:
  void add(std::uint64_t column, std::string_view text) {
    _column = column;
    _position = ~std::uint64_t{0};  // the first is 0
    tokenize(text, TokenPurpose::Index, {&take, this});
  }
  std::uint64_t value() const { return _value; }
  std::uint64_t words() const { return _words; }

 private:
  static int take(void* self, int flags, const char* token, int length, int, int) {
    auto& sum = *static_cast<TextSum*>(self);
    if ((flags & kColocatedToken) == 0) ++sum._position;
    const std::uint64_t hash = hashOf({token, static_cast<std::size_t>(length)});
    sum._value += summand(hash, sum._column, sum._position);
    ++sum._words;
    return 0;
  }

  std::uint64_t _value = 0, _words = 0, _column = 0, _position = 0;
};

/// The number of the column that is called so. Most are the same as the one before.
class ColumnOf {
 public:
  std::uint64_t operator()(std::string_view name) {
    if (kColumns[_last] != name)
      _last = static_cast<std::size_t>(std::ranges::find(kColumns, name) - kColumns.begin()) %
              kColumns.size();
    return _last;
  }

 private:
  std::size_t _last = 0;
};

class IndexCheck {
 public:
  IndexCheck(Database& database, std::size_t most, std::vector<std::string>& findings,
             const CheckProgress& progress)
      : _database(database), _most(most), _findings(findings), _progress(progress) {}

  /// Within one transaction, so that both sides are seen at the same moment.
  void run() {
    if (addTexts() && subtractIndex()) report();
  }

 private:
  /// The sum of a message's texts less that of what the index has of it.
  struct Difference {
    std::uint64_t value = 0;
    bool hasMessage = false;
  };

  bool addTexts();
  bool subtractIndex();
  void report();
  template <class Take>
  bool eachRow(std::string_view sql, Take take);

  Database& _database;
  const std::size_t _most;
  std::vector<std::string>& _findings;
  const CheckProgress& _progress;
  std::unordered_map<std::int64_t, Difference> _differences;
  std::uint64_t _words = 0;  // in the texts
};

/// Calls `take` for each row. What keeps the statement from running is a finding.
template <class Take>
bool IndexCheck::eachRow(std::string_view sql, Take take) {
  Statement rows(_database, sql);
  Ref<NSError> problem;
  while (true) {
    switch (rows.step(&problem)) {
      case Statement::Step::Row:
        take(rows);
        break;
      case Statement::Step::Done:
        return true;
      case Statement::Step::Failed:
        _findings.push_back("the index: " + problem->localizedDescription()->lossyUTF8());
        return false;
    }
  }
}

bool IndexCheck::addTexts() {
  const auto count = _database.integer("SELECT count(*) FROM message", nullptr).value_or(0);
  _progress.begins(static_cast<std::uint64_t>(count));
  _differences.reserve(static_cast<std::size_t>(count));
  return eachRow(
      "SELECT id, subject, sender, recipient, cc, bcc, body, attachment, file, list FROM message",
      [&](const Statement& row) {
        TextSum sum;
        for (std::size_t i = 0; i < kColumns.size(); ++i)
          sum.add(i, row.text(static_cast<int>(i) + 1));
        _differences[row.integer(0)] = {sum.value(), true};
        _words += sum.words();
        _progress.advances(1);
      });
}

bool IndexCheck::subtractIndex() {
  _progress.begins(_words);
  ColumnOf columnOf;
  std::string term;
  std::uint64_t hash = hashOf(term), count = 0;
  std::pair<const std::int64_t, Difference>* message = nullptr;
  const auto subtract = [&](const Statement& row) {
    // They come ordered by their terms, and those of a term by their messages.
    if (const std::string_view next = row.text(0); next != term) {
      term = next;
      hash = hashOf(term);
    }
    if (const std::int64_t id = row.integer(1); !message || message->first != id)
      message = &*_differences.try_emplace(id).first;
    const std::uint64_t column = columnOf(row.text(2));
    message->second.value -= summand(hash, column, static_cast<std::uint64_t>(row.integer(3)));
    if (++count % kManyWords == 0) _progress.advances(kManyWords);
  };
  return eachRow("SELECT term, doc, col, offset FROM temp.word_instance", subtract);
}

void IndexCheck::report() {
  std::map<std::int64_t, std::string_view> wrong;
  for (const auto& [id, difference] : _differences) {
    if (!difference.hasMessage)
      wrong[id] = "words of a missing";
    else if (difference.value != 0)
      wrong[id] = "other words than";
  }
  for (const auto& [id, what] : wrong) {
    if (_findings.size() >= _most) return;
    _findings.push_back("the index has " + std::string(what) + " message " + std::to_string(id));
  }
}

}  // namespace

void checkIndex(Database& database, std::size_t most, std::vector<std::string>& findings,
                const CheckProgress& progress) {
  Ref<NSError> problem;
  if (!database.run("PRAGMA query_only = 0; BEGIN;"
                    "CREATE VIRTUAL TABLE temp.word_instance USING fts5vocab(main, word, instance)",
                    &problem))
    findings.push_back("the index: " + problem->localizedDescription()->lossyUTF8());
  else
    IndexCheck(database, most, findings, progress).run();
  database.run("ROLLBACK", nullptr);
  database.run("PRAGMA query_only = 1", nullptr);
}

}  // namespace kbx
