#include "mail/TextSections.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <utility>

#include "mail/HTMLText.h"
#include "mail/HTMLWords.h"

namespace kbx {
namespace {

constexpr std::size_t kManySections = 4096;

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

/// Puts HTML together so that each piece is shown, whatever the one before it leaves open.
class JoinedHTML {
 public:
  void add(std::string html) {
    if (!_html.empty()) _html += closingOfHTML(std::string_view(_html).substr(_last));
    _last = _html.size();
    appendLines(_html, std::move(html));
  }
  std::string take() { return std::move(_html); }

 private:
  std::string _html;
  std::size_t _last = 0;  // where the piece that was added last begins
};

/// The HTML of a section; plain text escaped, its lines kept.
std::string takeHTML(TextSection& section) {
  return section.html ? std::move(*section.html) : htmlFromPlainText(*section.plain);
}

/// The texts of one kind that an alternative has, less those whose words another one has.
class Forms {
 public:
  explicit Forms(std::optional<Words> (*wordsOf)(std::string_view)) : _wordsOf(wordsOf) {}

  void add(std::string text) {
    if (!_text) return set(std::move(text), std::nullopt);
    std::optional<Words> more = _wordsOf(text);
    if (hasAllWords(words(), more)) return;
    if (hasAllWords(more, words())) return set(std::move(text), std::move(more));
    if (_wordsOf == &wordsOfHTML) *_text += closingOfHTML(*_text);
    appendLines(*_text, std::move(text));
    if (!more) _words.reset();
    if (!_words) return;
    Words all;
    std::ranges::set_union(*_words, *more, std::back_inserter(all));
    _words = std::move(all);
  }
  const std::optional<Words>& words() {
    if (!_areWordsKnown && _text) _words = _wordsOf(*_text);
    _areWordsKnown = true;
    return _words;
  }
  std::optional<std::string>& text() { return _text; }

 private:
  void set(std::string text, std::optional<Words> words) {
    _areWordsKnown = words.has_value();
    _text = std::move(text);
    _words = std::move(words);
  }

  std::optional<Words> (*const _wordsOf)(std::string_view);
  std::optional<std::string> _text;
  std::optional<Words> _words;  // of the text, absent when it is too long
  bool _areWordsKnown = false;  // they are found when they are asked for
};

/// What one form of an alternative has of both kinds.
void takeForm(std::span<TextSection> form, Forms* plain, Forms* html) {
  if (form.empty()) return;
  const bool hasHTML = std::ranges::any_of(form, [](auto& one) { return one.html.has_value(); });
  const bool isPlain = std::ranges::all_of(form, [](auto& one) { return one.plain.has_value(); });
  if (isPlain) {
    std::string text;
    for (TextSection& one : form)
      appendLines(text, hasHTML ? std::string(*one.plain) : std::move(*one.plain));
    plain->add(std::move(text));
  }
  if (!hasHTML) return;
  JoinedHTML text;
  for (TextSection& one : form) text.add(takeHTML(one));
  html->add(text.take());
}

TextSection sectionOf(Forms plain, Forms html) {
  if (plain.text() && html.text() && !hasAllWords(plain.words(), html.words())) {
    if (!hasAllWords(html.words(), plain.words()))
      html.text()->insert(0, htmlFromPlainText(*plain.text()));
    plain.text().reset();
  }
  return {std::move(plain.text()), std::move(html.text())};
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
  const bool joins = _sections.size() >= kManySections && mayJoin() && _sections.back().html &&
                     !_sections.back().plain;
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
  Forms plain(&wordsOfText), html(&wordsOfHTML);
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const std::size_t end = i + 1 < starts.size() ? starts[i + 1] : _sections.size();
    takeForm(std::span(_sections.data() + starts[i], end - starts[i]), &plain, &html);
  }
  if (!plain.text() && !html.text()) return;
  _sections.resize(starts.front());
  _sections.push_back(sectionOf(std::move(plain), std::move(html)));
  mark();
}

BodyText TextSections::take() {
  BodyText text;
  JoinedHTML joined;
  const bool isPlain =
      std::ranges::all_of(_sections, [](auto& one) { return one.plain.has_value(); });
  const bool hasHTML =
      std::ranges::any_of(_sections, [](auto& one) { return one.html.has_value(); });
  for (TextSection& section : _sections) {
    if (hasHTML) joined.add(takeHTML(section));
    if (isPlain) appendLines(text.plain, std::move(*section.plain));
    section = {};
  }
  text.html = joined.take();
  _sections.clear();
  return text;
}

}  // namespace kbx
