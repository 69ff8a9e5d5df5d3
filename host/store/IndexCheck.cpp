#include "host/store/IndexCheck.h"

#include <array>
#include <cstdint>
#include <map>
#include <unordered_map>

#include "host/tokenizer/Tokenizer.h"

namespace kbx {
namespace {

constexpr std::array<std::string_view, 9> kColumns = {
    "subject", "sender", "recipient", "cc", "bcc", "body", "attachment", "file", "list"};

/// Where a token stands in a message.
struct Spot {
  std::uint64_t column, position;
};

std::uint64_t scattered(std::uint64_t value) {
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
  return value ^ (value >> 31);
}

/// The sum over all tokens of a message does not depend on the order in which they are met.
std::uint64_t summand(std::string_view token, Spot spot) {
  return scattered(std::hash<std::string_view>()(token) +
                   scattered(spot.column << 32 | spot.position));
}

using Sums = std::unordered_map<std::int64_t, std::uint64_t>;

/// The texts of a row, from its second column on.
std::uint64_t sumOfTexts(const Statement& row) {
  struct Context {
    std::uint64_t sum, column, position;
  } context = {};
  const auto take = [](void* pointer, int flags, const char* token, int length, int, int) {
    auto& sums = *static_cast<Context*>(pointer);
    if ((flags & kColocatedToken) == 0) ++sums.position;
    sums.sum += summand({token, static_cast<std::size_t>(length)}, {sums.column, sums.position});
    return 0;
  };
  for (context.column = 0; context.column < kColumns.size(); ++context.column) {
    context.position = ~std::uint64_t{0};  // the first is 0
    tokenize(row.text(static_cast<int>(context.column) + 1), TokenPurpose::Index, {take, &context});
  }
  return context.sum;
}

/// Calls `take` for each row. What keeps the statement from running is a finding.
template <class Take>
bool eachRow(Database& database, std::string_view sql, std::vector<std::string>& findings,
             Take take) {
  Statement rows(database, sql);
  Ref<NSError> problem;
  while (true) {
    switch (rows.step(&problem)) {
      case Statement::Step::Row:
        take(rows);
        break;
      case Statement::Step::Done:
        return true;
      case Statement::Step::Failed:
        findings.push_back("the index: " + problem->localizedDescription()->lossyUTF8());
        return false;
    }
  }
}

std::optional<Sums> sumsOfIndex(Database& database, std::vector<std::string>& findings) {
  std::map<std::string_view, std::uint64_t> columns;
  for (std::size_t i = 0; i < kColumns.size(); ++i) columns[kColumns[i]] = i;
  Sums sums;
  const bool isRead = eachRow(
      database, "SELECT term, doc, col, offset FROM temp.word_instance", findings,
      [&](const Statement& row) {
        sums[row.integer(1)] += summand(
            row.text(0), {columns[row.text(2)], static_cast<std::uint64_t>(row.integer(3))});
      });
  return isRead ? std::optional(std::move(sums)) : std::nullopt;
}

void compare(Database& database, Sums sums, std::size_t most, std::vector<std::string>& findings) {
  const auto add = [&](std::int64_t id, std::string_view what) {
    if (findings.size() < most)
      findings.push_back("the index has " + std::string(what) + " message " + std::to_string(id));
  };
  eachRow(database,
          "SELECT id, subject, sender, recipient, cc, bcc, body, attachment, file, list"
          " FROM message",
          findings, [&](const Statement& row) {
            const auto found = sums.find(row.integer(0));
            const std::uint64_t sum = found == sums.end() ? 0 : found->second;
            if (sum != sumOfTexts(row)) add(row.integer(0), "other words than");
            if (found != sums.end()) sums.erase(found);
          });
  for (const auto& [id, sum] : sums) add(id, "words of a missing");
}

}  // namespace

void checkIndex(Database& database, std::size_t most, std::vector<std::string>& findings) {
  Ref<NSError> problem;
  // One transaction, so that both sides are seen at the same moment.
  if (!database.run("PRAGMA query_only = 0; BEGIN;"
                    "CREATE VIRTUAL TABLE temp.word_instance USING fts5vocab(main, word, instance)",
                    &problem)) {
    findings.push_back("the index: " + problem->localizedDescription()->lossyUTF8());
  } else if (auto sums = sumsOfIndex(database, findings)) {
    compare(database, std::move(*sums), most, findings);
  }
  database.run("ROLLBACK", nullptr);
  database.run("PRAGMA query_only = 1", nullptr);
}

}  // namespace kbx
