// MatchText: words in the language of the full-text index.
#pragma once

#include <string>

#include "host/search/Query.h"

namespace kbx {

/// Whether the tokenizer finds a word in them.
bool hasWords(const TextTest& test);

/// The words as a phrase in its column. Nothing in them means anything to the index; what is no
/// UTF-8 becomes U+FFFD, which is part of no word.
std::string matchText(const TextTest& test);

/// The columns of the full-text index in which a field looks, for SQL.
std::string columnsOf(TextField field);

}  // namespace kbx
