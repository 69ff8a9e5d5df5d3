#include "NSObject+KBXMethods.h"

#include "NSError+KBX.h"
#include "platform/objects/NSArray.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

class Widget : public NSObject {
  KBX_OBJECT(Widget, NSObject)
};
KBX_CLASS(Widget)

class Gadget : public Widget {
  KBX_OBJECT(Gadget, Widget)
};
KBX_CLASS(Gadget)

// On any object: the classes that tests make have instances of a C++ class of their own.
Ref<NSString> label(NSObject*) { return "label"_ns; }
Ref<NSString> title(NSObject*) { return "title"_ns; }
Ref<NSString> early(NSClass*) { return "early"_ns; }
Ref<NSString> late(NSClass*) { return "late"_ns; }
Ref<NSString> patched(NSObject*) { return "patched"_ns; }

[[maybe_unused]] const bool hasMethods =
    addMethod<&label>(Widget::classObject(), "label") &&
    addMethod<&title>(Widget::classObject(), "title") &&
    addMethod<&early>(Widget::classObject()->objectClass(), "early") &&
    addMethod<&late>(Widget::classObject()->objectClass(), "late");

/// An instance of a class that was made at run time.
class Instance final : public NSObject {
 public:
  explicit Instance(NSClass* ownClass) : _class(ownClass) {}
  NSClass* objectClass() const noexcept override { return _class; }

 private:
  NSClass* const _class;
};

/// A class of its own for each test, because methods stay where they are put.
NSClass* subclass(const char* name, NSClass* superclass = Widget::classObject()) {
  return NSClass::make(name, superclass);
}
std::string answer(NSClass* of, const char* selector) {
  auto object = Ref<NSObject>::adopt(new Instance(of));
  return text(performSelector(object, SEL(selector)));
}
std::string classAnswer(NSClass* of, const char* selector) {
  return text(performSelector(of, SEL(selector)));
}
std::string names(NSClass* of) {
  auto all = kbxDirectInstanceMethodNames(of);
  return all ? text(all->componentsJoinedByString(","_ns)) : "none";
}

NSObject* valueOf(NSError* error, NSString* key) { return error->userInfo()->objectForKey(key); }
std::string textOf(NSError* error, NSString* key) { return text(valueOf(error, key)); }
std::string keys(NSError* error) {
  return text(error->userInfo()->allKeys()->componentsJoinedByString(","_ns));
}
std::string frames(NSError* error) {
  return text(cast<NSArray>(valueOf(error, "KBXStackFrames"_ns))->componentsJoinedByString(";"_ns));
}
const char* const kFindFrame = "+[NSObject(KBX) kbxInstanceMethod:error:] (76)";
const char* const kClassFrame = "+[NSObject(KBX) kbxClassFromString:error:] (88)";
const char* const kCopyFrame = "+[NSObject(KBX) kbxCopyInstance:method:toClass:error:] (137)";

// ---- Finding -----------------------------------------------------------------------------

TEST(NSObjectKBXMethods, AMethodIsFoundWithInheritedOnes) {
  Ref<NSError> error;
  Method* own = kbxInstanceMethod(Widget::classObject(), SEL("label"), &error);
  ASSERT_TRUE(own);
  EXPECT_EQ(own->types, "@@:");
  EXPECT_EQ(kbxInstanceMethod(Gadget::classObject(), SEL("label"), &error), own);
  EXPECT_TRUE(kbxInstanceMethod(Gadget::classObject()->objectClass(), SEL("early"), &error));
  EXPECT_EQ(error, nullptr);
}

TEST(NSObjectKBXMethods, AMissingMethodIsError1400) {
  NSClass* made = subclass("MissingMethod");
  addMethod<&patched>(made, "first");
  addMethod<&patched>(made, "second:");
  Ref<NSError> error;
  EXPECT_EQ(kbxInstanceMethod(made, SEL("absent:"), &error), nullptr);
  ASSERT_TRUE(error);
  EXPECT_TRUE(kbxHasDomain(error, "KBXErrorDomain"_ns, 1400));
  EXPECT_EQ(keys(error),
            "KBXFailingObject,KBXFailingKey,KBXActualValue,NSLocalizedDescription,"
            "NSLocalizedRecoverySuggestion,KBXStackFrames");
  EXPECT_TRUE(isSame(valueOf(error, "KBXFailingObject"_ns), made));
  EXPECT_EQ(textOf(error, "KBXFailingKey"_ns), "absent:");
  EXPECT_TRUE(isEqual(valueOf(error, "KBXActualValue"_ns),
                      NSArray::arrayWithObjects({"first"_ns, "second:"_ns})))
      << "its own methods only";
  EXPECT_EQ(text(error->localizedDescription()), "The MissingMethod method was not found.");
  EXPECT_EQ(text(error->localizedRecoverySuggestion()), "The method absent: is missing.");
  EXPECT_EQ(frames(error), kFindFrame);
}

