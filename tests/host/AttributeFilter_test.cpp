#include "host/results/AttributeFilter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/results/Attributes.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using testing::ElementsAre;

std::vector<std::string> wanted(const AttributeFilter& filter) {
  auto attributes = NSMutableDictionary::dictionary();
  for (auto* name : {"kMDItemSubject"_ns, "kMDItemTextContent"_ns, "kMDItemHTMLContent"_ns,
                     "kMDItemHTMLContentData"_ns, "org_ferncase_mail_size"_ns})
    attributes->setObjectForKey("x"_ns, name);
  std::vector<std::string> names;
  for (const auto& attribute : sortedAttributes(filter.wantedOf(attributes)))
    names.push_back(text(attribute.name));
  return names;
}

TEST(AttributeFilter, ExtraAttributesAreHiddenUnlessTheyAreWanted) {
  EXPECT_THAT(wanted({}), ElementsAre("kMDItemHTMLContent", "kMDItemHTMLContentData",
                                      "kMDItemSubject", "kMDItemTextContent"));
  EXPECT_EQ(wanted({.showsExtra = true}).size(), 5u);
}

TEST(AttributeFilter, WithoutTextTheBodyIsLeftOutInEveryForm) {
  EXPECT_THAT(wanted({.showsText = false}), ElementsAre("kMDItemSubject"));
}

TEST(AttributeFilter, WhatIsNamedIsShownAloneWhateverIsHidden) {
  EXPECT_THAT(wanted({.names = {"org_ferncase_mail_size", "kMDItemTextContent", "other"},
                      .showsText = false}),
              ElementsAre("kMDItemTextContent", "org_ferncase_mail_size"));
}

}  // namespace
}  // namespace kbx
