#include "mail/ImportMessage.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace kbx