TEST(NSObjectKBXMethods, AClassWithoutMethodsListsNil) {
  Ref<NSError> error;
  EXPECT_EQ(kbxInstanceMethod(Gadget::classObject(), SEL("absent"), &error), nullptr);
  ASSERT_TRUE(error);
  EXPECT_TRUE(isEqual(valueOf(error, "KBXActualValue"_ns), "<nil>"_ns));
}

TEST(NSObjectKBXMethods, AnAbsentSelectorIsNotFoundEither) {
  Ref<NSError> error;
  EXPECT_EQ(kbxInstanceMethod(Widget::classObject(), SEL(), &error), nullptr);
  ASSERT_TRUE(error);
  EXPECT_EQ(textOf(error, "KBXFailingKey"_ns), "<nil>");
  EXPECT_EQ(text(error->localizedRecoverySuggestion()), "The method (null) is missing.");
}

TEST(NSObjectKBXMethods, WithoutAnOutParameterNothingIsStored) {
  EXPECT_EQ(kbxInstanceMethod(Widget::classObject(), SEL("absent"), nullptr), nullptr);
  EXPECT_EQ(kbxClassFromString("NoSuchClass"_ns, nullptr), nullptr);
  EXPECT_FALSE(
      kbxSwizzleInstance(Widget::classObject(), true, SEL("absent"), SEL("label"), nullptr));
  EXPECT_FALSE(
      kbxCopyInstance(Widget::classObject(), true, SEL("label"), Widget::classObject(), nullptr));
}

TEST(NSObjectKBXMethods, AClassIsFoundByName) {
  Ref<NSError> error;
  EXPECT_EQ(kbxClassFromString("NSMutableArray"_ns, &error), NSMutableArray::classObject());
  EXPECT_EQ(error, nullptr);
}

TEST(NSObjectKBXMethods, AMissingClassIsError1401) {
  Ref<NSError> error;
  EXPECT_EQ(kbxClassFromString("NoSuchClass"_ns, &error), nullptr);
  ASSERT_TRUE(error);
  EXPECT_TRUE(kbxHasDomain(error, "KBXErrorDomain"_ns, 1401));
  EXPECT_EQ(keys(error), "KBXFailingKey,NSLocalizedDescription,KBXStackFrames");
  EXPECT_EQ(textOf(error, "KBXFailingKey"_ns), "NoSuchClass");
  EXPECT_EQ(text(error->localizedDescription()), "No class found.");
  EXPECT_EQ(frames(error), kClassFrame);
  EXPECT_EQ(kbxClassFromString(nullptr, &error), nullptr);
  EXPECT_EQ(textOf(error, "KBXFailingKey"_ns), "<nil>");
}

// ---- Listing -----------------------------------------------------------------------------

TEST(NSObjectKBXMethods, OwnMethodsAreListedInTheOrderOfTheirDefinition) {
  NSClass* made = subclass("Listing");
  addMethod<&patched>(made, "zebra");
  addMethod<&patched>(made, "ant");
  EXPECT_EQ(names(made), "zebra,ant");
  EXPECT_EQ(names(made->objectClass()), "none");
  EXPECT_EQ(names(Widget::classObject()->objectClass()), "early,late");
}

TEST(NSObjectKBXMethods, AClassWithoutMethodsOfItsOwnHasNoList) {
  EXPECT_EQ(kbxDirectInstanceMethodNames(Gadget::classObject()), nullptr);
  EXPECT_EQ(kbxDirectInstanceMethodNames(static_cast<NSClass*>(nullptr)), nullptr);
}

