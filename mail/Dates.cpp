#include "mail/Dates.h"

#include <gmime/gmime-utils.h>

#include <algorithm>
#include <memory>
#include <string>

#include "mail/ASCII.h"
#include "mail/HeaderText.h"

namespace kbx {

namespace {

/// Without comments, and without the blanks that may stand around the colons of a time.
std::string plainDate(std::string_view raw) {
  std::string text;
  int depth = 0;
  for (char c : raw) {
    depth += c == '(' ? 1 : 0;
    if (depth == 0) text += c == '\0' ? ' ' : c;  // the parser reads a C string
    depth -= c == ')' && depth > 0 ? 1 : 0;
  }
  std::string tight;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t next = text.find_first_not_of(' ', i);
    const bool isAtColon = text[i] == ' ' && next != std::string::npos &&
                           (text[next] == ':' || (!tight.empty() && tight.back() == ':'));
    if (!isAtColon) tight += text[i];
  }
  return tight;
}

/// Gives a zone of three digits, "-600", the zero that it lacks.
void completeZone(std::string& text) {
  while (text.ends_with(' ')) text.pop_back();
  if (text.size() < 5) return;
  const std::size_t zone = text.size() - 4;
  const bool isShort = (text[zone] == '-' || text[zone] == '+') && text[zone - 1] == ' ' &&
                       std::all_of(text.begin() + zone + 1, text.end(), isASCIIDigit);
  if (isShort) text.insert(zone + 1, 1, '0');
}

}  // namespace

std::optional<double> dateOf(std::string_view raw) {
  constexpr std::size_t kLongest = 256;
  std::string text = plainDate(unfolded(raw.substr(0, kLongest)));
  completeZone(text);
  const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> date(
      g_mime_utils_header_decode_date(text.c_str()), &g_date_time_unref);
  if (!date) return std::nullopt;
  return static_cast<double>(g_date_time_to_unix(date.get()));
}

std::optional<double> receivedDateOf(std::string_view raw) {
  const std::size_t semicolon = raw.rfind(';');
  return semicolon == std::string_view::npos ? std::nullopt : dateOf(raw.substr(semicolon + 1));
}

}  // namespace kbx
