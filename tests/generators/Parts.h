// Parts: the bodies of generated messages, one part within another.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/generators/Languages.h"

namespace kbx {

struct Part {
  std::string fields;  // the Content- fields, each with its line feed
  std::string body;
  /// With the blank line between both.
  std::string bytes() const { return fields + "\n" + body; }
};

/// UTF-8 text as one part, in a charset and with a transfer encoding such as mail of the language
/// has. Now and then the charset is not declared.
Part textPart(std::string_view subtype, const std::string& text, const Language& language,
              Random& random);
Part multipart(std::string_view subtype, const std::vector<Part>& parts, Random& random);
/// A picture, a document or the like; its name is in the language.
Part attachment(const Language& language, Random& random);
/// A signature of the whole by a program of either family.
Part signedPart(const Part& part, Random& random);

/// The text of a letter, with what it answers where that is wanted.
std::string letter(const Language& language, Random& random, std::string_view mark, bool quotes);
/// The same kind of text as a mail program's HTML.
std::string htmlLetter(const std::string& letter);
/// A newsletter: tables, styles, links, little text.
std::string newsletter(const Language& language, Random& random, std::string_view mark);

}  // namespace kbx
