#include "host/defaults/ValueWords.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>

#include "host/results/DateText.h"
#include "platform/objects/NSString.h"
#include "platform/propertylists/PropertyListText.h"

namespace kbx {
namespace {

constexpr std::string_view kDigits = "0123456789";

std::string wordOfReal(double value) {
  if (std::isnan(value)) return "nan";
  char text[32];
  std::string word(text, std::to_chars(text, text + sizeof text, value).ptr);
  if (std::isfinite(value) && word.find_first_of(".e") == word.npos) word += ".0";
  return word;
}

template <class T>
std::optional<T> whole(std::string_view text) {
  T value{};
  const char* end = text.data() + text.size();
  auto [stop, fault] = std::from_chars(text.data(), end, value);
  if (fault != std::errc() || stop != end) return std::nullopt;
  return value;
}

Ref<NSNumber> numberOfWord(std::string_view word) {
  if (word == "true" || word == "false") return NSNumber::numberWithBool(word == "true");
  if (auto integer = whole<std::int64_t>(word)) return NSNumber::numberWithInteger(*integer);
  if (auto natural = whole<std::uint64_t>(word))
    return NSNumber::numberWithUnsignedInteger(*natural);
  auto real = whole<double>(word);
  return real ? NSNumber::numberWithDouble(*real) : nullptr;
}

/// "2026-11-21T03:56:00.25Z", the decimals as they may be.
std::optional<double> secondsOfInternetDate(std::string_view text) {
  const std::size_t point = text.find('.');
  if (point == text.npos) return dateFromText(text);
  const std::size_t end = text.find_first_not_of(kDigits, point + 1);
  if (end == text.npos || end == point + 1 || text.substr(end) != "Z") return std::nullopt;
  auto seconds = dateFromText(std::string(text.substr(0, point)) + "Z");
  auto decimals = whole<double>("0" + std::string(text.substr(point, end - point)));
  if (!seconds || !decimals) return std::nullopt;
  return *seconds + *decimals;
}

/// "2026-11-21 03:56:00 +0100".
std::optional<double> secondsOfDescription(std::string_view text) {
  constexpr std::size_t kBlank = 10, kZone = 20, kLength = 25;
  if (text.size() != kLength || text[kBlank] != ' ' || text[kZone - 1] != ' ') return std::nullopt;
  std::string date(text.substr(0, kZone - 1));
  date[kBlank] = 'T';
  const std::string_view zone = text.substr(kZone);
  if ((zone[0] != '+' && zone[0] != '-') || zone.find_first_not_of(kDigits, 1) != zone.npos)
    return std::nullopt;
  auto seconds = dateFromText(date + "Z");
  const int hours = *whole<int>(zone.substr(1, 2)), minutes = *whole<int>(zone.substr(3));
  if (!seconds || hours > 23 || minutes > 59) return std::nullopt;
  const int ahead = hours * 3600 + minutes * 60;
  return *seconds - (zone[0] == '-' ? -ahead : ahead);
}

std::optional<double> secondsOfText(std::string_view text) {
  if (text.starts_with('@')) return whole<double>(text.substr(1));
  if (auto seconds = secondsOfInternetDate(text)) return seconds;
  return secondsOfDescription(text);
}

bool isSameTime(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

}  // namespace

std::string wordOfNumber(NSNumber* number) {
  if (number->isBoolean()) return number->boolValue() ? "true" : "false";
  if (number->kind() == NSNumber::Kind::Real) return wordOfReal(number->doubleValue());
  return number->description()->lossyUTF8();
}

std::string wordOfDate(NSDate* date) {
  const double seconds = date->timeIntervalSinceReferenceDate();
  const auto text = internetDate(date);
  const auto again = text ? secondsOfInternetDate(*text) : std::nullopt;
  if (again && isSameTime(*again, seconds)) return *text;
  return "@" + wordOfReal(seconds);
}

Ref<NSObject> valueOfWord(std::string_view word) {
  if (auto number = numberOfWord(word); number && wordOfNumber(number) == word) return number;
  if (auto date = dateOfText(word); date && wordOfDate(date) == word) return date;
  return nullptr;
}

Ref<NSDate> dateOfText(std::string_view text) {
  auto seconds = secondsOfText(text);
  return seconds ? NSDate::dateWithTimeIntervalSinceReferenceDate(*seconds) : nullptr;
}

}  // namespace kbx