TEST(NSObjectKBXMethods, AnObjectListsTheMethodsOfItsClass) {
  NSClass* made = subclass("ListingOfAnObject");
  addMethod<&patched>(made, "own");
  auto object = Ref<NSObject>::adopt(new Instance(made));
  EXPECT_EQ(text(kbxDirectInstanceMethodNames(object)->objectAtIndex(0)), "own");
  NSObject* asObject = made;
  EXPECT_EQ(text(kbxDirectInstanceMethodNames(asObject)->objectAtIndex(0)), "own")
      << "a class that is held as an object";
  EXPECT_EQ(kbxDirectInstanceMethodNames(static_cast<NSObject*>(nullptr)), nullptr);
}

// ---- Exchanging --------------------------------------------------------------------------

TEST(NSObjectKBXMethods, TwoMethodsExchangeTheirBodies) {
  NSClass* made = subclass("Exchanging", NSObject::classObject());
  addMethod<&patched>(made, "label");
  made->addMethod(SEL("title"), reinterpret_cast<IMP>(+[](NSObject*, SEL) -> NSObject* {
                    return Ref<NSObject>("own title"_ns).leak();
                  }),
                  "@@:");
  Ref<NSError> error;
  EXPECT_TRUE(kbxSwizzleInstance(made, true, SEL("label"), SEL("title"), &error));
  EXPECT_EQ(answer(made, "label"), "own title");
  EXPECT_EQ(answer(made, "title"), "patched");
  EXPECT_EQ(names(made), "label,title") << "nothing is added";
  EXPECT_EQ(error, nullptr);
}

TEST(NSObjectKBXMethods, ExchangingInheritedMethodsLeavesTheSuperclassAlone) {
  NSClass* made = subclass("ExchangingInherited");
  EXPECT_TRUE(kbxSwizzleInstance(made, true, SEL("label"), SEL("title"), nullptr));
  EXPECT_EQ(answer(made, "label"), "title");
  EXPECT_EQ(answer(made, "title"), "label");
  EXPECT_EQ(answer(Widget::classObject(), "label"), "label");
  EXPECT_EQ(answer(Widget::classObject(), "title"), "title");
  EXPECT_EQ(names(made), "label,title") << "now its own";
}

TEST(NSObjectKBXMethods, AnOwnMethodIsExchangedWithAnInheritedOne) {
  NSClass* made = subclass("ExchangingHalf");
  addMethod<&patched>(made, "patch");
  EXPECT_TRUE(kbxSwizzleInstance(made, true, SEL("patch"), SEL("label"), nullptr));
  EXPECT_EQ(answer(made, "label"), "patched");
  EXPECT_EQ(answer(made, "patch"), "label");
  EXPECT_EQ(answer(Widget::classObject(), "label"), "label");
}

TEST(NSObjectKBXMethods, AMethodExchangedWithItselfStays) {
  NSClass* made = subclass("ExchangingOne");
  EXPECT_TRUE(kbxSwizzleInstance(made, true, SEL("label"), SEL("label"), nullptr));
  EXPECT_EQ(answer(made, "label"), "label");
}

TEST(NSObjectKBXMethods, ClassMethodsAreExchangedInTheMetaclass) {
  NSClass* made = subclass("ExchangingClassMethods");
  EXPECT_TRUE(kbxSwizzleInstance(made, false, SEL("early"), SEL("late"), nullptr));
  EXPECT_EQ(classAnswer(made, "early"), "late");
  EXPECT_EQ(classAnswer(made, "late"), "early");
  EXPECT_EQ(classAnswer(Widget::classObject(), "early"), "early");
  EXPECT_EQ(names(made), "none") << "the class itself has no more methods than before";
}

TEST(NSObjectKBXMethods, AnExchangeFailsWithTheErrorOfTheMissingMethod) {
  NSClass* made = subclass("ExchangingMissing");
  for (auto [first, second] : {std::pair{"absent", "label"}, {"label", "absent"}}) {
    Ref<NSError> error;
    EXPECT_FALSE(kbxSwizzleInstance(made, true, SEL(first), SEL(second), &error));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 1400);
    EXPECT_EQ(textOf(error, "KBXFailingKey"_ns), "absent");
    EXPECT_EQ(frames(error), kFindFrame) << "no further frame";
  }
  EXPECT_EQ(names(made), "none");
  Ref<NSError> error;
  EXPECT_FALSE(kbxSwizzleInstance(made, false, SEL("label"), SEL("early"), &error));
  EXPECT_TRUE(isSame(valueOf(error, "KBXFailingObject"_ns), made->objectClass()))
      << "class methods are searched in the metaclass";
}

