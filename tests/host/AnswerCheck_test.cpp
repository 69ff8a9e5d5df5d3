#include "host/import/AnswerCheck.h"

#include <gtest/gtest.h>

#include "platform/files/NSURL.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

std::string faultOf(NSObject* value) {
  return faultInAnswer(NSDictionary::dictionaryWithPairs({{"key"_ns, value}})).value_or("none");
}

Ref<NSArray> nested(std::size_t levels, NSObject* innermost) {
  auto array = NSArray::arrayWithObjects({innermost});
  for (; levels > 1; --levels) array = NSArray::arrayWithObjects({array.get()});
  return array;
}

TEST(AnswerCheck, WhatCanBeStoredMayBeAnswered) {
  EXPECT_FALSE(faultInAnswer(NSDictionary::dictionary()));
  for (const auto& value : std::initializer_list<Ref<NSObject>>{
           "text"_ns, NSNumber::numberWithBool(true), data("x"), NSDate::date(), NSNull::null(),
           NSArray::arrayWithObjects({"a"_ns, NSNull::null()}), NSDictionary::dictionary(),
           nested(511, "x"_ns)})
    EXPECT_EQ(faultOf(value), "none");
}

TEST(AnswerCheck, AnythingElseIsNamedWithItsAttribute) {
  auto url = NSURL::fileURLWithFileSystemRepresentation("/", true);
  EXPECT_EQ(faultOf(url), "“key” holds an object of class NSURL");
  EXPECT_EQ(faultOf(nested(300, url)), "“key” holds an object of class NSURL");
  EXPECT_EQ(faultOf(NSDictionary::dictionaryWithPairs({{"a"_ns, url.get()}})),
            "“key” holds an object of class NSURL");
  EXPECT_EQ(faultOf(NSDictionary::dictionaryWithPairs({{NSNull::null(), "x"_ns}})),
            "“key” holds a key of class NSNull");
  EXPECT_EQ(faultOf(nested(512, "x"_ns)), "“key” holds more than 512 levels of containers");
  EXPECT_EQ(faultOf(nested(50'000, "x"_ns)), "“key” holds more than 512 levels of containers");
  EXPECT_EQ(faultInAnswer(NSDictionary::dictionaryWithPairs({{NSNull::null(), "x"_ns}})),
            "it names an attribute by an object of class NSNull");
}

}  // namespace
}  // namespace kbx
