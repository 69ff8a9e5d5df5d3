#include "platform/archives/NSKeyedArchiver.h"

#include "platform/archives/NSKeyedUnarchiver.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/Nesting.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

class Bottle : public NSObject {
  KBX_OBJECT(Bottle, NSObject)
 public:
  static Ref<Bottle> make() { return Ref<Bottle>::adopt(new Bottle); }
};
KBX_CLASS(Bottle)

/// A number of many: adopts the protocol, but nobody knows how it is written.
class Cork final : public Bottle {
  KBX_OBJECT(Cork, Bottle)
 public:
  static Ref<Cork> make() { return Ref<Cork>::adopt(new Cork); }
};
KBX_CLASS(Cork)
KBX_ADOPTS(Cork, NSCoding)

Ref<NSObject> copied(NSObject* object) {
  return NSKeyedUnarchiver::unarchiveObjectWithData(
      NSKeyedArchiver::archivedDataWithRootObject(object));
}

template <class T>
T* copiedElement(NSArray* array, std::size_t index) {
  return cast<T>(array->objectAtIndex(index));
}

TEST(NSKeyedArchiver, EveryKindOfObjectComesBackWithItsClass) {
  auto mutableList = NSMutableArray::array();
  mutableList->addObject("a"_ns);
  auto mutableEntries = NSMutableDictionary::dictionary();
  mutableEntries->setObjectForKey("1"_ns, "a"_ns);
  for (const Ref<NSObject>& object : std::initializer_list<Ref<NSObject>>{
           "text"_ns,
           ""_ns,
           "$null"_ns,
           string("é日本😀"),
           NSString::stringWithUTF16(u"a\xD800"),
           string(std::string(1000, 'x')),
           NSNumber::numberWithBool(true),
           NSNumber::numberWithBool(false),
           NSNumber::numberWithInteger(-5),
           NSNumber::numberWithUnsignedInteger(0xFFFFFFFFFFFFFFFF),
           NSNumber::numberWithDouble(0.1),
           NSDate::dateWithTimeIntervalSinceReferenceDate(1234.5678),
           data("bytes"),
           data(""),
           data("bytes")->mutableCopy(),
           NSArray::array(),
           NSArray::arrayWithObjects({"a"_ns, NSNull::null()}),
           mutableList,
           NSDictionary::dictionary(),
           NSDictionary::dictionaryWithPairs({{"b"_ns, "1"_ns}}),
           NSDictionary::dictionaryWithPairs({{NSNumber::numberWithInteger(1), "1"_ns}}),
           mutableEntries,
           NSURL::fileURLWithPath("/tmp/a file"_ns, false),
           NSURL::fileURLWithPath("/tmp/a folder"_ns, true),
           NSURL::fileURLWithPath("/"_ns, true),
           NSURL::fileURLWithFileSystemRepresentation("/tmp/\xFF%41", false),
           NSNull::null(),
           NSError::errorWithDomain("D"_ns, -7, nullptr),
           NSError::errorWithDomain(
               "D"_ns, 1, NSDictionary::dictionaryWithPairs({{"url"_ns, mutableList}}))}) {
    SCOPED_TRACE(object->objectClass()->name() + " " + text(object));
    auto copy = copied(object);
    ASSERT_TRUE(copy);
    EXPECT_TRUE(isEqual(copy, object));
    EXPECT_EQ(copy->objectClass(), object->objectClass());
  }
}

TEST(NSKeyedArchiver, NumbersKeepTheirKind) {
  for (const auto& number :
       {NSNumber::numberWithBool(true), NSNumber::numberWithInteger(1),
        NSNumber::numberWithUnsignedInteger(0xFFFFFFFFFFFFFFFF), NSNumber::numberWithDouble(1)})
    EXPECT_EQ(cast<NSNumber>(copied(number))->kind(), number->kind());
}

