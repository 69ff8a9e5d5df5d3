#include "platform/runtime/NSMethodSignature.h"

#include <stdexcept>

#include "tests/support/RaisedBy.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

auto* signatureOf(const char* types) { return NSMethodSignature::signatureWithObjCTypes(types); }

TEST(NSMethodSignature, TellsTheTypesOfResultAndArguments) {
  auto* signature = signatureOf("c@:@{_NSRange=QQ}");
  EXPECT_EQ(signature->numberOfArguments(), 4u) << "the receiver and the selector count";
  EXPECT_STREQ(signature->methodReturnType(), "c");
  EXPECT_EQ(signature->methodReturnLength(), 1u);
  EXPECT_STREQ(signature->getArgumentTypeAtIndex(0), "@");
  EXPECT_STREQ(signature->getArgumentTypeAtIndex(1), ":");
  EXPECT_STREQ(signature->getArgumentTypeAtIndex(2), "@");
  EXPECT_STREQ(signature->getArgumentTypeAtIndex(3), "{_NSRange=QQ}");
  EXPECT_EQ(signatureOf("v@:")->methodReturnLength(), 0u);
}

TEST(NSMethodSignature, EqualTypesAreOneSignature) {
  EXPECT_TRUE(isSame(signatureOf("q@:q"), signatureOf("q@:q")));
  EXPECT_FALSE(isEqual(signatureOf("q@:q"), signatureOf("q@:Q")));
  EXPECT_FALSE(isEqual(signatureOf("q@:q"), signatureOf("i@:q")));
  EXPECT_FALSE(isEqual(signatureOf("q@:q"), signatureOf("q@:")));
}

TEST(NSMethodSignature, FrameOffsetsChangeNothing) {
  EXPECT_TRUE(isEqual(signatureOf("c24@0:8@16"), signatureOf("c@:@")));
  EXPECT_EQ(signatureOf("c24@0:8@16")->hash(), signatureOf("c@:@")->hash());
}

TEST(NSMethodSignature, AnIndexBeyondTheArgumentsRaises) {
  EXPECT_EQ(nameRaisedBy([] { signatureOf("v@:")->getArgumentTypeAtIndex(2); }),
            "NSInvalidArgumentException");
}

TEST(NSMethodSignature, TypesThatCannotBeReadRaise) {
  for (const char* types : {"", "v", "v@", "v:@", "vv@:", "v@@", "v@:v", "v@:?", "[3c]@:", "v@:{"})
    EXPECT_EQ(nameRaisedBy([&] { signatureOf(types); }), "NSInvalidArgumentException") << types;
  EXPECT_EQ(nameRaisedBy([] { signatureOf(nullptr); }), "NSInvalidArgumentException");
  EXPECT_EQ(NSMethodSignature::named("v@:?"), nullptr);
}

TEST(NSMethodSignature, ValuesInAFrameDoNotOverlap) {
  auto* signature = signatureOf("D@:cqcD");
  EXPECT_EQ(signature->offsetOfArgument(0), 0u);
  EXPECT_EQ(signature->offsetOfArgument(1), 8u);
  EXPECT_EQ(signature->offsetOfArgument(2), 16u);
  EXPECT_EQ(signature->offsetOfArgument(3), 24u);
  EXPECT_EQ(signature->offsetOfArgument(4), 32u);
  EXPECT_EQ(signature->offsetOfArgument(5) % alignof(long double), 0u);
  EXPECT_EQ(signature->offsetOfResult(), signature->offsetOfArgument(5) + sizeof(long double));
  EXPECT_EQ(signature->frameLength(), signature->offsetOfResult() + sizeof(long double));
}

}  // namespace
}  // namespace kbx