// ---- Copying -----------------------------------------------------------------------------

TEST(NSObjectKBXMethods, AMethodIsCopiedUnderItsSelector) {
  NSClass* made = subclass("CopyingTo", NSObject::classObject());
  Ref<NSError> error;
  EXPECT_TRUE(kbxCopyInstance(Gadget::classObject(), true, SEL("label"), made, &error))
      << "an inherited one too";
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(names(made), "label");
  EXPECT_EQ(made->instanceMethod(SEL("label"))->types, "@@:");
  EXPECT_EQ(answer(Widget::classObject(), "label"), "label");
}

TEST(NSObjectKBXMethods, ACopyReplacesAnInheritedMethod) {
  NSClass* made = subclass("CopyingOver");
  NSClass* source = subclass("CopyingFrom", NSObject::classObject());
  addMethod<&patched>(source, "label");
  EXPECT_TRUE(kbxCopyInstance(source, true, SEL("label"), made, nullptr));
  EXPECT_EQ(answer(made, "label"), "patched");
  EXPECT_EQ(answer(Widget::classObject(), "label"), "label");
}

TEST(NSObjectKBXMethods, ClassMethodsAreCopiedIntoTheMetaclass) {
  NSClass* made = subclass("CopyingClassMethod", NSObject::classObject());
  EXPECT_TRUE(kbxCopyInstance(Widget::classObject(), false, SEL("early"), made, nullptr));
  EXPECT_EQ(classAnswer(made, "early"), "early");
  EXPECT_EQ(names(made), "none");
  EXPECT_EQ(names(made->objectClass()), "early");
}

TEST(NSObjectKBXMethods, ACopyIntoAClassWithThatMethodIsError1402) {
  NSClass* made = subclass("CopyingTwice", NSObject::classObject());
  addMethod<&patched>(made, "label");
  Ref<NSError> error;
  EXPECT_FALSE(kbxCopyInstance(Widget::classObject(), true, SEL("label"), made, &error));
  ASSERT_TRUE(error);
  EXPECT_TRUE(kbxHasDomain(error, "KBXErrorDomain"_ns, 1402));
  EXPECT_EQ(keys(error), "KBXFailingKey,KBXFailingObject,NSLocalizedDescription,KBXStackFrames");
  EXPECT_EQ(textOf(error, "KBXFailingKey"_ns), "label");
  EXPECT_TRUE(isSame(valueOf(error, "KBXFailingObject"_ns), made));
  EXPECT_EQ(text(error->localizedDescription()), "Could not add method.");
  EXPECT_EQ(error->localizedRecoverySuggestion(), nullptr);
  EXPECT_EQ(frames(error), kCopyFrame);
  EXPECT_EQ(names(made), "label");
  EXPECT_EQ(answer(made, "label"), "patched") << "unchanged";
}

TEST(NSObjectKBXMethods, AClassMethodThatIsThereNamesTheMetaclass) {
  Ref<NSError> error;
  EXPECT_FALSE(
      kbxCopyInstance(Widget::classObject(), false, SEL("early"), Widget::classObject(), &error));
  EXPECT_TRUE(isSame(valueOf(error, "KBXFailingObject"_ns), Widget::classObject()->objectClass()));
}

TEST(NSObjectKBXMethods, AMethodThatIsNotThereCannotBeCopied) {
  Ref<NSError> error;
  EXPECT_FALSE(
      kbxCopyInstance(Widget::classObject(), true, SEL("absent"), Gadget::classObject(), &error));
  EXPECT_EQ(error->code(), 1400);
  EXPECT_EQ(frames(error), kFindFrame) << "no further frame";
}

TEST(NSObjectKBXMethods, ThereIsNoCopyingIntoNoClass) {
  Ref<NSError> error;
  EXPECT_FALSE(kbxCopyInstance(Widget::classObject(), true, SEL("label"), nullptr, &error));
  EXPECT_EQ(error->code(), 1402);
  EXPECT_EQ(textOf(error, "KBXFailingObject"_ns), "<nil>");
}

// ---- Copying and exchanging --------------------------------------------------------------

bool patch(NSClass* source, const char* className, const char* selector, const char* other,
           Ref<NSError>* error) {
  return kbxCopyInstanceToClassNamed(source, true, SEL(selector), string(className), SEL(other),
                                     error);
}

