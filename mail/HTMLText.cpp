#include "mail/HTMLText.h"

#include <algorithm>

#include "mail/ASCII.h"
#include "mail/HTMLMarkup.h"

namespace kbx {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

/// Elements whose contents are no markup, and what ends them.
struct Raw {
  std::string_view name;
  std::string_view closing;
};
constexpr Raw kRaw[] = {{"script", "</script>"}, {"style", "</style>"},
                        {"title", "</title>"},   {"textarea", "</textarea>"},
                        {"xmp", "</xmp>"},       {"noframes", "</noframes>"}};

const Raw* rawElementAt(std::string_view tag) {
  for (const Raw& raw : kRaw) {
    const std::size_t end = raw.name.size();
    if (startsWithWord(tag, raw.name) && (tag.size() == end || !isASCIIAlphanumeric(tag[end])))
      return &raw;
  }
  return nullptr;
}

/// The place of the end tag; none when the element is not closed.
std::size_t endTag(std::string_view html, std::size_t from, const Raw& raw) {
  for (std::size_t at = html.find("</", from); at != kNone; at = html.find("</", at + 2))
    if (startsWithWord(html.substr(at + 2, raw.name.size()), raw.name)) return at;
  return kNone;
}

/// What closes a tag that the HTML ends in, and the value that may be open there: one in quotes of
/// either kind, or one that has not begun.
std::string_view closingOfTag(std::string_view html) {
  return trimmed(html).ends_with('=') ? ">" : "\"'>";
}

}  // namespace

std::string htmlFromPlainText(std::string_view text) {
  std::string html = "<pre>";
  html.reserve(text.size() + text.size() / 16 + 16);
  for (char c : text) {
    switch (c) {
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '&':
        html += "&amp;";
        break;
      default:
        html += c;
    }
  }
  return html += "</pre>\n";
}

std::string_view closingOfHTML(std::string_view html) {
  for (std::size_t at = html.find('<'); at != kNone; at = html.find('<', at)) {
    const std::string_view tag = html.substr(at + 1);
    const std::size_t end = markupEnd(html, at);
    if (end == kNone) return tag.starts_with("!--") ? "-->" : closingOfTag(html);
    const Raw* const raw = end == at ? nullptr : rawElementAt(tag);
    at = raw ? endTag(html, end, *raw) : std::max(end, at + 1);
    if (at == kNone) return raw->closing;
  }
  return {};
}

}  // namespace kbx
