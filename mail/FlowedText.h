// FlowedText: paragraphs from text whose lines were broken for the journey (format=flowed).
#pragma once

#include <string>
#include <string_view>

namespace kbx {

/// The text with its broken lines joined: a line that ends in a blank goes on in the next one when
/// both are quoted equally deep. Quotation marks stay, stuffed blanks go, and a signature's "-- "
/// is a line of its own.
///
/// dropsBlank  the blank before a broken line's end was added with the break (delsp=yes)
std::string textFromFlowed(std::string_view text, bool dropsBlank);

}  // namespace kbx