NSClass* source(const char* name) {
  NSClass* made = subclass(name, NSObject::classObject());
  addMethod<&patched>(made, "patch");
  return made;
}

TEST(NSObjectKBXMethods, AClassKnownByNameRunsTheNewBodyAndReachesTheOldOne) {
  NSClass* made = subclass("PatchedByName");
  Ref<NSError> error;
  EXPECT_TRUE(patch(source("PatchSource1"), "PatchedByName", "patch", "label", &error));
  EXPECT_EQ(answer(made, "label"), "patched");
  EXPECT_EQ(answer(made, "patch"), "label");
  EXPECT_EQ(answer(Widget::classObject(), "label"), "label");
  EXPECT_EQ(error, nullptr);
}

TEST(NSObjectKBXMethods, ClassMethodsArePatchedByNameToo) {
  NSClass* made = subclass("PatchedClassMethods");
  NSClass* from = subclass("PatchSource2", NSObject::classObject());
  addMethod<&late>(from->objectClass(), "patch");
  EXPECT_TRUE(kbxCopyInstanceToClassNamed(from, false, SEL("patch"), "PatchedClassMethods"_ns,
                                          SEL("early"), nullptr));
  EXPECT_EQ(classAnswer(made, "early"), "late");
  EXPECT_EQ(classAnswer(made, "patch"), "early");
}

TEST(NSObjectKBXMethods, PatchingFailsWhereTheClassIsMissing) {
  Ref<NSError> error;
  EXPECT_FALSE(patch(source("PatchSource3"), "NoSuchClass", "patch", "label", &error));
  EXPECT_EQ(error->code(), 1401);
  EXPECT_EQ(frames(error), kClassFrame) << "passed on unchanged";
}

TEST(NSObjectKBXMethods, PatchingFailsWhereTheNewMethodIsMissing) {
  NSClass* made = subclass("PatchedWithNothing");
  Ref<NSError> error;
  EXPECT_FALSE(patch(source("PatchSource4"), "PatchedWithNothing", "absent", "label", &error));
  EXPECT_EQ(error->code(), 1400);
  EXPECT_EQ(frames(error), kFindFrame);
  EXPECT_EQ(names(made), "none");
}

TEST(NSObjectKBXMethods, PatchingTwiceFailsAndExchangesNothing) {
  NSClass *made = subclass("PatchedTwice"), *from = source("PatchSource5");
  EXPECT_TRUE(patch(from, "PatchedTwice", "patch", "label", nullptr));
  Ref<NSError> error;
  EXPECT_FALSE(patch(from, "PatchedTwice", "patch", "label", &error));
  EXPECT_EQ(error->code(), 1402);
  EXPECT_EQ(frames(error), kCopyFrame);
  EXPECT_EQ(answer(made, "label"), "patched") << "still the new body";
}

TEST(NSObjectKBXMethods, TheCopiedMethodStaysWhereTheExchangeFails) {
  NSClass* made = subclass("PatchedHalf");
  Ref<NSError> error;
  EXPECT_FALSE(patch(source("PatchSource6"), "PatchedHalf", "patch", "absent", &error));
  EXPECT_EQ(error->code(), 1400);
  EXPECT_EQ(textOf(error, "KBXFailingKey"_ns), "absent");
  EXPECT_TRUE(
      isEqual(valueOf(error, "KBXActualValue"_ns), NSArray::arrayWithObjects({"patch"_ns})));
  EXPECT_EQ(frames(error), kFindFrame);
  EXPECT_EQ(names(made), "patch");
  EXPECT_EQ(answer(made, "patch"), "patched");
}

TEST(NSObjectKBXMethods, AnAbsentReceiverDoesNothing) {
  Ref<NSError> error;
  EXPECT_EQ(kbxInstanceMethod(nullptr, SEL("label"), &error), nullptr);
  EXPECT_FALSE(kbxSwizzleInstance(nullptr, false, SEL("label"), SEL("title"), &error));
  EXPECT_FALSE(kbxCopyInstance(nullptr, true, SEL("label"), Gadget::classObject(), &error));
  EXPECT_FALSE(kbxCopyInstanceToClassNamed(nullptr, true, SEL("label"), "NoSuchClass"_ns,
                                           SEL("title"), &error));
  EXPECT_EQ(error, nullptr);
}

}  // namespace
}  // namespace kbx
