#include "platform/runtime/NativeMethod.h"

#include "tests/support/Text.h"
#include "tests/support/TypedCalls.h"

namespace kbx {
namespace {

Method* methodOf(NSClass* holder, const char* selector) {
  return holder->instanceMethod(SEL(selector));
}

std::int64_t doubled(Echo* receiver, std::int64_t value) {
  ++receiver->calls;
  return 2 * value;
}
Ref<NSString> nameOf(NSClass* receiver) { return receiver->description(); }

TEST(NativeMethod, EveryTypeHasItsEncoding) {
  for (auto [selector, types] : kTypedCalls)
    EXPECT_EQ(methodOf(Echo::classObject(), selector)->types, types) << selector;
}

TEST(NativeMethod, CoreFoundationTextHasTheEncodingOfItsStructure) {
  EXPECT_EQ(methodOf(Echo::classObject(), "core:")->types, "r^{__CFString=}@:r^{__CFString=}");
}

TEST(NativeMethod, AFunctionWithTheReceiverInFrontIsAMethodToo) {
  NSClass* derived = NSClass::make("EchoWithFunction", Echo::classObject());
  EXPECT_TRUE(addMethod<&doubled>(derived, "doubled:"));
  EXPECT_FALSE(addMethod<&doubled>(derived, "doubled:"));
  Method* method = methodOf(derived, "doubled:");
  EXPECT_EQ(method->types, "q@:q");
  auto echo = Echo::make();
  std::int64_t value = 21, result = 0;
  void* const arguments[] = {&value};
  invoke(echo, *method, &result, arguments);
  EXPECT_EQ(result, 42);
  EXPECT_EQ(echo->calls, 1);
}

TEST(NativeMethod, AClassMethodIsAFunctionInTheMetaclass) {
  NSClass* derived = NSClass::make("EchoWithClassMethod", Echo::classObject());
  EXPECT_TRUE(addMethod<&nameOf>(derived->objectClass(), "nameOfClass"));
  EXPECT_EQ(text(performSelector(derived, SEL("nameOfClass"))), "EchoWithClassMethod");
  EXPECT_EQ(methodOf(derived, "nameOfClass"), nullptr);
}

}  // namespace
}  // namespace kbx
