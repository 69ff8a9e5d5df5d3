#include "mail/Dates.h"

#include <gmime/gmime-utils.h>

#include <algorithm>
#include <memory>
#include <string>

#include "mail/HeaderText.h"

namespace kbx {

std::optional<double> dateOf(std::string_view raw) {
  constexpr std::size_t kLongest = 256;
  std::string text = unfolded(raw.substr(0, kLongest));
  std::ranges::replace(text, '\0', ' ');  // the parser reads a C string
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
