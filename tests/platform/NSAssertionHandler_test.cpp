#include "platform/objects/NSAssertionHandler.h"

#include "platform/objects/NSNumber.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

NSAssertionHandler* handler() { return NSAssertionHandler::currentHandler(); }

TEST(NSAssertionHandler, ThereIsOneInTheProcess) {
  EXPECT_TRUE(isSame(handler(), NSAssertionHandler::currentHandler()));
}

TEST(NSAssertionHandler, AFailureInAMethodRaisesItsDescriptionAsAnInconsistency) {
  RecordingLog log;
  auto number = NSNumber::numberWithInteger(1);
  auto raised = raisedBy([&] {
    handler()->handleFailureInMethod(SEL("half:"), number, "Halves.cpp"_ns, 12, "%@ is %s"_ns,
                                     number, "odd");
  });
  ASSERT_TRUE(raised);
  EXPECT_EQ(text(raised->name()), "NSInternalInconsistencyException");
  EXPECT_EQ(text(raised->reason()), "1 is odd");
  EXPECT_EQ(log.lines(),
            std::vector<std::string>{"*** Assertion failure in -[NSNumber half:], Halves.cpp:12"});
}

TEST(NSAssertionHandler, AClassMethodIsLoggedWithAPlus) {
  RecordingLog log;
  raisedBy([] {
    handler()->handleFailureInMethod(SEL("zero"), NSNumber::classObject(), "a"_ns, 1, "b"_ns);
  });
  EXPECT_EQ(log.lines(),
            std::vector<std::string>{"*** Assertion failure in +[NSNumber zero], a:1"});
}

TEST(NSAssertionHandler, AFailureInAFunctionRaisesItsDescriptionAsAnInconsistency) {
  RecordingLog log;
  auto raised = raisedBy([] {
    handler()->handleFailureInFunction("int f(void)"_ns, "f.c"_ns, 3, "no %@"_ns, "luck"_ns);
  });
  ASSERT_TRUE(raised);
  EXPECT_EQ(text(raised->name()), "NSInternalInconsistencyException");
  EXPECT_EQ(text(raised->reason()), "no luck");
  EXPECT_EQ(log.lines(), std::vector<std::string>{"*** Assertion failure in int f(void), f.c:3"});
}

TEST(NSAssertionHandler, AParameterAssertionNamesItsCondition) {
  RecordingLog log;
  auto inMethod = raisedBy([] { failParameterInMethod(SEL("log:"), nullptr, "L", 327, "prefix"); });
  auto inFunction = raisedBy([] { failParameterInFunction("int f()", "P", 236, "a == %@"); });
  ASSERT_TRUE(inMethod && inFunction);
  EXPECT_EQ(text(inMethod->reason()), "Invalid parameter not satisfying: prefix");
  EXPECT_EQ(text(inFunction->reason()), "Invalid parameter not satisfying: a == %@");
  EXPECT_EQ(log.lines(), (std::vector<std::string>{"*** Assertion failure in -[(null) log:], L:327",
                                                   "*** Assertion failure in int f(), P:236"}));
}

TEST(NSAssertionHandler, NamesThatAreNoTextAreUnknown) {
  for (const char* bad : {static_cast<const char*>(nullptr), "\xFF"}) {
    RecordingLog log;
    raisedBy([=] { failParameterInFunction(bad, bad, 1, "x"); });
    raisedBy([=] { failParameterInMethod(SEL("m"), nullptr, bad, 2, "x"); });
    EXPECT_EQ(log.lines(), (std::vector<std::string>{
                               "*** Assertion failure in <Unknown Function>, <Unknown File>:1",
                               "*** Assertion failure in -[(null) m], <Unknown File>:2"}));
  }
}

}  // namespace
}  // namespace kbx
