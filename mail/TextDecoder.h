// TextDecoder: UTF-8 from the bytes of a message, whatever charset they say they are in.
#pragma once

#include <string>
#include <string_view>

namespace kbx {

/// Makes text of bytes whose charset is declared, wrongly declared or not declared. One for each
/// message: it bounds how often charsets are guessed, which is slow.
class TextDecoder {
 public:
  /// The text in UTF-8, always valid and without NULs.
  ///
  /// charset  as declared, in any case; empty for none
  ///
  /// The bytes are in the declared charset when they are valid there, else in UTF-8 when they are
  /// valid there, else in the declared one when nearly all of them are, else in what they look
  /// like, else in windows-1252.
  std::string text(std::string bytes, std::string_view charset);
  /// From now on bytes without a charset that are no UTF-8 are in this one when they are valid
  /// there, rather than in what they look like, which a few of them do not tell.
  ///
  /// charset  as declared elsewhere; one that means ASCII or UTF-8 changes nothing
  void expect(std::string_view charset);

 private:
  std::string guessedText(const std::string& bytes);

  std::string _expected;  // a name for the conversion library; may be empty
  int _guessesLeft = 200;
};

}  // namespace kbx
