// HTMLMarkup: where the marks of HTML end.
#pragma once

#include <cstddef>
#include <string_view>

namespace kbx {

/// The place behind the comment, declaration or tag that begins with the "<" at `start`. A tag's
/// values in quotes may hold ">". `start` itself when the sign begins none of these and is text;
/// npos when what it begins is not closed.
std::size_t markupEnd(std::string_view html, std::size_t start);

}  // namespace kbx
