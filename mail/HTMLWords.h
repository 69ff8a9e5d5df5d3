// HTMLWords: the words of plain text and of HTML.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kbx {

/// Hashes of the words in a text, sorted, each once. A word is a run of letters and digits, without
/// regard to the case of ASCII letters.
using Words = std::vector<std::uint64_t>;

/// The words of plain text in UTF-8; absent for more than 4 MiB, which nobody compares.
std::optional<Words> wordsOfText(std::string_view text);
/// The words that HTML shows: without its title, scripts, styles, comments and tags. An entity that
/// is not known here makes its word an unknown one. Absent as above.
std::optional<Words> wordsOfHTML(std::string_view html);

/// False when either is absent, which errs on the side of keeping both texts.
bool hasAllWords(const std::optional<Words>& all, const std::optional<Words>& some);

}  // namespace kbx
