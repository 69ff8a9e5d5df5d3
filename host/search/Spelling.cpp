#include "host/search/Spelling.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace kbx {
namespace {

constexpr std::size_t kLongest = 64;

char folded(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
}

/// How many slips make one of the other.
std::size_t slips(std::string_view a, std::string_view b) {
  std::vector<std::size_t> beforeLast, last(b.size() + 1), row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool isSame = folded(a[i - 1]) == folded(b[j - 1]);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (isSame ? 0 : 1)});
      if (i > 1 && j > 1 && folded(a[i - 1]) == folded(b[j - 2]) &&
          folded(a[i - 2]) == folded(b[j - 1]))
        row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
    beforeLast = std::move(last);
    last = row;
  }
  return last[b.size()];
}

}  // namespace

std::string_view nearestWord(std::string_view word, std::span<const std::string_view> known) {
  std::string_view nearest;
  if (word.size() > kLongest) return nearest;
  std::size_t fewest = word.size() <= 4 ? 2 : 3;
  for (std::string_view candidate : known) {
    const std::size_t count = slips(word, candidate);
    if (count < fewest && count < candidate.size()) {
      fewest = count;
      nearest = candidate;
    }
  }
  return nearest;
}

}  // namespace kbx
