#include "KBXException.h"

#include "platform/objects/NSClass.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

Ref<NSDictionary> located(NSString* location) {
  return NSDictionary::dictionaryWithPairs({{"KBXExceptionLocation"_ns, location}});
}

TEST(KBXException, TheReasonEndsWithTheLocation) {
  auto exception = KBXException::exceptionWithName("N"_ns, "x"_ns, located("L"_ns));
  EXPECT_EQ(text(exception->reason()), "x at L");
  EXPECT_EQ(text(exception->kbxReason()), "x");
  EXPECT_EQ(text(exception->name()), "N");
}

TEST(KBXException, AnAbsentLocationPrintsAsNull) {
  auto none = KBXException::exceptionWithName("N"_ns, "x"_ns, nullptr);
  EXPECT_EQ(text(none->reason()), "x at (null)");
  auto other = KBXException::exceptionWithName("N"_ns, "x"_ns, NSDictionary::dictionary());
  EXPECT_EQ(text(other->reason()), "x at (null)");
}

TEST(KBXException, AnAbsentReasonPrintsAsNullButStaysAbsent) {
  auto exception = KBXException::exceptionWithName("N"_ns, nullptr, located("L"_ns));
  EXPECT_EQ(text(exception->reason()), "(null) at L");
  EXPECT_EQ(exception->kbxReason(), nullptr);
}

TEST(KBXException, ItPrintsTheReasonWithTheLocation) {
  EXPECT_EQ(text(KBXException::exceptionWithName("N"_ns, "x"_ns, located("L"_ns))), "x at L");
}

TEST(KBXException, ItIsCaughtAsThePlatformsException) {
  auto exception = KBXException::exceptionWithName("N"_ns, "x"_ns, located("L"_ns));
  auto raised = raisedBy([&] { exception->raise(); });
  EXPECT_TRUE(isSame(raised, exception));
  EXPECT_TRUE(raised->isKindOfClass(NSException::classObject()));
  EXPECT_TRUE(cast<KBXException>(raised));
  EXPECT_EQ(cast<KBXException>(NSException::exceptionWithName("N"_ns, "x"_ns, nullptr)), nullptr);
}

TEST(KBXException, BothReasonsAnswerDynamicCallsInTheirOrder) {
  auto selectors = KBXException::classObject()->directSelectors();
  ASSERT_EQ(selectors.size(), 2U);
  EXPECT_STREQ(selectors[0].name(), "reason");
  EXPECT_STREQ(selectors[1].name(), "kbxReason");
  auto exception = KBXException::exceptionWithName("N"_ns, "x"_ns, located("L"_ns));
  EXPECT_EQ(text(performSelector(exception, SEL("reason"))), "x at L");
  EXPECT_EQ(text(performSelector(exception, SEL("kbxReason"))), "x");
}

}  // namespace
}  // namespace kbx
