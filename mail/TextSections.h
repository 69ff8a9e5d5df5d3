// TextSections: the body of a message as its reader sees it, from top to bottom.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kbx {

/// A stretch of the body in UTF-8: as plain text, as HTML, or in both forms. At least one is there.
struct TextSection {
  std::optional<std::string> plain;
  std::optional<std::string> html;
};

/// What a body comes to. Both are empty when it has no text.
struct BodyText {
  std::string plain;
  std::string html;
};

/// Collects sections in their order. Plain neighbours become one, and those in HTML when there are
/// many, so a body of many small parts takes no more memory than their text.
class TextSections {
 public:
  void addPlain(std::string text);
  void addHTML(std::string html);
  void append(TextSections&& others);

  /// Where the next section begins. Nothing is joined across a place that was asked for.
  std::size_t mark();
  /// Makes one section of those behind the first place: the forms of the same stretch, each of
  /// which begins at one of the places.
  ///
  /// A form whose words another of its kind has is dropped. Where the plain text lacks words that
  /// the HTML shows, the section is left with HTML alone, in front of which stands the plain text
  /// when it, too, has words of its own.
  void mergeAlternatives(const std::vector<std::size_t>& starts);

  bool isEmpty() const noexcept { return _sections.empty(); }
  const std::vector<TextSection>& sections() const noexcept { return _sections; }

  /// Plain text when every section has a plain form. The HTML when any has that form, of all
  /// sections in order, the plain ones escaped. The sections are used up.
  BodyText take();

 private:
  bool mayJoin() const noexcept { return _sections.size() > _lastMark; }

  std::vector<TextSection> _sections;
  std::size_t _lastMark = 0;
};

}  // namespace kbx
