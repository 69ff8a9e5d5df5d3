#include "platform/runtime/DynamicCalls.h"

#include "platform/objects/NSArray.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/Text.h"
#include "tests/support/TypedCalls.h"

namespace kbx {
namespace {

Ref<NSString> named(Echo*, NSString* first, NSString* second) {
  return first->stringByAppendingString(second);
}
std::int64_t timesCalled(Echo* echo) { return ++echo->calls; }
Ref<NSString> plain(Echo*) { return "plain"_ns; }

/// Tells its fourteen arguments apart by their bits.
std::int64_t bitsOf(Echo*, bool a, bool b, bool c, bool d, bool e, bool f, bool g, bool h, bool i,
                    bool j, bool k, bool l, bool m, bool n) {
  std::int64_t bits = 0;
  for (bool one : {a, b, c, d, e, f, g, h, i, j, k, l, m, n}) bits = bits << 1 | one;
  return bits;
}

[[maybe_unused]] const bool hasBits =
    addMethod<&bitsOf>(Echo::classObject(), "a:b:c:d:e:f:g:h:i:j:k:l:m:n:");
[[maybe_unused]] const bool hasMore = addMethod<&named>(Echo::classObject(), "first:second:") &&
                                      addMethod<&timesCalled>(Echo::classObject(), "timesCalled") &&
                                      addMethod<&plain>(Echo::classObject(), "plain");

const char* const kInvalid = "NSInvalidArgumentException";

TEST(DynamicCalls, ClassesAreFoundByTheTextOfTheirName) {
  EXPECT_EQ(NSClassFromString("NSString"_ns), NSString::classObject());
  EXPECT_EQ(NSClassFromString("NoSuchClass"_ns), nullptr);
  EXPECT_EQ(NSClassFromString(""_ns), nullptr);
  EXPECT_EQ(NSClassFromString(nullptr), nullptr);
  EXPECT_EQ(NSClassFromString(NSString::stringWithUTF16(u"\xD800")), nullptr);
}

TEST(DynamicCalls, ASelectorHasAName) {
  EXPECT_EQ(text(NSStringFromSelector(SEL("a:b:"))), "a:b:");
  EXPECT_EQ(NSStringFromSelector(SEL()), nullptr);
}

TEST(DynamicCalls, AnObjectIsPassedAndItsResultOwned) {
  auto echo = Echo::make();
  auto word = string("word");
  EXPECT_TRUE(isSame(performSelector(echo, SEL("object:"), word), word));
  EXPECT_EQ(performSelector(echo, SEL("object:"), nullptr), nullptr);
  EXPECT_EQ(performSelector(nullptr, SEL("object:"), word), nullptr);
}

TEST(DynamicCalls, AClassIsPassedWhereOneIsTaken) {
  auto echo = Echo::make();
  EXPECT_TRUE(
      isSame(performSelector(echo, SEL("type:"), Echo::classObject()), Echo::classObject()));
  EXPECT_EQ(nameRaisedBy([&] { performSelector(echo, SEL("type:"), "no class"_ns); }), kInvalid);
}

TEST(DynamicCalls, AMethodWithoutArgumentsIsCalledWithoutTheObject) {
  auto echo = Echo::make();
  EXPECT_EQ(text(performSelector(echo, SEL("plain"), "unused"_ns)), "plain");
  EXPECT_EQ(performSelector(echo, SEL("nothing"), "unused"_ns), nullptr);
  EXPECT_EQ(echo->calls, 1);
}

TEST(DynamicCalls, AResultThatIsNoObjectIsAbsent) {
  auto echo = Echo::make();
  EXPECT_EQ(performSelector(echo, SEL("timesCalled"), nullptr), nullptr);
  EXPECT_EQ(echo->calls, 1);
}

TEST(DynamicCalls, AnyOtherArgumentRaises) {
  auto echo = Echo::make();
  for (const char* selector : {"long:", "range:", "constantText:", "first:second:"})
    EXPECT_EQ(nameRaisedBy([&] { performSelector(echo, SEL(selector), "a"_ns); }), kInvalid)
        << selector;
}

TEST(DynamicCalls, AMethodOfTwoObjectsIsToldByItsTypes) {
  auto echo = Echo::make();
  auto exception = raisedBy([&] { performSelector(echo, SEL("first:second:"), "a"_ns); });
  ASSERT_NE(exception, nullptr);
  EXPECT_NE(text(exception->reason()).find("does not take one object"), std::string::npos);
}

TEST(DynamicCalls, ManyArgumentsArrive) {
  auto echo = Echo::make();
  bool values[14] = {true,  false, false, true, true,  false, true,
                     false, true,  true,  true, false, false, true};
  std::vector<void*> arguments;
  for (bool& value : values) arguments.push_back(&value);
  std::int64_t bits = 0;
  const SEL selector("a:b:c:d:e:f:g:h:i:j:k:l:m:n:");
  invoke(echo, *Echo::classObject()->instanceMethod(selector), &bits, arguments);
  EXPECT_EQ(bits, 0b10011010111001);
}

TEST(DynamicCalls, AnUnknownSelectorRaisesWithReceiverAndSelector) {
  auto echo = Echo::make();
  auto raised = raisedBy([&] { performSelector(echo, SEL("unknown:"), "a"_ns); });
  ASSERT_TRUE(raised);
  EXPECT_EQ(text(raised->name()), kInvalid);
  EXPECT_TRUE(raised->reason()->hasPrefix(
      "-[Echo unknown:]: unrecognized selector sent to instance 0x"_ns));
}

TEST(DynamicCalls, AClassMayAnswerUnknownSelectorsItself) {
  NSClass* made = NSClass::make("EchoOfTheUnknown", Echo::classObject());
  static SEL asked;
  auto remember = +[](NSObject*, SEL, SEL selector) { asked = selector; };
  made->objectClass()->addMethod(SEL("doesNotRecognizeSelector:"), reinterpret_cast<IMP>(remember),
                                 "v@::");
  EXPECT_EQ(performSelector(made, SEL("anything")), nullptr);
  EXPECT_EQ(asked, SEL("anything"));
}

TEST(DynamicCalls, TheSignatureIsThatOfTheMethodThatIsFound) {
  auto echo = Echo::make();
  EXPECT_STREQ(methodSignatureForSelector(echo, SEL("rect:"))->methodReturnType(),
               "{CGRect={CGPoint=dd}{CGSize=dd}}");
  EXPECT_TRUE(isSame(methodSignatureForSelector(echo, SEL("long:")),
                     NSMethodSignature::signatureWithObjCTypes("q@:q")));
  EXPECT_EQ(methodSignatureForSelector(echo, SEL("unknown")), nullptr);
  EXPECT_EQ(methodSignatureForSelector(echo, SEL()), nullptr);
  EXPECT_EQ(methodSignatureForSelector(nullptr, SEL("long:")), nullptr);
}

TEST(DynamicCalls, EveryObjectAnswersTheBasics) {
  EXPECT_EQ(text(performSelector("a"_ns, SEL("description"))), "a") << "as the subclass says";
  EXPECT_EQ(text(performSelector(Echo::classObject(), SEL("description"))), "Echo");
  EXPECT_TRUE("a"_ns->respondsToSelector(SEL("respondsToSelector:")));
  auto list = NSMutableArray::array();
  performSelector(list, SEL("addObject:"), "a"_ns);
  EXPECT_EQ(list->count(), 1u);
  EXPECT_EQ(nameRaisedBy([&] { performSelector(list, SEL("addObject:"), nullptr); }), kInvalid);
}

TEST(DynamicCalls, AMethodIsFoundAsSoonAsItIsAdded) {
  NSClass* base = NSClass::make("EchoLate", Echo::classObject());
  NSClass* derived = NSClass::make("EchoLateDerived", base);
  EXPECT_EQ(derived->instanceMethod(SEL("late")), nullptr);
  addMethod<&plain>(base, "late");
  Method* inherited = derived->instanceMethod(SEL("late"));
  EXPECT_EQ(inherited, base->instanceMethod(SEL("late")));
  ASSERT_TRUE(inherited);
  addMethod<&plain>(derived, "late");
  EXPECT_NE(derived->instanceMethod(SEL("late")), inherited);
  EXPECT_EQ(base->instanceMethod(SEL("late")), inherited);
}

}  // namespace
}  // namespace kbx
