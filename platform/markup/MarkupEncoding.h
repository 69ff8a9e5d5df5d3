// MarkupEncoding: in which charset the bytes of a markup document are.
#pragma once

#include <cstddef>
#include <string_view>

namespace kbx {

/// What one look over all bytes tells.
struct ByteSurvey {
  std::size_t nonASCIICount = 0;  // bytes
  bool isUTF8 = true;             // well-formed; ASCII is
  bool isClean = true;            // and every character may stay as it is
  bool hasEscape = false;         // as in charsets that switch by escape sequences
};

ByteSurvey surveyBytes(std::string_view bytes);

/// A charset and the byte-order mark in front of the text.
struct MarkupEncoding {
  /// The conversion library's name; one of the two below, by address, for what is done here.
  const char* charset;
  std::size_t markLength = 0;

  static const char* const kUTF8;
  static const char* const kWindows1252;
};

/// The first of: a byte-order mark; UTF-8 where the bytes are well-formed and not all ASCII; what
/// the document declares within its first 8 KB; windows-1252.
///
/// Well-formed UTF-8 wins over the declaration, because who takes a body out of its mail often
/// converts it and leaves the markup as it was. What declares ISO-8859-1 or US-ASCII is
/// windows-1252, as everywhere on the web. ISO-2022-JP counts where an escape occurs.
MarkupEncoding encodingOfMarkup(std::string_view bytes, const ByteSurvey& survey);

}  // namespace kbx
