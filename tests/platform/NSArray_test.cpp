#include "platform/objects/NSArray.h"

#include <gtest/gtest.h>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/Nesting.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

/// The exception's name, or "" when nothing is raised.
template <class Block>
std::string raised(Block block) {
  try {
    block();
  } catch (const Raised& raised) {
    return text(raised.exception()->name());
  }
  return "";
}

std::string joined(NSArray* array) { return text(array->componentsJoinedByString(","_ns)); }

TEST(NSArray, ElementsKeepTheirOrderAndIdentity) {
  auto one = NSArray::arrayWithObjects({"a"_ns, "b"_ns, "a"_ns});
  EXPECT_EQ(one->count(), 3U);
  EXPECT_TRUE(isSame(one->objectAtIndex(0), "a"_ns));
  EXPECT_TRUE(isSame(one->objectAtIndex(1), "b"_ns));
  EXPECT_EQ(NSArray::array()->count(), 0U);
}

TEST(NSArray, AnAbsentElementRaises) {
  EXPECT_EQ(raised([] {
              NSArray::arrayWithObjects({"a"_ns, nullptr});
            }),
            "NSInvalidArgumentException");
  EXPECT_EQ(raised([] { NSArray::arrayWithElements({Ref<NSObject>()}); }),
            "NSInvalidArgumentException");
  EXPECT_EQ(raised([] { NSMutableArray::array()->addObject(nullptr); }),
            "NSInvalidArgumentException");
}

TEST(NSArray, AnIndexPastTheEndRaises) {
  auto one = NSArray::arrayWithObjects({"a"_ns});
  EXPECT_EQ(raised([&] { one->objectAtIndex(1); }), "NSRangeException");
  EXPECT_EQ(raised([&] { one->objectAtIndex(SIZE_MAX); }), "NSRangeException");
  EXPECT_EQ(raised([] { NSArray::array()->objectAtIndex(0); }), "NSRangeException");
}

TEST(NSArray, ContainsAsksForEquality) {
  auto one = NSArray::arrayWithObjects({"a"_ns, NSNumber::numberWithInteger(1)});
  EXPECT_TRUE(one->containsObject(NSString::stringWithUTF16(u"a")));
  EXPECT_TRUE(one->containsObject(NSNumber::numberWithDouble(1)));
  EXPECT_FALSE(one->containsObject("b"_ns));
  EXPECT_FALSE(one->containsObject(nullptr));
}

TEST(NSArray, JoiningPutsTheSeparatorBetween) {
  EXPECT_EQ(joined(NSArray::array()), "");
  EXPECT_EQ(joined(NSArray::arrayWithObjects({"a"_ns})), "a");
  EXPECT_EQ(
      joined(NSArray::arrayWithObjects({"a"_ns, NSNumber::numberWithInteger(2), "\u00E9"_ns})),
      "a,2,\u00E9");
  EXPECT_EQ(text(NSArray::arrayWithObjects({"a"_ns, "b"_ns})->componentsJoinedByString(nullptr)),
            "ab");
}

TEST(NSArray, EqualityAsksForOrderAndEqualElements) {
  auto make = [] { return NSArray::arrayWithObjects({"a"_ns, NSNumber::numberWithInteger(1)}); };
  EXPECT_TRUE(isEqual(make(), make()));
  EXPECT_TRUE(isEqual(make(), make()->mutableCopy()));
  EXPECT_TRUE(isEqual(make()->mutableCopy(), make()));
  EXPECT_EQ(make()->hash(), make()->mutableCopy()->hash());
  EXPECT_FALSE(
      isEqual(make(), NSArray::arrayWithObjects({NSNumber::numberWithInteger(1), "a"_ns})));
  EXPECT_FALSE(isEqual(make(), NSArray::arrayWithObjects({"a"_ns})));
  EXPECT_FALSE(isEqual(make(), NSArray::arrayWithObjects({"a"_ns, "1"_ns})));
  EXPECT_FALSE(isEqual(make(), "a"_ns));
  EXPECT_FALSE(make()->isEqual(nullptr));
  EXPECT_TRUE(isEqual(NSArray::array(), NSArray::array()));
}