TEST(NSKeyedArchiver, AnAbsentObjectComesBackAbsentWithoutAnError) {
  Ref<NSError> error;
  auto bytes = NSKeyedArchiver::archivedDataWithRootObject(nullptr);
  EXPECT_EQ(NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(bytes, &error), nullptr);
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(copied(nullptr), nullptr);
}

TEST(NSKeyedArchiver, TheCopyIsDeep) {
  auto inner = NSMutableArray::array();
  auto outer = NSArray::arrayWithObjects({inner.get(), data("bytes")->mutableCopy().get()});
  Ref<NSObject> copy = copied(outer);
  inner->addObject("later"_ns);
  auto* list = cast<NSArray>(copy);
  EXPECT_EQ(copiedElement<NSMutableArray>(list, 0)->count(), 0u);
  copiedElement<NSMutableData>(list, 1)->appendBytes("!");
  EXPECT_EQ(text(cast<NSData>(outer->objectAtIndex(1))), "bytes");
}

TEST(NSKeyedArchiver, WhatIsSharedStaysShared) {
  auto shared = NSMutableArray::array();
  auto url = NSURL::fileURLWithPath("/tmp"_ns, true);
  Ref<NSObject> copy = copied(NSArray::arrayWithObjects(
      {shared.get(), shared.get(), NSMutableArray::array().get(), url.get(), url.get()}));
  auto* list = cast<NSArray>(copy);
  EXPECT_TRUE(isSame(list->objectAtIndex(0), list->objectAtIndex(1)));
  EXPECT_FALSE(isSame(list->objectAtIndex(0), list->objectAtIndex(2))) << "equal, but another";
  EXPECT_TRUE(isSame(list->objectAtIndex(3), list->objectAtIndex(4)));
}

TEST(NSKeyedArchiver, SharingCostsNoMoreThanTheObjects) {
  auto bytes = NSKeyedArchiver::archivedDataWithRootObject(doubledArrays(400, "leaf"_ns));
  EXPECT_LT(bytes->length(), 20000u);
  EXPECT_TRUE(NSKeyedUnarchiver::unarchiveObjectWithData(bytes));
}

TEST(NSKeyedArchiver, CollectionsThatHoldThemselvesComeBackHoldingThemselves) {
  auto list = NSMutableArray::array();
  auto entries = NSMutableDictionary::dictionary();
  auto fixed = NSArray::arrayWithObjects({entries.get()});
  list->addObject(list);
  list->addObject(entries);
  entries->setObjectForKey(fixed, "fixed"_ns);
  entries->setObjectForKey(list, "list"_ns);
  Ref<NSMutableArray> copy = cast<NSMutableArray>(copied(list));
  ASSERT_TRUE(copy);
  EXPECT_TRUE(isSame(copy->objectAtIndex(0), copy));
  Ref<NSMutableDictionary> copiedEntries = copiedElement<NSMutableDictionary>(copy, 1);
  ASSERT_TRUE(copiedEntries);
  EXPECT_TRUE(isSame(copiedEntries->objectForKey("list"_ns), copy));
  auto* copiedFixed = cast<NSArray>(copiedEntries->objectForKey("fixed"_ns));
  ASSERT_TRUE(copiedFixed);
  EXPECT_TRUE(isSame(copiedFixed->objectAtIndex(0), copiedEntries));
  // What holds itself has to be taken apart.
  for (auto& one : {list, copy}) one->removeAllObjects();
  for (auto& one : {entries, copiedEntries}) one->removeAllObjects();
}

