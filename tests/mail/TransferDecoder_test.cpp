#include "mail/TransferDecoder.h"

#include <gtest/gtest.h>

#include "tests/mail/Messages.h"

namespace kbx {
namespace {

std::string decoded(std::string_view bytes, std::string_view encoding, std::size_t piece = 1000) {
  TransferDecoder decoder(encoding);
  for (; !bytes.empty(); bytes.remove_prefix(std::min(piece, bytes.size())))
    decoder.add(bytes.substr(0, piece));
  return decoder.take();
}

TEST(TransferDecoder, Base64IsDecodedInPiecesOfAnySize) {
  for (std::size_t piece : {1, 3, 7, 1000})
    EXPECT_EQ(decoded("aGVsbG8g\nd29ybGQ=\n", "BASE64 ", piece), "hello world") << piece;
}

TEST(TransferDecoder, Base64MayLackItsPaddingAndHoldForeignCharacters) {
  EXPECT_EQ(decoded("aGVsbG8gd29ybGQ", "base64"), "hello world");
  EXPECT_EQ(decoded("aGVsbG8gd29ybA", "base64"), "hello worl");
  EXPECT_EQ(decoded("aGVsbG8g-d29ybGQgaGVsbG8gd29ybGQ=", "base64"), "hello world hello world");
}

TEST(TransferDecoder, PlainTextUnderTheNameOfBase64StaysAsItIs) {
  EXPECT_EQ(decoded("Dear Ada, this is no base64 at all.\n", "base64"),
            "Dear Ada, this is no base64 at all.\n");
}

TEST(TransferDecoder, AFirstLineOfLettersDoesNotMakePlainTextBase64) {
  const std::string text = "Hello\nthis is a letter, not base64.\n";
  EXPECT_EQ(decoded(text, "base64", 6), text);
}

TEST(TransferDecoder, PiecesOfBase64MayFollowEachOther) {
  const std::string bytes = repeated("aGVsbG8=\nd29ybGQ=\n", 100);
  for (std::size_t piece : {1, 3, 7, 1000})
    EXPECT_EQ(decoded(bytes, "base64", piece), repeated("helloworld", 100)) << piece;
}

TEST(TransferDecoder, TextBehindBase64IsText) {
  const std::string foot = "\n-- \na mailing list of people\n";
  for (std::size_t piece : {1, 3, 7, 1000}) {
    EXPECT_EQ(decoded("aGVsbG8gd29ybGQgaGVsbG8gd29ybGQ=" + foot, "base64", piece),
              "hello world hello world" + foot);
    EXPECT_EQ(decoded("aGVsbG8gd29ybGQgaGVsbG8gd29ybGQh\n" + foot, "base64", piece),
              "hello world hello world!\n" + foot.substr(1));
    EXPECT_EQ(decoded(repeated("aGVsbG8gd29ybGQh", 500) + "\n" + foot, "base64", piece),
              repeated("hello world!", 500) + foot);
  }
  EXPECT_EQ(decoded("Dear\n\nthis is a letter.\n", "base64"), "Dear\n\nthis is a letter.\n");
}

TEST(TransferDecoder, AnEmptyLineWithinBase64IsNoEnd) {
  EXPECT_EQ(decoded("aGVsbG8g\n\nd29ybGQ=\n", "base64"), "hello world");
  EXPECT_EQ(decoded("aGVsbG8\n\ngd29ybGQ=\n", "base64"), "hello world");
}

TEST(TransferDecoder, ManyEndsCostTimeInProportion) {
  for (std::string_view piece : {"=", "=A", "\n\nA", "=A\n\n"})
    decoded(repeated(piece, 1000000), "base64", 100000);
}

TEST(TransferDecoder, QuotedPrintableIsDecodedAndItsErrorsAreText) {
  EXPECT_EQ(decoded("caf=C3=A9 =\nau lait=20\n", "Quoted-Printable"), "café au lait \n");
  EXPECT_EQ(decoded("100=% =zz", "quoted-printable"), "100=% =zz");
}

TEST(TransferDecoder, UuencodedDataStandsBehindItsFirstLine) {
  EXPECT_EQ(decoded("begin 644 a.txt\n+:&5L;&\\@=V]R;&0\n`\nend\nbehind\n", "x-uuencode"),
            "hello world\nbehind\n");
  EXPECT_EQ(decoded("begin 644 a.txt\n+:&5L", "x-uuencode").substr(0, 3), "hel");
  EXPECT_EQ(decoded("intro\nbegin 644 a.txt\n+:&5L;&\\@=V]R;&0 \n`\nend\n", "x-uuencode"),
            "intro\nhello world\n");
}

TEST(TransferDecoder, OtherEncodingsAreNone) {
  for (std::string_view encoding : {"7bit", "8bit", "binary", "", "x-secret", "base"})
    EXPECT_EQ(decoded("a=20b", encoding), "a=20b") << encoding;
}

TEST(TransferDecoder, AnEncodingMayBeFollowedByAComment) {
  EXPECT_EQ(decoded("aGVsbG8=", " base64; (really)"), "hello");
  EXPECT_EQ(decoded("aGVsbG8=", "(really) \"base64\""), "hello");
}

TEST(TransferDecoder, WhatIsBase64DoesNotDependOnThePieces) {
  // Its start is base64, what follows is not.
  const std::string bytes = std::string(1100, 'A') + "\n" + std::string(3000, '!');
  TransferDecoder whole("base64"), cut("base64");
  whole.add(bytes);
  for (std::size_t at = 0; at < bytes.size(); at += 7)
    cut.add(std::string_view(bytes).substr(at, 7));
  EXPECT_EQ(whole.take(), cut.take());
}

}  // namespace
}  // namespace kbx
