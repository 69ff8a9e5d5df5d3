#include "host/quick/QuickArguments.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <set>
#include <string_view>

namespace kbx {
namespace {

using Order = SearchSettings::Order;

/// Words of other characters go through tables that the quick search does not bring along.
bool isPlain(std::string_view word) {
  return !word.empty() && std::ranges::all_of(word, [](char c) { return c >= ' ' && c <= '~'; });
}

/// As the command does it: what begins with one dash is part of the query.
bool isOperandWithDash(std::string_view word) {
  return word.size() > 1 && word[1] != '-' && word != "-h";
}

class Reader {
 public:
  explicit Reader(std::span<const char* const> words) : _words(words) {}

  std::optional<QuickArguments> read() {
    while (!_words.empty() && !_isOther) take(next());
    if (_isOther || _arguments.query.empty() || (_arguments.isCount && _arguments.end == '\0'))
      return std::nullopt;
    return std::move(_arguments);
  }

 private:
  std::string_view next() {
    if (_words.empty()) return {};
    const std::string_view word = _words.front();
    _words = _words.subspan(1);
    return word;
  }

  void take(std::string_view word) {
    if (word == "-0")
      _arguments.end = '\0';
    else if (!word.starts_with('-') || isOperandWithDash(word))
      takeOperand(word);
    else
      takeOption(word);
  }

  void takeOperand(std::string_view word) {
    _isOther = !isPlain(word);
    _arguments.query.append(_arguments.query.empty() ? "" : " ").append(word);
  }

  void takeOption(std::string_view name) {
    _isOther = !_known.insert(name).second;  // what is given twice the host refuses
    if (name == "--count")
      _arguments.isCount = true;
    else if (name == "--reverse")
      _arguments.settings.isReversed = true;
    else
      takeValue(name, next());
  }

  void takeValue(std::string_view name, std::string_view value) {
    _isOther = _isOther || value.empty() || value[0] == '-';
    if (_isOther) return;
    if (name == "--db")
      _arguments.database = value;
    else if (name == "--sort")
      takeOrder(value);
    else if (name == "--offset")
      _arguments.settings.offset = number(value);
    else if (name == "--limit")
      takeLimit(number(value));
    else
      _isOther = true;
  }

  void takeOrder(std::string_view key) {
    _isOther = key != "date" && key != "rank" && key != "path";
    _arguments.settings.order = key == "rank"   ? Order::Rank
                                : key == "path" ? Order::Path
                                                : Order::Date;
  }

  void takeLimit(std::uint64_t limit) {
    if (limit != 0) _arguments.settings.limit = limit;  // 0 is all
  }

  std::uint64_t number(std::string_view text) {
    std::uint64_t value = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    // A zero at the beginning could be another base to the parser of options.
    const bool isPlainNumber = end == text.data() + text.size() && failure == std::errc();
    _isOther = !isPlainNumber || (text.size() > 1 && text[0] == '0');
    return value;
  }

  std::span<const char* const> _words;
  std::set<std::string_view> _known;
  QuickArguments _arguments;
  bool _isOther = false;
};

}  // namespace

std::optional<QuickArguments> quickArguments(std::span<const char* const> words) {
  return Reader(words).read();
}

}  // namespace kbx
