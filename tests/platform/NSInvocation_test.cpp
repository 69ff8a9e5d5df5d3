#include "platform/runtime/NSInvocation.h"

#include <cstring>
#include <stdexcept>

#include "platform/objects/NSArray.h"
#include "platform/runtime/DynamicCalls.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/Text.h"
#include "tests/support/TypedCalls.h"

namespace kbx {
namespace {

Ref<NSInvocation> invocationOf(NSObject* target, const char* selector) {
  auto invocation = NSInvocation::invocationWithMethodSignature(
      methodSignatureForSelector(target, SEL(selector)));
  invocation->setTarget(target);
  invocation->setSelector(SEL(selector));
  return invocation;
}

/// Adds up what fills the registers and what comes behind them.
std::int64_t sumOfMany(Echo*, std::int64_t a, double b, std::int32_t c, NSRange d, signed char e,
                       float f, NSRect g, std::int64_t h, std::int16_t i, std::uint8_t j,
                       NSString* k, double l) {
  const double reals = b + f + g.origin.x + g.origin.y + g.size.width + g.size.height + l;
  return a + c + static_cast<std::int64_t>(d.location + d.length) + e + h + i + j +
         static_cast<std::int64_t>(k->length()) + static_cast<std::int64_t>(reals);
}

/// What a method with the types "Q@:[8c]" and "Q@:[c]" gets.
std::uint64_t lengthOfText(NSObject*, SEL, const char* text) { return std::strlen(text); }

struct Wide {
  double numbers[12];
};
Wide wideResult(NSObject*, SEL, Wide wide) {
  for (double& number : wide.numbers) number += 1;
  return wide;
}

void raise(Echo*) { raiseInvalidArgument("from inside"); }
void throwForeign(Echo*) { throw std::runtime_error("foreign"); }

template <class Body>
void add(const char* selector, Body* body, const char* types) {
  Echo::classObject()->addMethod(SEL(selector), reinterpret_cast<IMP>(body), types);
}

[[maybe_unused]] const bool hasMore = [] {
  addMethod<&sumOfMany>(Echo::classObject(), "a:b:c:d:e:f:g:h:i:j:k:l:");
  addMethod<&raise>(Echo::classObject(), "raise");
  addMethod<&throwForeign>(Echo::classObject(), "throwForeign");
  add("lengthOfArray:", &lengthOfText, "Q@:[8c]");
  add("lengthOfText:", &lengthOfText, "Q@:[c]");
  add("wide:", &wideResult, "{wide=[12d]}@:{wide=[12d]}");
  add("unreadable:", &lengthOfText, "Q@:?");
  return true;
}();

TEST(NSInvocation, EveryTypeGoesInAndComesOut) {
  auto echo = Echo::make();
  forEveryType([&](const char* selector, auto value) {
    SCOPED_TRACE(selector);
    auto invocation = invocationOf(echo, selector);
    invocation->setArgument(&value, 2);
    struct {
      decltype(value) result{};
      unsigned char behind[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    } got, stored;
    invocation->getArgument(&stored.result, 2);
    EXPECT_TRUE(stored.result == value);
    invocation->getReturnValue(&got.result);
    EXPECT_TRUE(got.result == decltype(value){}) << "zero before the call";
    invocation->invoke();
    invocation->getReturnValue(&got.result);
    EXPECT_TRUE(got.result == value);
    for (unsigned char i = 0; i < 8; ++i) EXPECT_EQ(got.behind[i], i + 1) << "bytes behind it";
  });
}

TEST(NSInvocation, TheWidestRealNumberKeepsItsDigits) {
  auto invocation = invocationOf(Echo::make(), "widestReal:");
  auto echo = Echo::make();
  invocation->setTarget(echo);
  long double value = 1.0L / 3, result = 0;
  invocation->setArgument(&value, 2);
  invocation->invoke();
  invocation->getReturnValue(&result);
  EXPECT_EQ(result, value);
}

TEST(NSInvocation, AnObjectResultIsOwned) {
  auto echo = Echo::make();
  auto word = NSString::stringWithUTF8("a word that is counted");
  NSObject* argument = word;
  auto invocation = invocationOf(echo, "object:");
  Ref<NSObject> result;
  for (int i = 0; i < 3; ++i) {
    invocation->setArgument(&argument, 2);
    invocation->invoke();
    invocation->getReturnValue(&result);
    EXPECT_TRUE(isSame(result, word));
  }
  invocation = nullptr;
  word = nullptr;
  EXPECT_EQ(text(result), "a word that is counted");
}

TEST(NSInvocation, ACoreFoundationResultIsBorrowed) {
  auto echo = Echo::make();
  CFStringRef value = CFSTR("constant"), result = nullptr;
  auto invocation = invocationOf(echo, "core:");
  invocation->setArgument(&value, 2);
  invocation->invoke();
  invocation->getReturnValue(&result);
  EXPECT_EQ(result, value);
}

TEST(NSInvocation, ArgumentsBeyondTheRegistersArrive) {
  auto echo = Echo::make();
  auto invocation = invocationOf(echo, "a:b:c:d:e:f:g:h:i:j:k:l:");
  std::int64_t a = 1, h = 10000000, sum = 0;
  double b = 2, l = 60;
  std::int32_t c = 300;
  NSRange d{1000, 3000};
  signed char e = -1;
  float f = 5;
  NSRect g{{1, 2}, {3, 4}};
  std::int16_t i = 20000;
  std::uint8_t j = 200;
  NSObject* k = "abc"_ns;
  std::size_t index = 2;
  for (const void* address :
       std::initializer_list<const void*>{&a, &b, &c, &d, &e, &f, &g, &h, &i, &j, &k, &l})
    invocation->setArgument(address, index++);
  invocation->invoke();
  invocation->getReturnValue(&sum);
  EXPECT_EQ(sum, 10024580);
}

TEST(NSInvocation, AnArrayIsCopiedAndItsAddressPassed) {
  auto echo = Echo::make();
  auto invocation = invocationOf(echo, "lengthOfArray:");
  char letters[8] = "abcdef";
  invocation->setArgument(letters, 2);
  letters[1] = 0;
  invocation->invoke();
  std::uint64_t length = 0;
  invocation->getReturnValue(&length);
  EXPECT_EQ(length, 6u);
  char copy[8] = {};
  invocation->getArgument(copy, 2);
  EXPECT_STREQ(copy, "abcdef");
}

TEST(NSInvocation, AnArrayWithoutASizeEndsWithItsText) {
  auto echo = Echo::make();
  auto invocation = invocationOf(echo, "lengthOfText:");
  invocation->invoke();
  std::uint64_t length = 1;
  invocation->getReturnValue(&length);
  EXPECT_EQ(length, 0u) << "nothing was set";
  char letters[] = "longer than a word";
  invocation->setArgument(letters, 2);
  letters[0] = 0;
  invocation->invoke();
  invocation->getReturnValue(&length);
  EXPECT_EQ(length, 18u);
  char copy[32] = {};
  invocation->getArgument(copy, 2);
  EXPECT_STREQ(copy, "longer than a word");
}

TEST(NSInvocation, StructuresThatNoRegisterHoldsGoBothWays) {
  auto echo = Echo::make();
  auto invocation = invocationOf(echo, "wide:");
  Wide value{{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}}, result{};
  invocation->setArgument(&value, 2);
  invocation->invoke();
  invocation->getReturnValue(&result);
  for (int i = 0; i < 12; ++i) EXPECT_EQ(result.numbers[i], i + 1);
}

TEST(NSInvocation, TargetAndSelectorAreTheFirstTwoArguments) {
  auto echo = Echo::make();
  auto invocation = invocationOf(echo, "nothing");
  NSObject* target = nullptr;
  SEL selector;
  invocation->getArgument(&target, 0);
  invocation->getArgument(&selector, 1);
  EXPECT_TRUE(isSame(target, echo));
  EXPECT_EQ(selector, SEL("nothing"));
  EXPECT_TRUE(isSame(invocation->target(), echo));
  EXPECT_EQ(invocation->selector(), SEL("nothing"));
  EXPECT_STREQ(invocation->methodSignature()->methodReturnType(), "v");
  std::uint64_t untouched = 7;
  invocation->invoke();
  invocation->getReturnValue(&untouched);
  EXPECT_EQ(untouched, 7u) << "nothing is stored for void";
  EXPECT_EQ(echo->calls, 1);
}

TEST(NSInvocation, AnAbsentTargetAnswersZero) {
  auto echo = Echo::make();
  auto invocation = invocationOf(echo, "long:");
  std::int64_t value = 5, result = 1;
  invocation->setArgument(&value, 2);
  invocation->invoke();
  invocation->setTarget(nullptr);
  invocation->invoke();
  invocation->getReturnValue(&result);
  EXPECT_EQ(result, 0);
}

TEST(NSInvocation, AnAbsentTargetAnswersNoObject) {
  auto echo = Echo::make();
  auto invocation = invocationOf(echo, "object:");
  NSObject* argument = "word"_ns;
  invocation->setArgument(&argument, 2);
  invocation->invoke();
  invocation->setTarget(nullptr);
  invocation->invoke();
  Ref<NSObject> result = argument;
  invocation->getReturnValue(&result);
  EXPECT_EQ(result, nullptr) << "nor that of the call before";
}

TEST(NSInvocation, RetainedArgumentsLiveAsLongAsTheInvocation) {
  auto echo = Echo::make();
  auto invocation = invocationOf(echo, "object:");
  auto word = NSString::stringWithUTF8("counted by the invocation");
  NSObject* argument = word;
  invocation->setArgument(&argument, 2);
  EXPECT_FALSE(invocation->argumentsRetained());
  invocation->retainArguments();
  invocation->retainArguments();
  EXPECT_TRUE(invocation->argumentsRetained());
  word = nullptr;
  echo = nullptr;
  Ref<NSObject> result;
  invocation->invoke();
  invocation->getReturnValue(&result);
  EXPECT_EQ(text(result), "counted by the invocation");
  word = NSString::stringWithUTF8("set behind it");
  argument = word;
  invocation->setArgument(&argument, 2);
  word = nullptr;
  invocation->invoke();
  invocation->getReturnValue(&result);
  EXPECT_EQ(text(result), "set behind it");
}

TEST(NSInvocation, RetainedTextsAreCopied) {
  auto echo = Echo::make();
  auto invocation = invocationOf(echo, "constantText:");
  invocation->retainArguments();
  char letters[] = "letters";
  const char *argument = letters, *result = nullptr;
  invocation->setArgument(&argument, 2);
  letters[0] = 'L';
  invocation->invoke();
  invocation->getReturnValue(&result);
  EXPECT_STREQ(result, "letters");
}

TEST(NSInvocation, WhatDoesNotFitRaises) {
  auto echo = Echo::make();
  auto invocation = invocationOf(echo, "long:");
  std::int64_t value = 0;
  const char* const kName = "NSInvalidArgumentException";
  EXPECT_EQ(nameRaisedBy([] { NSInvocation::invocationWithMethodSignature(nullptr); }), kName);
  EXPECT_EQ(nameRaisedBy([&] { invocation->setArgument(&value, 3); }), kName);
  EXPECT_EQ(nameRaisedBy([&] { invocation->setArgument(nullptr, 2); }), kName);
  EXPECT_EQ(nameRaisedBy([&] { invocation->getArgument(&value, 3); }), kName);
  EXPECT_EQ(nameRaisedBy([&] { invocation->getReturnValue(nullptr); }), kName);
  invocation->setSelector(SEL("unknown:"));
  EXPECT_EQ(nameRaisedBy([&] { invocation->invoke(); }), kName);
  invocation->setSelector(SEL("rect:"));
  EXPECT_EQ(nameRaisedBy([&] { invocation->invoke(); }), kName) << "of other types";
  EXPECT_EQ(nameRaisedBy([&] { invocationOf(echo, "unreadable:"); }), kName);
}

TEST(NSInvocation, ExceptionsOfTheMethodPass) {
  auto echo = Echo::make();
  EXPECT_EQ(text(raisedBy([&] { invocationOf(echo, "raise")->invoke(); })->reason()),
            "from inside");
  EXPECT_THROW(invocationOf(echo, "throwForeign")->invoke(), std::runtime_error);
}

TEST(NSInvocation, AnExchangeCountsAtTheNextCall) {
  NSClass* derived = NSClass::make("EchoExchanged", Echo::classObject());
  auto one = +[](NSObject*, SEL) -> std::int64_t { return 1; };
  auto two = +[](NSObject*, SEL) -> std::int64_t { return 2; };
  derived->objectClass()->addMethod(SEL("one"), reinterpret_cast<IMP>(one), "q@:");
  derived->objectClass()->addMethod(SEL("two"), reinterpret_cast<IMP>(two), "q@:");
  auto invocation = invocationOf(derived, "one");
  std::int64_t result = 0;
  invocation->invoke();
  invocation->getReturnValue(&result);
  EXPECT_EQ(result, 1);
  NSClass* holder = derived->objectClass();
  NSClass::exchangeImplementations(holder->instanceMethod(SEL("one")),
                                   holder->instanceMethod(SEL("two")));
  invocation->invoke();
  invocation->getReturnValue(&result);
  EXPECT_EQ(result, 2);
}

}  // namespace
}  // namespace kbx
