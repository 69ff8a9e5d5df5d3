#include "NSObject+KBX.h"

#include "NSError+KBX.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

class Widget final : public NSObject {
  KBX_OBJECT(Widget, NSObject)
 public:
  static Ref<Widget> make() { return Ref<Widget>::adopt(new Widget); }
};
KBX_CLASS(Widget)

NSObject* valueOf(NSError* error, NSString* key) { return error->userInfo()->objectForKey(key); }

TEST(NSObjectKBX, AnObjectOfTheClassOrASubclassIsAnsweredItself) {
  auto list = NSMutableArray::array();
  Ref<NSError> error;
  EXPECT_TRUE(isSame(kbxEnsureClass(list, NSArray::classObject(), &error), list));
  EXPECT_TRUE(isSame(kbxEnsureClass(list, NSMutableArray::classObject(), &error), list));
  EXPECT_EQ(error, nullptr);
}

TEST(NSObjectKBX, AnObjectOfAnotherClassIsError902WithBothClasses) {
  auto number = NSNumber::numberWithInteger(1);
  Ref<NSError> error;
  EXPECT_EQ(kbxEnsureClass(number, NSString::classObject(), &error), nullptr);
  ASSERT_TRUE(error);
  EXPECT_EQ(text(error->domain()), "KBXErrorDomain");
  EXPECT_EQ(error->code(), 902);
  EXPECT_EQ(error->userInfo()->count(), 4u);
  EXPECT_TRUE(isSame(valueOf(error, "KBXFailingObject"_ns), number));
  EXPECT_TRUE(isSame(valueOf(error, "KBXExpectedType"_ns), NSString::classObject()));
  EXPECT_TRUE(isSame(valueOf(error, "KBXActualType"_ns), NSNumber::classObject()));
  EXPECT_EQ(text(cast<NSArray>(valueOf(error, "KBXStackFrames"_ns))->objectAtIndex(0)),
            "-[NSObject(KBX) kbxEnsureClass:error:] (34)");
}

TEST(NSObjectKBX, AClassThatIsAskedIsItsOwnActualType) {
  Ref<NSError> error;
  EXPECT_EQ(kbxEnsureClass(NSArray::classObject(), NSString::classObject(), &error), nullptr);
  ASSERT_TRUE(error);
  EXPECT_TRUE(isSame(valueOf(error, "KBXActualType"_ns), NSArray::classObject()));
}

TEST(NSObjectKBX, AnAbsentObjectFailsWithoutAnError) {
  Ref<NSError> error;
  EXPECT_EQ(kbxEnsureClass(nullptr, NSString::classObject(), &error), nullptr);
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(kbxEnsureClass("a"_ns, NSArray::classObject(), nullptr), nullptr);
}

TEST(NSObjectKBX, EachPlatformClassIsEnsuredWithItsMutableOne) {
  auto number = NSNumber::numberWithInteger(1);
  Ref<NSObject> array = NSMutableArray::array(), bytes = data("a")->mutableCopy(),
                date = NSDate::date(), dictionary = NSMutableDictionary::dictionary();
  EXPECT_TRUE(isSame(kbxEnsureArray(array), array));
  EXPECT_TRUE(isSame(kbxEnsureData(bytes), bytes));
  EXPECT_TRUE(isSame(kbxEnsureDate(date), date));
  EXPECT_TRUE(isSame(kbxEnsureDictionary(dictionary), dictionary));
  EXPECT_TRUE(isSame(kbxEnsureString("a"_ns), "a"_ns));
  EXPECT_EQ(kbxEnsureArray(number), nullptr);
  EXPECT_EQ(kbxEnsureData(number), nullptr);
  EXPECT_EQ(kbxEnsureDate(number), nullptr);
  EXPECT_EQ(kbxEnsureDictionary(number), nullptr);
  EXPECT_EQ(kbxEnsureString(number), nullptr);
  EXPECT_EQ(kbxEnsureString(nullptr), nullptr);
  EXPECT_EQ(kbxEnsureString(NSString::classObject()), nullptr) << "the class is no string";
}

TEST(NSObjectKBX, TheDeepCopyIsEqualAndShareNothingThatChanges) {
  auto inner = NSMutableArray::array();
  inner->addObject("a"_ns);
  auto outer = NSDictionary::dictionaryWithPairs(
      {{"list"_ns, inner},
       {"again"_ns, inner},
       {"null"_ns, NSNull::null()},
       {"url"_ns, NSURL::fileURLWithPath("/tmp"_ns, true)},
       {"error"_ns, NSError::errorWithDomain("D"_ns, 1, nullptr)}});
  Ref<NSDictionary> copy = cast<NSDictionary>(kbxArchiveAndUnarchive(outer));
  ASSERT_TRUE(copy);
  EXPECT_TRUE(isEqual(copy, outer));
  auto* list = cast<NSMutableArray>(copy->objectForKey("list"_ns));
  ASSERT_TRUE(list);
  EXPECT_FALSE(isSame(list, inner));
  EXPECT_TRUE(isSame(list, copy->objectForKey("again"_ns)));
  list->addObject("b"_ns);
  EXPECT_EQ(inner->count(), 1u);
}

TEST(NSObjectKBX, WhatCannotBeArchivedHasNoDeepCopy) {
  auto widget = Widget::make();
  EXPECT_EQ(nameRaisedBy([&] { kbxArchiveAndUnarchive(widget); }), "NSInvalidArgumentException");
  EXPECT_EQ(kbxArchiveAndUnarchive(nullptr), nullptr);
}

TEST(NSObjectKBX, AnObjectIsItsOwnIdentity) {
  auto widget = Widget::make();
  EXPECT_TRUE(isSame(kbxObjectID(widget), widget));
  EXPECT_EQ(kbxObjectID(nullptr), nullptr);
}

}  // namespace
}  // namespace kbx
