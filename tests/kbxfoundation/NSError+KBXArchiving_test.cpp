#include "NSError+KBXArchiving.h"

#include "NSError+KBX.h"
#include "NSObject+KBX.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

/// An object that is of no use to anybody else.
class Widget : public NSObject {
  KBX_OBJECT(Widget, NSObject)
 public:
  static Ref<Widget> make() { return Ref<Widget>::adopt(new Widget); }
  Ref<NSString> description() const override { return "a widget"_ns; }
};
KBX_CLASS(Widget)

/// An object that can be archived.
class Keepsake : public Widget {
  KBX_OBJECT(Keepsake, Widget)
 public:
  static Ref<Keepsake> make() { return Ref<Keepsake>::adopt(new Keepsake); }
};
KBX_CLASS(Keepsake)
KBX_ADOPTS(Keepsake, NSCoding)

// Another program's objects. Their classes can be archived and would be, if nobody looked.
class SBObject : public Keepsake {
  KBX_OBJECT(SBObject, Keepsake)
};
KBX_CLASS(SBObject)
class Window final : public SBObject {
  KBX_OBJECT(Window, SBObject)
 public:
  static Ref<Window> make() { return Ref<Window>::adopt(new Window); }
};
KBX_CLASS(Window)
class NSAppleEventDescriptor final : public Keepsake {
  KBX_OBJECT(NSAppleEventDescriptor, Keepsake)
 public:
  static Ref<NSAppleEventDescriptor> make() {
    return Ref<NSAppleEventDescriptor>::adopt(new NSAppleEventDescriptor);
  }
};
KBX_CLASS(NSAppleEventDescriptor)

Ref<NSError> errorWith(NSObject* value) {
  return NSError::errorWithDomain("D"_ns, 7, NSDictionary::dictionaryWithPairs({{"k"_ns, value}}));
}

Ref<NSObject> archived(NSObject* value) {
  return kbxArchivableError(errorWith(value))->userInfo()->objectForKey("k"_ns);
}

TEST(NSErrorKBXArchiving, DomainCodeAndKeysStay) {
  auto error =
      NSError::errorWithDomain("D"_ns, -7,
                               NSDictionary::dictionaryWithPairs(
                                   {{"b"_ns, "1"_ns}, {"a"_ns, NSNumber::numberWithInteger(2)}}));
  auto copy = kbxArchivableError(error);
  EXPECT_TRUE(isEqual(copy, error));
  EXPECT_FALSE(isSame(copy, error));
  EXPECT_EQ(text(copy->userInfo()->begin()->key), "b");
}

TEST(NSErrorKBXArchiving, AnAbsentErrorHasNoCopy) {
  EXPECT_EQ(kbxArchivableError(nullptr), nullptr);
}

TEST(NSErrorKBXArchiving, ThePlatformsValuesAreKept) {
  for (const Ref<NSObject>& value : std::initializer_list<Ref<NSObject>>{
           "text"_ns, NSNumber::numberWithInteger(1), NSNumber::numberWithBool(true),
           NSDate::dateWithTimeIntervalSince1970(0), data("bytes"), data("bytes")->mutableCopy(),
           NSArray::array(), NSMutableArray::array(), NSDictionary::dictionary(),
           NSMutableDictionary::dictionary(), NSURL::fileURLWithPath("/tmp"_ns), NSNull::null(),
           Keepsake::make()}) {
    SCOPED_TRACE(value->objectClass()->name());
    EXPECT_TRUE(isSame(archived(value), value));
  }
}

TEST(NSErrorKBXArchiving, AnyOtherObjectBecomesItsDescription) {
  EXPECT_TRUE(isEqual(archived(Widget::make()), "a widget"_ns));
}

TEST(NSErrorKBXArchiving, AClassCountsByTheProtocolThatItAdoptsItself) {
  EXPECT_TRUE(isSame(archived(Keepsake::classObject()), Keepsake::classObject()));
  EXPECT_TRUE(isEqual(archived(Widget::classObject()), "Widget"_ns));
}

TEST(NSErrorKBXArchiving, LiveReferencesAreNeverKept) {
  EXPECT_TRUE(isEqual(archived(Window::make()), "a widget"_ns));
  EXPECT_TRUE(isEqual(archived(NSAppleEventDescriptor::make()), "a widget"_ns));
}

