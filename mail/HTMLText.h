// HTMLText: HTML made of several texts.
#pragma once

#include <string>
#include <string_view>

namespace kbx {

/// HTML that shows a plain text as it is, its lines and blanks kept.
std::string htmlFromPlainText(std::string_view text);

/// What closes the comment, the tag or the element without markup, such as a style, that HTML
/// leaves open at its end, where it would swallow what follows; empty when nothing is open. One
/// pass.
std::string_view closingOfHTML(std::string_view html);

}  // namespace kbx
