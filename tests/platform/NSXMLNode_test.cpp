#include "platform/xml/NSXMLNode.h"

#include <gtest/gtest.h>

#include "tests/support/Markup.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace test;

NSXMLNode* childAt(const Ref<NSArray>& children, std::size_t index) {
  return cast<NSXMLNode>(children->objectAtIndex(index));
}

TEST(NSXMLNode, KindsHaveThePlatformsNumbers) {
  auto document = parsed("<a>t<b/><!--c--><?p d?></a>", kTidyBoth);
  auto root = document->rootElement();
  auto children = root->children();
  EXPECT_EQ(document->kind(), 1U);
  EXPECT_EQ(root->kind(), 2U);
  EXPECT_EQ(childAt(children, 0)->kind(), 7U);
  EXPECT_EQ(childAt(children, 1)->kind(), 2U);
  EXPECT_EQ(childAt(children, 2)->kind(), 6U);
  EXPECT_EQ(childAt(children, 3)->kind(), 5U);
}

TEST(NSXMLNode, NamesAndTexts) {
  auto root = parsed("<p:a xmlns:p='u' k='v'>t<b>u</b><?i d?></p:a>", kTidyBoth)->rootElement();
  auto children = root->children();
  EXPECT_EQ(text(root->name()), "p:a");
  EXPECT_EQ(text(root->localName()), "a");
  EXPECT_EQ(text(root->URI()), "u");
  EXPECT_EQ(text(root->stringValue()), "tu");
  EXPECT_EQ(text(root->attributeValueForName("k"_ns)), "v");
  EXPECT_FALSE(root->attributeValueForName("l"_ns));
  EXPECT_FALSE(childAt(children, 0)->name());
  EXPECT_EQ(text(childAt(children, 0)->stringValue()), "t");
  EXPECT_FALSE(childAt(children, 1)->URI());
  EXPECT_EQ(text(childAt(children, 2)->name()), "i");
}

TEST(NSXMLNode, ChildrenAreInTheirOrderAndKnowTheirPlace) {
  auto root = parsed("<a><b/><c/><d/></a>", kTidyBoth)->rootElement();
  auto children = root->children();
  ASSERT_EQ(children->count(), 3U);
  EXPECT_EQ(root->childCount(), 3U);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(childAt(children, i)->index(), i);
  EXPECT_TRUE(isEqual(childAt(children, 1)->parent(), root));
  EXPECT_FALSE(childAt(children, 1)->children()) << "absent, not empty";
}

TEST(NSXMLNode, TheSamePlaceIsEqual) {
  auto root = parsed("<a><b/><c/></a>", kTidyBoth)->rootElement();
  auto first = root->children();
  auto second = root->children();
  EXPECT_TRUE(isEqual(childAt(first, 0), childAt(second, 0)));
  EXPECT_EQ(childAt(first, 0)->hash(), childAt(second, 0)->hash());
  EXPECT_FALSE(isEqual(childAt(first, 0), childAt(second, 1)));
}

TEST(NSXMLNode, RemovingShiftsTheIndicesOfTheOthers) {
  auto root = parsed("<a><b/>x<c/></a>", kTidyBoth)->rootElement();
  auto children = root->children();
  root->removeChildAtIndex(0);
  EXPECT_EQ(children->count(), 3U) << "the list is one of its own";
  EXPECT_EQ(childAt(children, 2)->index(), 1U);
  EXPECT_FALSE(childAt(children, 0)->parent());
  EXPECT_EQ(text(childAt(children, 0)->name()), "b") << "a removed node keeps what it is";
  root->removeChildAtIndex(1);
  EXPECT_EQ(text(root->XMLStringWithOptions(0)), "<a>x</a>");
}

TEST(NSXMLNode, RemovingWhereNothingIsRaises) {
  auto root = parsed("<a/>", kTidyBoth)->rootElement();
  EXPECT_EQ(nameRaisedBy([&] { root->removeChildAtIndex(0); }), "NSRangeException");
}

TEST(NSXMLNode, ANodeKeepsItsDocument) {
  Ref<NSXMLElement> root;
  {
    auto bytes = data("<a>the text</a>");
    root = NSXMLDocument::initWithData(bytes, kTidyBoth, nullptr)->rootElement();
  }
  EXPECT_EQ(text(root->stringValue()), "the text");
}

}  // namespace
}  // namespace kbx
