// SnippetText: the passages that the full-text index gives, as a line with marks.
#pragma once

#include <string_view>

#include "host/search/Search.h"

namespace kbx {

// What stands around a word that was found; no text has these characters, which Unicode leaves to
// programs.
inline constexpr std::string_view kSnippetBegin = "\uFDD0", kSnippetEnd = "\uFDD1";

/// Blanks and line breaks in a row become one blank.
Snippet snippetOf(std::string_view passage);
/// The words at the beginning of a text, and "…" where it goes on.
Snippet beginningOf(std::string_view text, bool goesOn);

}  // namespace kbx
