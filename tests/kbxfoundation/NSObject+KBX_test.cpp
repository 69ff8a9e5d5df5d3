#include "NSObject+KBX.h"

#include "NSError+KBX.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

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

}  // namespace
}  // namespace kbx
