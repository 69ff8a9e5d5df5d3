#include "mail/ImportMessage.h"

#include <gtest/gtest.h>

#include "tests/mail/Messages.h"
#include "tests/support/FailingReads.h"

namespace kbx {
namespace {

TEST(ImportMessage, WhatCannotBeReadToItsEndIsAnErrorAndGivesNoAttributes) {
  forEachFailingRead([](NSURL* url) {
    auto attributes = NSMutableDictionary::dictionary();
    Ref<NSError> error;
    EXPECT_FALSE(importMessage(url, nullptr, attributes, &error));
    EXPECT_EQ(error->code(), 256);
    EXPECT_EQ(attributes->count(), 0u);
  });
}

TEST(ImportMessage, LinesMayEndInCRAlone) {
  const auto attributes = attributesOf("Subject: a\rFrom: b@x.org\r\rone\rtwo\r");
  EXPECT_EQ(shown(attributes->objectForKey("kMDItemSubject"_ns)), "a");
  EXPECT_EQ(shown(attributes->objectForKey("kMDItemAuthors"_ns)), "b@x.org");
  EXPECT_EQ(shown(attributes->objectForKey("kMDItemTextContent"_ns)), "one\ntwo\n");
}

TEST(ImportMessage, AHeaderOfBytesIsInTheCharsetOfTheText) {
  EXPECT_EQ(
      attribute("From: Jos\xE9 <j@x.org>\nContent-Type: text/plain; charset=iso-8859-1\n\na\n",
                "kMDItemAuthors"),
      "José");
  EXPECT_EQ(attribute("Subject: \xC4\xC1\nContent-Type: multipart/mixed; boundary=b\n\n--b\n"
                      "Content-Type: text/plain; charset=koi8-r\n\na\n--b--\n",
                      "kMDItemSubject"),
            "да");
  EXPECT_EQ(attribute("Subject: \xC3\xA9\nContent-Type: text/plain; charset=koi8-r\n\na\n",
                      "kMDItemSubject"),
            "é");
}

}  // namespace
}  // namespace kbx
