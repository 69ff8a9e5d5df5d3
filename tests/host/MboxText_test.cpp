#include "host/export/MboxText.h"

#include <gtest/gtest.h>

#include <random>

namespace kbx {
namespace {

/// The text of a message that comes in pieces of so many bytes.
std::string mboxOf(std::string_view message, std::size_t piece = SIZE_MAX) {
  StringOutput output;
  MboxText text(output);
  for (; !message.empty(); message.remove_prefix(std::min(piece, message.size())))
    text.take(message.substr(0, piece));
  text.end();
  return output.text();
}

TEST(MboxText, LinesAreQuotedAndEndInLineFeeds) {
  struct Case {
    const char *rule, *message, *text;
  };
  for (const auto& [rule, message, text] :
       {Case{"a line feed stays", "a\nb\n", "a\nb\n\n"},
        {"a pair is one break", "a\r\nb\r\n", "a\nb\n\n"},
        {"a lone return is no break", "a\rb\n", "a\rb\n\n"},
        {"a return before a pair is its own", "a\r\r\nb\n", "a\r\nb\n\n"},
        {"a last line is ended", "a", "a\n\n"},
        {"a return at the end stays", "a\r", "a\r\n\n"},
        {"an empty message is an empty line", "", "\n"},
        {"From at a line's start", "a\nFrom b\n", "a\n>From b\n\n"},
        {"what is quoted is quoted again", "a\n>From b\n", "a\n>>From b\n\n"},
        {"however often", "a\n>>>From b\n", "a\n>>>>From b\n\n"},
        {"a field is none", "From: a\n", "From: a\n\n"},
        {"nor is a longer word", "a\nFromage b\n", "a\nFromage b\n\n"},
        {"nor one inside a line", "a From b\n > From c\n", "a From b\n > From c\n\n"},
        {"nor what ends there", "a\nFrom", "a\nFrom\n\n"},
        {"nor a quoted part of it", "a\n>Fro\n", "a\n>Fro\n\n"},
        {"behind a pair", "a\r\nFrom b", "a\n>From b\n\n"},
        {"behind an empty line", "\n\nFrom b\n", "\n\n>From b\n\n"},
        {"an envelope line is left out", "From x Mon\nSubject: a\n\nb\n", "Subject: a\n\nb\n\n"},
        {"with its return", "From x Mon\r\nSubject: a\r\n", "Subject: a\n\n"},
        {"but only the first", "From x\nFrom y\n", ">From y\n\n"},
        {"a quoted one is text", ">From x\na\n", ">>From x\na\n\n"},
        {"nothing but an envelope", "From x", "\n"}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(mboxOf(message), text);
    for (std::size_t piece : {1, 2, 3}) EXPECT_EQ(mboxOf(message, piece), text) << piece;
  }
}

/// Taking one ">" away from each line that has it before "From " gives the message again.
std::string withoutQuotes(const std::string& mbox) {
  std::string text;
  for (std::size_t at = 0; at < mbox.size();) {
    const std::size_t end = mbox.find('\n', at) + 1;
    std::string line = mbox.substr(at, end - at);
    const std::size_t quotes = line.find_first_not_of('>');
    if (quotes != std::string::npos && quotes > 0 && line.compare(quotes, 5, "From ") == 0)
      line.erase(0, 1);
    text += line;
    at = end;
  }
  return text;
}

TEST(MboxText, NoLineIsAnEnvelopeAndTheQuotesCanBeTakenAway) {
  std::mt19937 random(3);
  constexpr std::string_view kParts[] = {"From ", ">", "\n", "x", "Fro", "m ", "\n>", "\nFrom "};
  for (int run = 0; run < 2000; ++run) {
    std::string message = "S: a\n";
    for (auto left = random() % 12; left > 0; --left) message += kParts[random() % 8];
    message += "\n";
    const std::string mbox = mboxOf(message, 1 + random() % 4);
    EXPECT_EQ(("\n" + mbox).find("\nFrom "), std::string::npos) << message;
    EXPECT_EQ(withoutQuotes(mbox), message + "\n");
  }
}

TEST(MboxText, TheReturnPathIsOfTheHead) {
  struct Case {
    const char *rule, *head, *address;
  };
  for (const auto& [rule, head, address] :
       {Case{"in brackets", "Return-Path: <a@b.org>\nX: y\n", "a@b.org"},
        {"bare, in any case", "X: y\r\nreturn-path:a@b.org \r\n", "a@b.org"},
        {"nobody", "Return-Path: <>\n", "MAILER-DAEMON"},
        {"none", "X: y\n", ""},
        {"none in the body", "X: y\n\nReturn-Path: <a@b.org>\n", ""},
        {"none in nothing", "", ""}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(returnPathOf(head), address);
  }
}

TEST(MboxText, TheEnvelopeLineHasAnAddressAndATime) {
  EXPECT_EQ(envelopeLine("ada@example.org", 1795233360),
            "From ada@example.org Sat Nov 21 03:56:00 2026");
  EXPECT_EQ(envelopeLine("a@b", 86400 * 2 + 0.9), "From a@b Sat Jan  3 00:00:00 1970");
  const std::string nobody = "From MAILER-DAEMON Thu Jan  1 00:00:00 1970";
  for (std::string_view sender : {"", "two words", "line\nbreak", "\x7F"})
    EXPECT_EQ(envelopeLine(sender, 0), nobody);
  EXPECT_EQ(envelopeLine(std::string(400, 'a'), 0), nobody);
  for (double time : {-1.0, 1e300, std::numeric_limits<double>::quiet_NaN()})
    EXPECT_EQ(envelopeLine("", time), nobody);
}

}  // namespace
}  // namespace kbx