TEST(NSErrorKBXArchiving, ErrorsBehindItAreMadeArchivableToo) {
  auto error = errorWith(Widget::make());
  for (int level = 0; level < 3; ++level) error = errorWith(error);
  Ref<NSObject> found = kbxArchivableError(error);
  for (int level = 0; level < 3; ++level) {
    found = cast<NSError>(found)->userInfo()->objectForKey("k"_ns);
    ASSERT_TRUE(cast<NSError>(found));
  }
  EXPECT_TRUE(isEqual(cast<NSError>(found)->userInfo()->objectForKey("k"_ns), "a widget"_ns));
}

TEST(NSErrorKBXArchiving, TheUnderlyingErrorsEntryBecomesItsDescription) {
  auto error = kbxErrorBySettingUnderlyingError(KBXError1(1, nullptr), errorWith(Widget::make()));
  auto copy = kbxArchivableError(error);
  auto* cause = cast<NSError>(copy->userInfo()->objectForKey(NSUnderlyingErrorKey()));
  ASSERT_TRUE(cause);
  EXPECT_EQ(cause->code(), 7);
  EXPECT_TRUE(isEqual(cause->userInfo()->objectForKey("k"_ns), "a widget"_ns));
}

TEST(NSErrorKBXArchiving, AChainOfCausesMayHaveAnyLength) {
  auto error = errorWith(Widget::make());
  for (int level = 0; level < 100'000; ++level) error = errorWith(error);
  Ref<NSError> copy = kbxArchivableError(error);
  NSObject* found = copy;
  while (auto* cause = cast<NSError>(found)) found = cause->userInfo()->objectForKey("k"_ns);
  EXPECT_TRUE(isEqual(found, "a widget"_ns));
}

TEST(NSErrorKBXArchiving, AnErrorBehindManyIsCopiedOnce) {
  auto error = errorWith(Widget::make());
  for (int level = 0; level < 64; ++level)
    error = NSError::errorWithDomain(
        "D"_ns, 7, NSDictionary::dictionaryWithPairs({{"k"_ns, error}, {"l"_ns, error}}));
  Ref<NSError> copy = kbxArchivableError(error);
  EXPECT_TRUE(
      isSame(copy->userInfo()->objectForKey("k"_ns), copy->userInfo()->objectForKey("l"_ns)));
}

TEST(NSErrorKBXArchiving, CollectionsCountAsAWhole) {
  auto widget = Widget::make();
  auto list = NSArray::arrayWithObjects({widget});
  Ref<NSObject> kept = archived(list);
  EXPECT_TRUE(isSame(kept, list));
  EXPECT_TRUE(isSame(list->objectAtIndex(0), widget));
}

TEST(NSErrorKBXArchiving, TheCopyCanBeArchivedAndComesBackEqual) {
  auto cause = kbxErrorBySettingFailingObject(KBXError1(902, nullptr), Widget::make(),
                                              NSString::classObject());
  auto error = kbxErrorBySettingUnderlyingError(KBXError1(-1, nullptr), cause);
  error = kbxErrorByAddingStackFrame(error, "+[Widget open:]", 12);
  error = kbxErrorBySettingURL(error, NSURL::fileURLWithPath("/tmp/a b"_ns, false));
  error = kbxErrorBySettingArguments(error, nullptr);
  for (const Ref<NSObject>& value : std::initializer_list<Ref<NSObject>>{
           "text"_ns, NSNumber::numberWithBool(true), NSDate::dateWithTimeIntervalSince1970(5),
           data("bytes"), NSArray::arrayWithObjects({"a"_ns}), NSMutableDictionary::dictionary()})
    error = kbxErrorBySettingObject(error, value, NSString::stringWithUTF8(text(value)));
  auto copy = kbxArchivableError(error);
  Ref<NSObject> unarchived = kbxArchiveAndUnarchive(copy);
  EXPECT_TRUE(isEqual(unarchived, copy)) << text(unarchived) << "\n" << text(copy);
  EXPECT_FALSE(isSame(unarchived, copy));
}

}  // namespace
}  // namespace kbx
