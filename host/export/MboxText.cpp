#include "host/export/MboxText.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <utility>

#include "platform/text/ASCII.h"

namespace kbx {
namespace {

constexpr std::string_view kFrom = "From ";
constexpr std::string_view kNobody = "MAILER-DAEMON";

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\r");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

bool isAddress(std::string_view text) {
  constexpr std::size_t kLongest = 320;
  return !text.empty() && text.size() <= kLongest && std::ranges::all_of(text, [](char c) {
    return static_cast<unsigned char>(c) > ' ' && c != 0x7F;
  });
}

}  // namespace

void MboxText::write(std::string_view bytes) {
  if (bytes.empty()) return;
  _output.write(bytes);
  _isFirst = false;
  _endsInBreak = bytes.back() == '\n';
}

void MboxText::take(std::string_view piece) {
  while (!piece.empty()) {
    if (_place == Place::Line && !_hasReturn) {
      const std::size_t end = std::min(piece.find_first_of("\r\n"), piece.size());
      write(piece.substr(0, end));
      piece.remove_prefix(end);
      if (piece.empty()) return;
    }
    takeByte(piece.front());
    piece.remove_prefix(1);
  }
}

void MboxText::takeByte(char byte) {
  if (_hasReturn && byte != '\n') {
    _hasReturn = false;
    takeStart('\r');
  }
  _hasReturn = byte == '\r';
  if (!_hasReturn) takeStart(byte);
}

void MboxText::takeStart(char byte) {
  if (_place == Place::EnvelopeLine) {
    if (byte == '\n') _place = Place::LineStart;
    return;
  }
  if (_place == Place::LineStart && byte == kFrom.front()) {
    _place = Place::FromLine;
    _seen = 1;
    return;
  }
  if (_place == Place::FromLine && byte == kFrom[_seen]) {
    if (++_seen < kFrom.size()) return;
    _place = std::exchange(_isFirst, false) ? Place::EnvelopeLine : Place::Line;
    if (_place == Place::EnvelopeLine) return;
    write(">");
    return write(kFrom);
  }
  if (_place == Place::FromLine) write(kFrom.substr(0, _seen));
  const bool isQuote = _place == Place::LineStart && byte == '>';
  _place = byte == '\n' || isQuote ? Place::LineStart : Place::Line;
  write({&byte, 1});
}

void MboxText::end() {
  if (_hasReturn) takeStart('\r');
  if (_place == Place::FromLine) write(kFrom.substr(0, _seen));
  write(_endsInBreak ? "\n" : "\n\n");
}

std::string returnPathOf(std::string_view head) {
  constexpr std::string_view kName = "return-path:";
  while (!head.empty()) {
    const std::size_t end = std::min(head.find('\n'), head.size());
    const std::string_view line = head.substr(0, end);
    head.remove_prefix(std::min(end + 1, head.size()));
    if (trimmed(line).empty()) break;
    if (!equalsIgnoringASCIICase(line.substr(0, kName.size()), kName)) continue;
    std::string_view address = trimmed(line.substr(kName.size()));
    if (address.starts_with('<') && address.ends_with('>'))
      address = address.substr(1, address.size() - 2);
    return std::string(address.empty() ? kNobody : address);
  }
  return {};
}

std::string envelopeLine(std::string_view sender, double secondsSince1970) {
  constexpr std::array kDays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  constexpr std::array kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                               "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  constexpr double kLatest = 253402300799;  // the end of the year 9999
  const bool isTime = secondsSince1970 >= 0 && secondsSince1970 <= kLatest;
  const auto seconds = static_cast<std::time_t>(isTime ? secondsSince1970 : 0);
  std::tm time{};
  ::gmtime_r(&seconds, &time);
  std::array<char, 64> date;
  std::snprintf(date.data(), date.size(), "%s %s %2d %02d:%02d:%02d %04d",
                kDays[static_cast<std::size_t>(time.tm_wday)],
                kMonths[static_cast<std::size_t>(time.tm_mon)], time.tm_mday, time.tm_hour,
                time.tm_min, time.tm_sec, time.tm_year + 1900);
  return std::string(kFrom)
      .append(isAddress(sender) ? sender : kNobody)
      .append(" ")
      .append(date.data());
}

}  // namespace kbx
