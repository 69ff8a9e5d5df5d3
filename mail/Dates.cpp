#include "mail/Dates.h"

#include <gmime/gmime-utils.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

#include "mail/ASCII.h"
#include "mail/HeaderText.h"

namespace kbx {

namespace {

constexpr std::size_t kNone = std::string_view::npos;

bool areDigits(std::string_view text) { return std::ranges::all_of(text, isASCIIDigit); }

/// Without the blanks that may stand around the colons of a time.
std::string withTightTimes(std::string_view text) {
  std::string tight;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t next = text.find_first_not_of(' ', i);
    const bool isAtColon = text[i] == ' ' && next != kNone &&
                           (text[next] == ':' || (!tight.empty() && tight.back() == ':'));
    if (!isAtColon) tight += text[i];
  }
  return tight;
}

/// The parser knows the zones of the standard, which are those of North America.
struct Zone {
  std::string_view name;
  std::string_view offset;
};
constexpr Zone kZones[] = {
    {"WET", "+0000"},  {"WEST", "+0100"}, {"BST", "+0100"}, {"CET", "+0100"},  {"MET", "+0100"},
    {"CEST", "+0200"}, {"MEST", "+0200"}, {"EET", "+0200"}, {"EEST", "+0300"}, {"MSK", "+0300"},
    {"HKT", "+0800"},  {"JST", "+0900"},  {"KST", "+0900"}, {"AEST", "+1000"}, {"AEDT", "+1100"},
    {"NZST", "+1200"}, {"NZDT", "+1300"},
};

/// Turns the forms that programs write into those that the parser knows, word by word.
class DateWriter {
 public:
  explicit DateWriter(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = std::min(text.find(' ', at), text.size());
      if (end > at) take(text.substr(at, end - at));
      at = end + 1;
    }
  }
  const std::string& text() const { return _text; }
  /// What is to be added to what the parser says.
  double secondsMore() const { return _secondsMore; }

 private:
  void take(std::string_view word) {
    constexpr std::size_t kDate = 10;  // "2024-05-17T…"
    const bool isJoined = word.size() > kDate + 1 && asciiLower(word[kDate]) == 't' &&
                          isASCIIDigit(word[0]) && word[4] == '-' && word[7] == '-';
    if (isJoined) {
      add(word.substr(0, kDate));
      word.remove_prefix(kDate + 1);
    }
    if (isASCIIDigit(word[0]) && word.find(':') != kNone) return takeTime(word);
    if (_hasTime) return takeBehindTime(word);
    addYear(word);
  }

  /// "13:30:00.25+02:00": the time and what follows it.
  void takeTime(std::string_view word) {
    _hasTime = true;
    const std::size_t end = std::min(word.find_first_not_of("0123456789:.,"), word.size());
    std::string_view time = word.substr(0, end);
    time = time.substr(0, time.find_first_of(".,", time.rfind(':')));
    if (time.ends_with(":60")) {
      time.remove_suffix(2);
      _secondsMore = 1;
      add(std::string(time) + "59");
    } else {
      add(time);
    }
    if (end < word.size()) takeBehindTime(word.substr(end));
  }

  void takeBehindTime(std::string_view word) {
    if (isSameWord(word, "am") || isSameWord(word, "pm"))
      return setHalf(asciiLower(word[0]) == 'p');
    for (std::string_view name : {"GMT", "UTC", "UT"})
      if (word.starts_with(name) && word.size() > name.size()) word.remove_prefix(name.size());
    if (word[0] == '+' || word[0] == '-') return addOffset(word);
    for (const Zone& zone : kZones)
      if (isSameWord(word, zone.name)) return add(zone.offset);
    addYear(word);
  }

  /// "+02:00", "+2:00", "+200" and "+02" are short for "+0200".
  void addOffset(std::string_view word) {
    std::string digits(word.substr(1));
    std::erase(digits, ':');
    if (!areDigits(digits)) return add(word);
    if (digits.size() % 2 == 1) digits.insert(0, 1, '0');
    if (digits.size() == 2) digits += "00";
    add(word[0] + digits);
  }

  /// Half a day for the hours that are counted twice a day.
  void setHalf(bool isAfternoon) {
    const std::size_t time = _text.rfind(' ', _text.find(':')) + 1;
    const int hour = std::atoi(_text.c_str() + time);
    constexpr double kHalf = 12 * 3600;
    if (hour < 12 && isAfternoon) _secondsMore += kHalf;
    if (hour == 12 && !isAfternoon) _secondsMore -= kHalf;
  }

  /// A year of three digits counts from 1900.
  void addYear(std::string_view word) {
    const bool isShort = word.size() == 3 && areDigits(word);
    add(isShort ? std::to_string(1900 + std::stoi(std::string(word))) : std::string(word));
  }

  void add(std::string_view word) {
    if (!_text.empty()) _text += ' ';
    _text += word;
  }

  std::string _text;
  bool _hasTime = false;
  double _secondsMore = 0;
};

/// Of a text that holds no comments.
std::optional<double> plainDateOf(std::string_view text) {
  const DateWriter date(withTightTimes(text));
  const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> parsed(
      g_mime_utils_header_decode_date(date.text().c_str()), &g_date_time_unref);
  if (!parsed) return std::nullopt;
  return static_cast<double>(g_date_time_to_unix(parsed.get())) + date.secondsMore();
}

std::optional<double> dateBehindSemicolon(std::string_view raw) {
  const std::size_t semicolon = raw.rfind(';');
  return semicolon == kNone ? std::nullopt : dateOf(raw.substr(semicolon + 1));
}

}  // namespace

std::optional<double> dateOf(std::string_view raw) {
  constexpr std::size_t kLongest = 256;
  std::string text = withoutComments(unfolded(raw.substr(0, kLongest)));
  std::ranges::replace(text, '\0', ' ');  // the parser reads a C string
  return plainDateOf(text);
}

std::optional<double> receivedDateOf(std::string_view raw) {
  const auto date = dateBehindSemicolon(withoutComments(raw));
  return date ? date : dateBehindSemicolon(raw);  // a comment may lack its end
}

}  // namespace kbx
