#include "mail/TextSections.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <utility>

#include "mail/HTMLWords.h"

namespace kbx {
namespace {

/// Appends, with a line end between; the first of several is moved.
void appendLines(std::string& text, std::string&& more) {
  if (text.empty()) {
    text = std::move(more);
    return;
  }
  if (!more.empty() && text.back() != '\n') text += '\n';
  text += more;
}

bool isBlank(std::string_view text) {
  return text.find_first_not_of(" \t\r\n\f\v") == std::string_view::npos;
}

/// The HTML of a section; plain text escaped, its lines kept.
std::string takeHTML(TextSection& section) {
  return section.html ? std::move(*section.html) : htmlFromPlainText(*section.plain);
}

TextSection both(std::string plain, std::string html) {
  const WordComparison words = compareWords(plain, html);
  TextSection section;
  if (words.plainHasAllOfHTML) {
    section.plain = std::move(plain);
  } else if (!words.htmlHasAllOfPlain) {
    html.insert(0, htmlFromPlainText(plain));
  }
  section.html = std::move(html);
  return section;
}

/// Takes what one form of an alternative has: the first that is plain throughout, the last with
/// HTML.
void takeForm(std::span<TextSection> form, std::optional<std::string>* plain,
              std::optional<std::string>* html) {
  if (form.empty()) return;
  const bool hasHTML = std::ranges::any_of(form, [](auto& one) { return one.html.has_value(); });
  const bool isPlain = std::ranges::all_of(form, [](auto& one) { return one.plain.has_value(); });
  if (isPlain && !*plain) {
    plain->emplace();
    for (TextSection& one : form)
      appendLines(**plain, hasHTML ? std::string(*one.plain) : std::move(*one.plain));
  }
  if (!hasHTML) return;
  html->emplace();
  for (TextSection& one : form) appendLines(**html, takeHTML(one));
}

}  // namespace

void TextSections::addPlain(std::string text) {
  if (isBlank(text)) return;
  const bool joins = mayJoin() && _sections.back().plain && !_sections.back().html;
  if (joins)
    appendLines(*_sections.back().plain, std::move(text));
  else
    _sections.push_back({std::move(text), std::nullopt});
}

void TextSections::addHTML(std::string html) {
  if (isBlank(html)) return;
  const bool joins = mayJoin() && _sections.back().html && !_sections.back().plain;
  if (joins)
    appendLines(*_sections.back().html, std::move(html));
  else
    _sections.push_back({std::nullopt, std::move(html)});
}

void TextSections::append(TextSections&& others) {
  for (TextSection& section : others._sections) {
    if (!section.html)
      addPlain(std::move(*section.plain));
    else if (!section.plain)
      addHTML(std::move(*section.html));
    else
      _sections.push_back(std::move(section));
  }
  others._sections.clear();
}

std::size_t TextSections::mark() { return _lastMark = _sections.size(); }

void TextSections::mergeAlternatives(const std::vector<std::size_t>& starts) {
  std::optional<std::string> plain, html;
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const std::size_t end = i + 1 < starts.size() ? starts[i + 1] : _sections.size();
    takeForm(std::span(_sections.data() + starts[i], end - starts[i]), &plain, &html);
  }
  if (starts.empty() || (!plain && !html)) return;
  _sections.resize(starts.front());
  if (plain && html)
    _sections.push_back(both(std::move(*plain), std::move(*html)));
  else
    _sections.push_back({std::move(plain), std::move(html)});
  mark();
}

BodyText TextSections::take() {
  BodyText text;
  const bool isPlain =
      std::ranges::all_of(_sections, [](auto& one) { return one.plain.has_value(); });
  const bool hasHTML =
      std::ranges::any_of(_sections, [](auto& one) { return one.html.has_value(); });
  for (TextSection& section : _sections) {
    std::string html = hasHTML ? takeHTML(section) : std::string();
    if (isPlain) appendLines(text.plain, std::move(*section.plain));
    if (hasHTML) appendLines(text.html, std::move(html));
    section = {};
  }
  _sections.clear();
  return text;
}

}  // namespace kbx
