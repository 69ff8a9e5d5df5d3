// Encodings: text as mail programs write it, in old charsets, in headers and within lines of 76.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kbx {

bool isASCII(std::string_view text);

/// UTF-8 text in another charset; absent where that has not all of its characters.
std::optional<std::string> inCharset(std::string_view text, std::string_view charset);

/// Lines of 76 letters.
std::string base64Lines(std::string_view bytes);
std::string quotedPrintable(std::string_view bytes);

/// Text in a header: as it is when it is ASCII, else in encoded words of UTF-8 or, where `charset`
/// has the characters, of that. Folded lines begin with a blank.
std::string encodedWords(std::string_view text, std::string_view charset, bool isBase64);

/// The value of a parameter with its name and its quotes, as RFC 2231 has it where it must.
std::string parameter(std::string_view name, std::string_view value);

/// A text that stands in HTML for this text.
std::string escapedForHTML(std::string_view text);

/// Every line feed becomes a return and a line feed.
std::string withReturns(std::string_view text);

}  // namespace kbx
