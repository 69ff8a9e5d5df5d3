#include "Assertions.h"

#include "KBXException.h"
#include "KBXFunctions.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using Lines = std::vector<std::string>;

Site methodSite(NSObject* object) {
  return {"KBXFoundation/Source/NSUserDefaults+KBX", 9, object,
          "kbxBoolForKey:domain:defaultValue:",
          "-[NSUserDefaults(KBX) kbxBoolForKey:domain:defaultValue:]"};
}

const Site functionSite("KBXFoundation/Source/NSProcessInfo+KBX", 236,
                        "int GetBSDProcessList(kinfo_proc **, size_t *)");

/// The base reason of what a call raises, which must be a failed assertion.
template <class Call>
std::string failure(Call call) {
  RecordingLog log;
  Ref<NSException> raised = raisedBy(call);
  auto* exception = cast<KBXException>(raised);
  if (!exception) return "nothing";
  EXPECT_EQ(text(exception->name()), "KBXAssertionFailedException");
  EXPECT_EQ(log.lines().size(), 1U);
  return text(exception->kbxReason());
}

TEST(Assertions, AFailedPreconditionLogsOneLineAndRaises) {
  RecordingLog log;
  NSString* key = nullptr;
  auto defaults = NSNumber::numberWithInteger(1);
  auto raised = raisedBy([&] { KBX_PRECONDITION(key, methodSite(defaults)); });
  auto* exception = cast<KBXException>(raised);
  ASSERT_TRUE(exception);
  const std::string place = "NSUserDefaults+KBX:9 -kbxBoolForKey:domain:defaultValue:";
  EXPECT_EQ(log.lines(), Lines{place + ": Assertion Failed: Precondition Failed: key"});
  EXPECT_EQ(text(exception->name()), "KBXAssertionFailedException");
  EXPECT_EQ(text(exception->kbxReason()), "Precondition Failed: key");
  EXPECT_EQ(text(exception->reason()), "Precondition Failed: key at " + place);
}

TEST(Assertions, WhatHoldsDoesNothing) {
  RecordingLog log;
  int asked = 0;
  KBX_PRECONDITION(++asked, functionSite);
  KBX_PRECONDITION_TEXT(++asked, "NO", functionSite);
  KBX_ASSERT(++asked, functionSite);
  KBX_ASSERT_TEXT(++asked, "x", functionSite);
  KBX_ASSERT_MESSAGE(++asked, "x", functionSite, "m"_ns);
  KBX_PARAMETER_ASSERT(++asked, "x", functionSite);
  EXPECT_EQ(asked, 6);
  EXPECT_TRUE(log.lines().empty());
}

TEST(Assertions, EachFormHasItsMessage) {
  void* _semaphore = nullptr;
  EXPECT_EQ(failure([&] { KBX_PRECONDITION(_semaphore, functionSite); }),
            "Precondition Failed: _semaphore");
  EXPECT_EQ(failure([] { KBX_PRECONDITION_TEXT(false, "[self length] == 4", functionSite); }),
            "Precondition Failed: [self length] == 4");
  EXPECT_EQ(failure([] { KBX_PRECONDITION_TEXT(false, "[self length] % 3 == 0", functionSite); }),
            "Precondition Failed: [self length] % 3 == 0");
  EXPECT_EQ(failure([&] { KBX_ASSERT(_semaphore, functionSite); }), "Assertion Failed: _semaphore");
  EXPECT_EQ(failure([] { KBX_ASSERT_TEXT(false, "a, b", functionSite); }),
            "Assertion Failed: a, b");
  EXPECT_EQ(failure([] {
              KBX_ASSERT_MESSAGE(false, "x", functionSite, "suffix: '%@' length: %llu"_ns,
                                 ".txt"_ns, 3ULL);
            }),
            "suffix: '.txt' length: 3");
}

TEST(Assertions, ASiteMayBeWrittenOnTheSpot) {
  EXPECT_EQ(failure([] { KBX_PRECONDITION(false, Site("f", 1, nullptr, "s")); }),
            "Precondition Failed: false");
  EXPECT_EQ(failure([] {
              KBX_PRECONDITION(false, Site{"f", 1, nullptr, "s"});
            }),
            "Precondition Failed: false");
  EXPECT_EQ(failure([] { KBX_ASSERT_MESSAGE(false, "x", Site("f", 1, "f()"), "m %d"_ns, 1); }),
            "m 1");
}

TEST(Assertions, AFunctionsPlaceEndsInABlank) {
  RecordingLog log;
  raisedBy([] { KBX_ASSERT(false, functionSite); });
  EXPECT_EQ(log.lines(),
            Lines{"NSProcessInfo+KBX:236 : Assertion Failed: Assertion Failed: false"});
}

/// The end of a branch that must never run: the compiler sees that nothing comes after it.
int neverReturns() { KBX_PRECONDITION_TEXT(false, "NO", functionSite); }

TEST(Assertions, ABranchThatMustNotRunNeedsNoResult) {
  EXPECT_EQ(failure([] { neverReturns(); }), "Precondition Failed: NO");
}

TEST(AssertionsDeathTest, ShouldRaisingReturnTheProcessStops) {
  EXPECT_DEATH(stopAfterAssertion(methodSite(nullptr), "((key))"),
               "^Assertion failed: \\(\\(key\\)\\), function "
               "-\\[NSUserDefaults\\(KBX\\) kbxBoolForKey:domain:defaultValue:\\], file "
               "KBXFoundation/Source/NSUserDefaults\\+KBX, line 9\\.\n");
}

TEST(AssertionsDeathTest, AFunctionWithoutASignatureIsNamedByItsReceiver) {
  auto number = NSNumber::numberWithInteger(1);
  EXPECT_DEATH(stopAfterAssertion(Site("f", 1, number, "m:"), "(x)"),
               "Assertion failed: \\(x\\), function -\\[NSNumber m:\\], file f, line 1\\.");
  EXPECT_DEATH(stopAfterAssertion(Site("f", 1, NSNumber::classObject(), "m"), "(x)"),
               "function \\+\\[NSNumber m\\], file");
  EXPECT_DEATH(stopAfterAssertion(Site("f", 1, nullptr), "(x)"),
               "function <Unknown Function>, file");
}

TEST(Assertions, AParameterAssertionIsThePlatforms) {
  RecordingLog log;
  auto number = NSNumber::numberWithInteger(1);
  auto inMethod = raisedBy([&] {
    KBX_PARAMETER_ASSERT(false, "prefix",
                         Site("KBXFoundation/Source/KBXLogger", 327, number, "logPrefix:"));
  });
  auto inFunction = raisedBy([] { KBX_PARAMETER_ASSERT(false, "result == NULL", functionSite); });
  ASSERT_TRUE(inMethod && inFunction);
  EXPECT_EQ(text(inMethod->name()), "NSInternalInconsistencyException");
  EXPECT_EQ(text(inMethod->reason()), "Invalid parameter not satisfying: prefix");
  EXPECT_EQ(text(inFunction->reason()), "Invalid parameter not satisfying: result == NULL");
  EXPECT_EQ(log.lines(), (Lines{"*** Assertion failure in -[NSNumber logPrefix:], "
                                "KBXFoundation/Source/KBXLogger:327",
                                "*** Assertion failure in int GetBSDProcessList(kinfo_proc **, "
                                "size_t *), KBXFoundation/Source/NSProcessInfo+KBX:236"}));
}

}  // namespace
}  // namespace kbx
