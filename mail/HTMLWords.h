// HTMLWords: whether HTML and plain text say the same, and plain text as HTML.
#pragma once

#include <string>
#include <string_view>

namespace kbx {

struct WordComparison {
  bool plainHasAllOfHTML = false;
  bool htmlHasAllOfPlain = false;
};

/// Compares the words of a plain text with those that HTML shows; both are UTF-8. A word is a run
/// of letters and digits, without regard to the case of ASCII letters; what the HTML has in its
/// head, scripts, styles, comments and tags is not shown. One pass over each; an entity that is not
/// known here makes its word an unknown one, which errs on the side of keeping both texts.
WordComparison compareWords(std::string_view plain, std::string_view html);

/// HTML that shows a plain text as it is, its lines and blanks kept.
std::string htmlFromPlainText(std::string_view text);

}  // namespace kbx
