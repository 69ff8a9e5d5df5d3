#include "platform/runtime/FastEnumeration.h"

#include "platform/objects/NSDictionary.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

std::string allOf(NSObject* collection) {
  std::string result;
  FastEnumeration members(collection);
  while (auto member = members.next()) result += text(member) + ";";
  return result;
}

TEST(FastEnumeration, AnArrayIsWalkedInItsOrder) {
  auto list = NSArray::arrayWithObjects({"b"_ns, "a"_ns, "b"_ns});
  EXPECT_EQ(allOf(list), "b;a;b;");
  EXPECT_EQ(FastEnumeration(list).count(), 3u);
  EXPECT_EQ(allOf(NSArray::array()), "");
}

TEST(FastEnumeration, OfADictionaryTheKeysAreWalked) {
  EXPECT_EQ(allOf(NSDictionary::dictionaryWithPairs({{"b"_ns, "1"_ns}, {"a"_ns, "2"_ns}})), "b;a;");
}

TEST(FastEnumeration, AnAbsentCollectionHasNoMembers) {
  EXPECT_EQ(allOf(nullptr), "");
  EXPECT_EQ(FastEnumeration(nullptr).count(), 0u);
}

TEST(FastEnumeration, WhatIsNoCollectionRaises) {
  EXPECT_EQ(nameRaisedBy([] { FastEnumeration members("text"_ns); }), "NSInvalidArgumentException");
}

TEST(FastEnumeration, AChangeRaisesAtTheNextMember) {
  auto list = NSMutableArray::array();
  for (auto* word : {"a"_ns, "b"_ns, "c"_ns}) list->addObject(word);
  FastEnumeration grown(list);
  EXPECT_EQ(text(grown.next()), "a");
  list->addObject("d"_ns);
  auto raised = raisedBy([&] { grown.next(); });
  ASSERT_TRUE(raised);
  EXPECT_EQ(text(raised->name()), "NSGenericException");
  EXPECT_TRUE(raised->reason()->hasPrefix("Collection <NSMutableArray: 0x"_ns));
  EXPECT_TRUE(raised->reason()->hasSuffix("> was mutated while being enumerated."_ns));
}

TEST(FastEnumeration, AMemberThatGaveItsPlaceToAnotherIsNoticed) {
  auto list = NSMutableArray::array();
  for (auto* word : {"a"_ns, "b"_ns}) list->addObject(word);
  FastEnumeration members(list);
  members.next();
  list->removeObjectAtIndex(1);
  list->addObject("c"_ns);
  EXPECT_EQ(nameRaisedBy([&] { members.next(); }), "NSGenericException");
}

TEST(FastEnumeration, ADictionaryThatGrowsOrShrinksIsNoticed) {
  auto entries = NSMutableDictionary::dictionary();
  entries->setObjectForKey("1"_ns, "a"_ns);
  entries->setObjectForKey("2"_ns, "b"_ns);
  FastEnumeration members(entries);
  EXPECT_EQ(text(members.next()), "a");
  entries->removeObjectForKey("a"_ns);
  EXPECT_EQ(nameRaisedBy([&] { members.next(); }), "NSGenericException");
}

TEST(FastEnumeration, AChangeAfterTheLastMemberIsNotNoticed) {
  auto list = NSMutableArray::array();
  list->addObject("a"_ns);
  FastEnumeration members(list);
  members.next();
  list->addObject("b"_ns);
  EXPECT_EQ(members.next(), nullptr);
}

TEST(FastEnumeration, AMemberOutlivesItsRemoval) {
  auto list = NSMutableArray::array();
  list->addObject(string("counted word"));
  FastEnumeration members(list);
  auto member = members.next();
  list->removeAllObjects();
  EXPECT_EQ(text(member), "counted word");
}

}  // namespace
}  // namespace kbx
