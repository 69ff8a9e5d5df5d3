#include "mail/MessageReader.h"

#include <gtest/gtest.h>

#include "tests/mail/Messages.h"

namespace kbx {
namespace {

/// The plain text, or the HTML where there is no plain text.
std::string textOf(std::string_view message) {
  MessageContent content = contentOf(message);
  const BodyText text = content.sections.take();
  return text.plain.empty() ? text.html : text.plain;
}

std::string namesOf(std::string_view message) {
  std::string names;
  for (const Attachment& part : contentOf(message).namedParts)
    names += (names.empty() ? "" : "|") + part.name;
  return names;
}

const std::string kMixed = "Content-Type: multipart/mixed; boundary=b\n\n";

TEST(MessageReader, TheResultDoesNotDependOnThePieces) {
  const std::string message = kMixed +
                              "intro\n--b\n\none\n--b\nContent-Type: text/html\n\n<p>two\n" +
                              "--b\nContent-Transfer-Encoding: base64\n\ndGhyZWU=\n--b--\nend\n";
  for (std::size_t size : {1, 2, 3, 5, 17, 1000}) {
    TextDecoder decoder;
    MessageReader reader(decoder);
    for (std::string_view rest = message; !rest.empty();
         rest.remove_prefix(std::min(size, rest.size())))
      reader.add(rest.substr(0, size));
    EXPECT_EQ(reader.take().sections.take().html, "<pre>one\n</pre>\n<p>two\n<pre>three</pre>\n")
        << size;
  }
}

TEST(MessageReader, AMessageWithoutPartsIsItsBody) {
  EXPECT_EQ(textOf("Subject: a\n\nbody\n"), "body\n");
  EXPECT_EQ(textOf("Subject: a\r\n\r\nbody\r\n"), "body\r\n");
  EXPECT_EQ(textOf("Subject: a\n\n"), "");
  EXPECT_EQ(textOf("Subject: a"), "");
  EXPECT_EQ(textOf(""), "");
}

TEST(MessageReader, AMissingBlankLineKeepsTheBody) {
  EXPECT_EQ(textOf("Subject: a\nDear Ada,\nhow are you?\n\nBob\n"),
            "Dear Ada,\nhow are you?\n\nBob\n");
  EXPECT_EQ(contentOf("Subject: a\nDear Ada,\n").header, "Subject: a\n");
  EXPECT_EQ(textOf("no header at all\n"), "no header at all\n");
  EXPECT_EQ(textOf("Subject: a\n \nDear Ada,\n\nBob\n"), "Dear Ada,\n\nBob\n");
  EXPECT_EQ(textOf("Content-Type: multipart/mixed; boundary=b\n--b\n\none\n--b--\n"), "one\n");
}

TEST(MessageReader, AFieldFoldedWithoutAnIndentGoesOn) {
  const MessageContent content = contentOf("Subject: a\nfolded badly\nFrom: a@x\n\nbody\n");
  EXPECT_EQ(content.header, "Subject: a\n folded badly\nFrom: a@x\n");
}

TEST(MessageReader, LinesBeforeTheHeaderAreNone) {
  EXPECT_EQ(contentOf("From ada Mon Jan  1\nSubject: a\n\nb\n").header, "Subject: a\n");
  EXPECT_EQ(contentOf("\n\nSubject: a\n\nb\n").header, "Subject: a\n");
}

TEST(MessageReader, PartsAreReadInOrderWithoutWhatStandsAround) {
  EXPECT_EQ(textOf(kMixed + "before\n--b\n\none\n--b\n\ntwo\n--b--\nafter\n"), "one\ntwo\n");
}

TEST(MessageReader, ABoundaryMayHaveBlanksBehindAndMissAtTheEnd) {
  EXPECT_EQ(textOf(kMixed + "--b  \n\none\n--b\t\r\n\ntwo\n"), "one\ntwo\n");
}

TEST(MessageReader, ABoundaryThatBeginsAnotherIsNotTheOther) {
  EXPECT_EQ(textOf(kMixed + "--b\n\none\n--bb\ntwo\n--b--\n"), "one\n--bb\ntwo\n");
}

TEST(MessageReader, AnOuterBoundaryEndsInnerParts) {
  EXPECT_EQ(textOf(kMixed + "--b\nContent-Type: multipart/mixed; boundary=c\n\n--c\n\none\n"
                            "--b\n\ntwo\n--c\nthree\n--b--\n"),
            "one\ntwo\n--c\nthree\n");
}

TEST(MessageReader, TheInnermostOfTwoEqualBoundariesCounts) {
  EXPECT_EQ(textOf(kMixed + "--b\n" + kMixed + "--b\n\none\n--b--\n"), "one\n");
}

TEST(MessageReader, ABoundaryIsTheOuterOnesAgainWhenTheInnerIsGone) {
  EXPECT_EQ(textOf(kMixed + "--b\nContent-Type: multipart/mixed; boundary=a\n\n--a\n" + kMixed +
                   "--b\n\none\n--a\n\ntwo\n--b\n\nthree\n"),
            "one\ntwo\nthree\n");
}

TEST(MessageReader, PartsBehindTheLastBoundaryAreStillRead) {
  EXPECT_EQ(textOf(kMixed + "--b\n\none\n--b--\nnothing\n--b\n\ntwo\n--b--\n"), "one\ntwo\n");
}

TEST(MessageReader, AMultipartWithoutABoundaryTakesTheFirstThatLooksLikeOne) {
  EXPECT_EQ(textOf("Content-Type: multipart/mixed\n\nx\n--xyz\n\none\n--xyz\n\ntwo\n--xyz--\n"),
            "one\ntwo\n");
}

TEST(MessageReader, AMultipartWithoutAnyPartIsText) {
  EXPECT_EQ(textOf(kMixed + "nothing but text\n"), "nothing but text\n");
  EXPECT_EQ(textOf("Content-Type: multipart/mixed\n\nnothing but text\n"), "nothing but text\n");
}

TEST(MessageReader, TypesThatAreNoneAreText) {
  for (std::string type : {"text", "plain", "", "x; y=z", "text/enriched", "text/x-log"})
    EXPECT_EQ(textOf("Content-Type: " + type + "\n\nbody\n"), "body\n") << type;
  for (std::string type : {"image/png", "application/pdf", "text/calendar", "text/css"})
    EXPECT_EQ(textOf("Content-Type: " + type + "\n\nbody\n"), "") << type;
}

TEST(MessageReader, AttachmentsAreNoTextButHaveNames) {
  const std::string message =
      kMixed +
      "--b\n\none\n--b\nContent-Disposition: attachment; filename=a.txt\n\ntwo\n"
      "--b\nContent-Type: image/png; name=b.png\n\nthree\n--b--\n";
  EXPECT_EQ(textOf(message), "one\n");
  EXPECT_EQ(namesOf(message), "a.txt|b.png");
  EXPECT_TRUE(contentOf(message).hasAttachment);
}

TEST(MessageReader, AnInlinePartWithANameIsTextAndAnAttachment) {
  const std::string message = "Content-Disposition: inline; filename=a.txt\n\nbody\n";
  EXPECT_EQ(textOf(message), "body\n");
  EXPECT_EQ(namesOf(message), "a.txt");
}

TEST(MessageReader, TheNameOfTheDispositionComesFirst) {
  EXPECT_EQ(namesOf("Content-Type: a/b; name=x\nContent-Disposition: attachment; filename=y\n\n"),
            "y");
}

TEST(MessageReader, TheFirstOfTwoFieldsCounts) {
  EXPECT_EQ(textOf("Content-Type: text/html\nContent-Type: text/plain\n\n<p>x\n"), "<p>x\n");
}

TEST(MessageReader, AttachedMessagesAreTextButNotEntered) {
  const std::string inner =
      "Subject: inner\nContent-Type: multipart/mixed; boundary=c\n\n"
      "--c\n\ntwo\n--c\nContent-Type: a/b; name=hidden.png\n\nx\n--c--\n";
  const std::string message = kMixed +
                              "--b\n\none\n--b\nContent-Type: message/rfc822; name=m.eml\n"
                              "Content-Disposition: attachment\n\n" +
                              inner + "--b--\n";
  EXPECT_EQ(textOf(message), "one\ntwo\n");
  EXPECT_EQ(namesOf(message), "m.eml");
  EXPECT_EQ(contentOf(message).header, kMixed.substr(0, kMixed.size() - 1));
}

TEST(MessageReader, EncodedMessagesAreLookedInto) {
  const std::string message = kMixed +
                              "--b\nContent-Type: message/rfc822\n"
                              "Content-Transfer-Encoding: base64\n\n"
                              "U3ViamVjdDogeAoKd29yZAo=\n--b--\n";
  EXPECT_EQ(textOf(message), "word\n");
  EXPECT_EQ(contentOf(message).hasPlainPart, false);
}

TEST(MessageReader, PartsOfADigestAreMessages) {
  EXPECT_EQ(textOf("Content-Type: multipart/digest; boundary=b\n\n"
                   "--b\n\nSubject: x\n\none\n--b\n\nSubject: y\n\ntwo\n--b--\n"),
            "one\ntwo\n");
}

TEST(MessageReader, ReportsOfDeliveryAreText) {
  EXPECT_EQ(textOf("Content-Type: message/delivery-status\n\nAction: failed\n"),
            "Action: failed\n");
}

TEST(MessageReader, AMarkOfUTF8BeforeTheHeaderIsNoPartOfIt) {
  EXPECT_EQ(contentOf("\xEF\xBB\xBFSubject: a\n\nbody\n").header, "Subject: a\n");
  EXPECT_EQ(contentOf("\xEF\xBB\xBF\n\nSubject: a\n\nbody\n").header, "Subject: a\n");
}

TEST(MessageReader, SignedMailIsLookedInto) {
  const MessageContent content = contentOf(
      "Content-Type: multipart/signed; boundary=b\n\n--b\n\none\n"
      "--b\nContent-Type: application/pgp-signature; name=signature.asc\n\nxyz\n--b--\n");
  EXPECT_TRUE(content.isSigned);
  EXPECT_FALSE(content.hasAttachment);
  EXPECT_EQ(content.sections.sections().size(), 1u);
}

TEST(MessageReader, EncryptedMailHasNoTextAndSaysSo) {
  for (std::string message :
       {"Content-Type: multipart/encrypted; boundary=b\n\n--b\nContent-Type: "
        "application/pgp-encrypted\n\nVersion: 1\n--b\n\nhidden\n--b--\n",
        "Content-Type: application/pkcs7-mime; smime-type=enveloped-data\n\nMIAGCSqGSIb3DQEHA6CA\n",
        "Content-Type: application/x-pkcs7-mime\nContent-Transfer-Encoding: base64\n\n"
        "MIAGCSqGSIb3DQEHA6CA\n",
        "Subject: x\n\n-----BEGIN PGP MESSAGE-----\n\nhidden\n-----END PGP MESSAGE-----\n"}) {
    const MessageContent content = contentOf(message);
    EXPECT_TRUE(content.isEncrypted) << message;
    EXPECT_FALSE(content.hasAttachment) << message;
    EXPECT_FALSE(content.isSigned) << message;
    EXPECT_TRUE(content.sections.isEmpty()) << message;
  }
}

TEST(MessageReader, WhatStandsBehindAnEncryptedBlockIsText) {
  const std::string message =
      "Subject: x\n\n-----BEGIN PGP MESSAGE-----\n\nhidden\n-----END PGP MESSAGE-----\n--\nfoot\n";
  EXPECT_TRUE(contentOf(message).isEncrypted);
  EXPECT_EQ(textOf(message), "\n--\nfoot\n");
}

TEST(MessageReader, TheSignatureOfAnAttachedMessageIsNotItsOwn) {
  const MessageContent content = contentOf(
      "Content-Type: message/rfc822\n\nContent-Type: multipart/signed; boundary=b\n\n"
      "--b\n\none\n--b--\n");
  EXPECT_FALSE(content.isSigned);
  EXPECT_EQ(content.sections.sections().size(), 1u);
}

TEST(MessageReader, ALineOfAnMboxIsOneOnlyBeforeAMessage) {
  EXPECT_EQ(textOf(kMixed + "--b\nFrom here on\n--b--\n"), "From here on\n");
}

TEST(MessageReader, MessagesEncodedInEachOtherAreReadToADepthAndThenText) {
  std::string message = "Subject: x\n\nplanted\n";
  for (int i = 0; i < 10; ++i)
    message =
        "Content-Type: message/rfc822\nContent-Transfer-Encoding: quoted-printable\n\n" + message;
  EXPECT_NE(textOf(message).find("planted"), std::string::npos);
}

TEST(MessageReader, FlowedTextIsJoined) {
  EXPECT_EQ(textOf("Content-Type: text/plain; format=Flowed; DelSp=Yes\n\nhar \nbour\n"),
            "harbour\n");
}

TEST(MessageReader, HTMLMayDeclareItsOwnCharset) {
  EXPECT_EQ(textOf("Content-Type: text/html\n\n<meta charset=\"koi8-r\">\xC4\xC1\n"),
            "<meta charset=\"koi8-r\">да\n");
  EXPECT_EQ(textOf("Content-Type: text/html; charset=US-ASCII\n\n<meta charset=koi8-r>\xC4\xC1\n"),
            "<meta charset=koi8-r>да\n");
}

TEST(MessageReader, WhatIsNestedTooDeepIsText) {
  std::string message;
  for (int i = 0; i < 6000; ++i) message += "Content-Type: message/rfc822\n\n";
  EXPECT_NE(textOf(message + "Subject: x\n\nword\n").find("word"), std::string::npos);
}

TEST(MessageReader, LongLinesAndHeadersAreRead) {
  const std::string word(300000, 'x');
  EXPECT_EQ(textOf("Subject: a\n\n" + word + "\nend\n"), word + "\nend\n");
  EXPECT_EQ(contentOf("Subject: " + word + "\nTo: a@b\n\nbody\n").header,
            "Subject: " + word + "\nTo: a@b\n");
}

TEST(MessageReader, FindsABoundaryWhereverItLiesInABody) {
  for (std::size_t length = 0; length < 200; ++length) {
    const std::string body = std::string(length, 'x') + "\n-- \n-\n";
    const MessageContent content =
        contentOf("Content-Type: multipart/mixed; boundary=b\n\n--b\n\n" + body +
                  "--b\nContent-Type: a/b; name=c\n\n" + body + "--b\n\nlast\n--b--\n");
    EXPECT_EQ(content.namedParts.size(), 1u) << length;
    MessageContent taken = contentOf("Content-Type: multipart/mixed; boundary=b\n\n--b\n\n" + body +
                                     "--b\n\nlast\n--b--\n");
    EXPECT_EQ(taken.sections.take().plain, body + "last\n") << length;
  }
}

}  // namespace
}  // namespace kbx