TEST(NSArray, ACopyOfAnImmutableArrayIsItself) {
  auto one = NSArray::arrayWithObjects({"a"_ns});
  EXPECT_TRUE(isSame(one->copy(), one));
}

TEST(NSMutableArray, ACopyDoesNotChangeAnyMore) {
  auto list = NSMutableArray::array();
  list->addObject("a"_ns);
  auto copy = list->copy();
  list->addObject("b"_ns);
  EXPECT_EQ(joined(copy), "a");
  EXPECT_EQ(cast<NSMutableArray>(copy), nullptr);
  auto other = copy->mutableCopy();
  other->removeAllObjects();
  EXPECT_EQ(joined(copy), "a");
}

TEST(NSMutableArray, AddingAndRemoving) {
  auto list = NSMutableArray::array();
  list->addObjectsFromArray(NSArray::arrayWithObjects({"a"_ns, "b"_ns}));
  list->addObjectsFromArray(nullptr);
  list->addObjectsFromArray(list);
  EXPECT_EQ(joined(list), "a,b,a,b");
  list->removeObjectAtIndex(1);
  list->removeObjectAtIndex(2);
  EXPECT_EQ(joined(list), "a,a");
  EXPECT_EQ(raised([&] { list->removeObjectAtIndex(2); }), "NSRangeException");
  list->removeAllObjects();
  EXPECT_EQ(list->count(), 0U);
  list->removeAllObjects();
}

/// Looks at a list when it dies.
class Watcher final : public NSObject {
  KBX_OBJECT(Watcher, NSObject)
 public:
  static Ref<Watcher> make(NSArray* list, std::string* seen) {
    return Ref<Watcher>::adopt(new Watcher(list, seen));
  }

 private:
  Watcher(NSArray* list, std::string* seen) : _list(list), _seen(seen) {}
  ~Watcher() override { *_seen += "[" + joined(_list) + "]"; }

  NSArray* _list;
  std::string* _seen;
};
KBX_CLASS(Watcher)

TEST(NSMutableArray, WhatIsRemovedDiesWhenTheListIsWholeAgain) {
  std::string seen;
  auto list = NSMutableArray::array();
  list->addObject(Watcher::make(list, &seen));
  list->addObject("a"_ns);
  list->addObject("b"_ns);
  list->removeObjectAtIndex(0);
  EXPECT_EQ(seen, "[a,b]");
  list->addObject(Watcher::make(list, &seen));
  list->removeAllObjects();
  EXPECT_EQ(seen, "[a,b][]");
}

TEST(NSArray, NestingOfAnyDepthIsReleasedComparedAndHashed) {
  auto one = nestedArrays(1000000), same = nestedArrays(1000000), other = nestedArrays(999999);
  EXPECT_TRUE(isEqual(one, same));
  EXPECT_FALSE(isEqual(one, other));
  EXPECT_EQ(one->hash(), same->hash());
}

TEST(NSArray, RepeatedNestingIsComparedOncePerPair) {
  auto one = doubledArrays(200, "a"_ns), same = doubledArrays(200, "a"_ns),
       other = doubledArrays(200, "b"_ns);
  EXPECT_TRUE(isEqual(one, same));
  EXPECT_FALSE(isEqual(one, other));
}

TEST(NSArray, ArraysThatHoldThemselvesAreCompared) {
  auto one = NSMutableArray::array(), other = NSMutableArray::array();
  one->addObject(one);
  other->addObject(other);
  EXPECT_TRUE(isEqual(one, one));
  EXPECT_TRUE(isEqual(one, other)) << "nothing tells them apart";
  other->addObject("a"_ns);
  EXPECT_FALSE(isEqual(one, other));
  one->removeAllObjects();
  other->removeAllObjects();
}

}  // namespace
}  // namespace kbx