TEST(NSKeyedArchiver, AnErrorMayBeHeldByWhatItHolds) {
  auto list = NSMutableArray::array();
  auto userInfo = NSDictionary::dictionaryWithPairs({{"list"_ns, list}});
  auto error = NSError::errorWithDomain("D"_ns, 1, userInfo);
  list->addObject(error);
  list->addObject(userInfo);
  Ref<NSError> copy = cast<NSError>(copied(error));
  ASSERT_TRUE(copy);
  Ref<NSMutableArray> copiedList = cast<NSMutableArray>(copy->userInfo()->objectForKey("list"_ns));
  ASSERT_TRUE(copiedList);
  EXPECT_TRUE(isSame(copiedList->objectAtIndex(0), copy));
  EXPECT_TRUE(isSame(copiedList->objectAtIndex(1), copy->userInfo()));
  for (auto& one : {list, copiedList}) one->removeAllObjects();
}

TEST(NSKeyedArchiver, AClassIsArchivedByItsNameWhereItAdoptsTheProtocol) {
  EXPECT_TRUE(isSame(copied(NSString::classObject()), NSString::classObject()));
  EXPECT_TRUE(isSame(copied(Cork::classObject()), Cork::classObject()));
  EXPECT_EQ(nameRaisedBy([] { copied(Bottle::classObject()); }), "NSInvalidArgumentException");
}

TEST(NSKeyedArchiver, AnyOtherObjectRaisesWhereverItIsHeld) {
  auto bottle = Bottle::make();
  for (const Ref<NSObject>& object : std::initializer_list<Ref<NSObject>>{
           bottle, Cork::make(), NSArray::arrayWithObjects({"a"_ns, bottle.get()}),
           NSDictionary::dictionaryWithPairs({{"a"_ns, bottle}}),
           NSError::errorWithDomain("D"_ns, 1,
                                    NSDictionary::dictionaryWithPairs({{"a"_ns, bottle}}))}) {
    auto raised = raisedBy([&] { NSKeyedArchiver::archivedDataWithRootObject(object); });
    ASSERT_TRUE(raised);
    EXPECT_EQ(text(raised->name()), "NSInvalidArgumentException");
    EXPECT_NE(text(raised->reason()).find(" encodeWithCoder:]: unrecognized selector sent to"),
              std::string::npos);
  }
}

TEST(NSKeyedArchiver, MoreThan512LevelsRaise) {
  EXPECT_TRUE(isEqual(copied(nestedArrays(512)), nestedArrays(512)));
  EXPECT_TRUE(isEqual(copied(nestedDictionaries(512)), nestedDictionaries(512)));
  EXPECT_EQ(nameRaisedBy([] { copied(nestedArrays(513)); }), "NSInvalidArchiveOperationException");
  EXPECT_EQ(nameRaisedBy([] { copied(nestedDictionaries(100000)); }),
            "NSInvalidArchiveOperationException");
}

TEST(NSKeyedArchiver, LevelsCountOnTheLongestWay) {
  auto deep = nestedArrays(511);
  NSArray::Elements elements;
  for (NSObject* level = deep; auto* array = cast<NSArray>(level);
       level = array->count() ? array->objectAtIndex(0) : nullptr)
    elements.insert(elements.begin(), Ref<NSObject>(array));
  EXPECT_TRUE(copied(NSArray::arrayWithElements(elements)));
  auto deeper = NSArray::arrayWithObjects({deep.get()});
  elements.insert(elements.end(), Ref<NSObject>(deeper));
  EXPECT_EQ(nameRaisedBy([&] { copied(NSArray::arrayWithElements(elements)); }),
            "NSInvalidArchiveOperationException");
}

TEST(NSKeyedArchiver, CollectionsErrorsAndClassesAreNoKeys) {
  for (const Ref<NSObject>& key : std::initializer_list<Ref<NSObject>>{
           NSArray::array(), NSDictionary::dictionary(),
           NSError::errorWithDomain("D"_ns, 1, nullptr), NSString::classObject()})
    EXPECT_EQ(nameRaisedBy([&] {
                copied(NSDictionary::dictionaryWithPairs({{key, "value"_ns}}));
              }),
              "NSInvalidArchiveOperationException")
        << text(key);
}

}  // namespace
}  // namespace kbx
