#include "mail/HTMLMarkup.h"

#include <algorithm>

#include "platform/text/ASCII.h"

namespace kbx {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kBlanks = " \t\r\n\f";

std::size_t commentEnd(std::string_view html, std::size_t inner) {
  for (std::size_t at = html.find('>', inner); at != kNone; at = html.find('>', at + 1)) {
    const std::string_view text = html.substr(inner, at - inner);
    if (text.empty() || text == "-" || text.ends_with("--") || text.ends_with("--!")) return at + 1;
  }
  return kNone;
}

std::size_t tagEnd(std::string_view html, std::size_t name) {
  std::size_t at = html.find_first_of("=>", name);
  while (at != kNone && html[at] == '=') {
    at = html.find_first_not_of(kBlanks, at + 1);
    if (at == kNone) return kNone;
    if (html[at] == '"' || html[at] == '\'')
      at = html.find(html[at], at + 1);
    else  // to a blank, whatever quotation marks there are
      at = std::min(html.find_first_of(" \t\r\n\f>", at), html.size());
    if (at != kNone) at = html.find_first_of("=>", at);
  }
  return at == kNone ? kNone : at + 1;
}

}  // namespace

std::size_t markupEnd(std::string_view html, std::size_t start) {
  const std::string_view text = html.substr(start + 1, 3);
  if (text == "!--") return commentEnd(html, start + 4);
  if (text.starts_with('!') || text.starts_with('?')) {
    const std::size_t end = html.find('>', start);
    return end == kNone ? kNone : end + 1;
  }
  const std::size_t name = text.starts_with('/') ? 1 : 0;
  const bool isTag = text.size() > name && isASCIILetter(text[name]);
  return isTag ? tagEnd(html, start + 1 + name) : start;
}

}  // namespace kbx
