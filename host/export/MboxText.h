// MboxText: the text of a message as a mailbox file holds it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/console/Output.h"

namespace kbx {

/// Writes a message piece by piece: line breaks as LF; a ">" before each line that begins with
/// "From " behind any number of ">", so that it is taken away again by readers of this form;
/// without an envelope line that the file has already; and an empty line behind the end.
class MboxText {
 public:
  explicit MboxText(Output& output) : _output(output) {}

  void take(std::string_view piece);
  void end();

 private:
  enum class Place : std::uint8_t {
    LineStart,     // behind any number of ">"
    FromLine,      // some of "From " has been seen
    Line,          // anywhere else
    EnvelopeLine,  // of the file's own, which is left out
  };

  void takeByte(char byte);
  void takeStart(char byte);
  void write(std::string_view bytes);

  Output& _output;
  Place _place = Place::LineStart;
  std::size_t _seen = 0;     // bytes of "From "
  bool _isFirst = true;      // nothing was written or left out yet
  bool _hasReturn = false;   // a CR that has not been written
  bool _endsInBreak = true;  // what was written
};

/// The address to which a message's failures are to go, from the message's head: what stands in
/// its first Return-Path. Empty when there is none.
std::string returnPathOf(std::string_view head);

/// "From ada@example.org Sat Nov 21 03:56:00 2026": how a message begins in a mailbox file. The
/// time is UTC.
///
/// sender  empty, or with characters that no address can have, is "MAILER-DAEMON"
std::string envelopeLine(std::string_view sender, double secondsSince1970);

}  // namespace kbx
