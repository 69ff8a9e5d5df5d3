#include "mail/HTMLText.h"

#include <algorithm>

#include "mail/ASCII.h"

namespace kbx {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

/// Elements whose contents are no markup, and what ends them.
struct Raw {
  std::string_view name;
  std::string_view closing;
};
constexpr Raw kRaw[] = {{"script", "</script>"}, {"style", "</style>"}, {"title", "</title>"}};

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
    if (tag.starts_with("!--")) {
      at = html.find("-->", at + 4);
      if (at == kNone) return "-->";
      continue;
    }
    const bool isTag =
        !tag.empty() && (isASCIIAlphanumeric(tag[0]) || tag[0] == '/' || tag[0] == '!');
    if (!isTag) {
      ++at;
      continue;
    }
    at = html.find('>', at);
    if (at == kNone) return "\"'>";  // a value's quotation mark may be open as well
    const Raw* raw = rawElementAt(tag);
    if (raw) at = endTag(html, at, *raw);
    if (at == kNone) return raw->closing;
  }
  return {};
}

}  // namespace kbx
