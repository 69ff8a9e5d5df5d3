// HeaderText: what the raw value of a header field says.
#pragma once

#include <string>
#include <string_view>

#include "mail/TextDecoder.h"

namespace kbx {

/// The text of a raw value in UTF-8, in time in proportion to its length: lines unfolded, encoded
/// words decoded, blanks at the ends left out.
///
/// Encoded words are recognised wherever they stand, also beside other letters and within quotes.
/// Neighbours of one charset are joined before their bytes become text, because a character may be
/// cut between them. Bytes beyond ASCII outside of words are in the charset they look like.
std::string headerText(std::string_view raw, TextDecoder& decoder);

/// The text without what stands in parentheses, which may lie within others. An open one lasts to
/// the end.
std::string withoutComments(std::string_view text);

/// The length of the encoded word that the text begins with; 0 without one. Many calls for the
/// places of one text cost time in proportion to its length.
std::size_t encodedWordLength(std::string_view text);

/// The value on one line: each line end with the blanks around it is one blank.
std::string unfolded(std::string_view raw);

}  // namespace kbx
