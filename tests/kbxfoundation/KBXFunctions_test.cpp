#include "KBXFunctions.h"

#include "KBXException.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

constexpr const char* kFile = "KBXFoundation/Source/NSUserDefaults+KBX";

using Lines = std::vector<std::string>;

/// Keeps what it is told; installed while it lives.
class Listener final : public NSObject {
  KBX_OBJECT(Listener, NSObject)
 public:
  static Ref<Listener> make() { return Ref<Listener>::adopt(new Listener); }
  void logString(NSString* string) { lines.push_back(text(string)); }

  Lines lines;
};
KBX_CLASS(Listener)
[[maybe_unused]] const bool listens =
    addMethod<&Listener::logString>(Listener::classObject(), "logString:");

class ScopedDelegate {
 public:
  explicit ScopedDelegate(NSObject* delegate) { KBXFunctions::setLoggingDelegate(delegate); }
  ~ScopedDelegate() { KBXFunctions::setLoggingDelegate(nullptr); }
};

NSObject* locationOf(NSException* exception) {
  return exception->userInfo()->objectForKey("KBXExceptionLocation"_ns);
}

// ---- The place ---------------------------------------------------------------------------

TEST(KBXFunctions, ThePlaceIsFileLineAndMethod) {
  auto number = NSNumber::numberWithInteger(1);
  struct Case {
    const char* rule;
    const char* file;
    unsigned long line;
    NSObject* object;
    SEL selector;
    const char* place;
  };
  for (const auto& [rule, file, line, object, selector, place] : std::initializer_list<Case>{
           {"an object's method has a minus", "a/b/C.m", 9, number, SEL("m:n:"), "C.m:9 -m:n:"},
           {"a class's method has a plus", "C", 9, NSNumber::classObject(), SEL("m"), "C:9 +m"},
           {"without an object it ends in a blank", "a/C", 9, nullptr, SEL("m"), "C:9 "},
           {"without a selector it ends in a blank", "a/C", 9, number, SEL(), "C:9 "},
           {"the line is unsigned", "C", 18446744073709551615UL, nullptr, SEL(),
            "C:18446744073709551615 "},
           {"the file is UTF-8", "x/\xC3\xA9", 0, nullptr, SEL(), "\xC3\xA9:0 "},
           {"a file that is no text prints as null", "\xFF", 1, number, SEL("m"), "(null) -m"}}) {
    SCOPED_TRACE(rule);
    RecordingLog log;
    KBXFunctions::logFile(file, line, object, selector, "text"_ns);
    EXPECT_EQ(log.lines(), Lines{std::string(place) + "] text"});
  }
}

// ---- Raising -----------------------------------------------------------------------------

TEST(KBXFunctions, RaisingMakesTheLibrarysException) {
  RecordingLog log;
  auto info = NSDictionary::dictionaryWithPairs({{"a"_ns, "b"_ns}});
  auto raised = raisedBy([&] {
    KBXFunctions::raiseFile(kFile, 3, nullptr, SEL(), "Name"_ns, info, "%@ of %d"_ns, "one"_ns, 2);
  });
  auto* exception = cast<KBXException>(raised);
  ASSERT_TRUE(exception);
  EXPECT_EQ(text(exception->name()), "Name");
  EXPECT_EQ(text(exception->kbxReason()), "one of 2");
  EXPECT_EQ(text(exception->reason()), "one of 2 at NSUserDefaults+KBX:3 ");
  EXPECT_EQ(text(exception->userInfo()->objectForKey("a"_ns)), "b");
  EXPECT_EQ(text(locationOf(exception)), "NSUserDefaults+KBX:3 ");
  EXPECT_EQ(info->count(), 1U);
  EXPECT_TRUE(log.lines().empty());
}

TEST(KBXFunctions, AnAbsentNameAndUserInfoHaveDefaults) {
  auto raised =
      raisedBy([] { KBXFunctions::raiseFile("f", 1, nullptr, SEL(), nullptr, nullptr, "r"_ns); });
  ASSERT_TRUE(raised);
  EXPECT_EQ(text(raised->name()), "KBXException");
  EXPECT_EQ(raised->userInfo()->count(), 1U);
}

TEST(KBXFunctions, AFailedAssertionIsLoggedAndRaised) {
  RecordingLog log;
  auto raised = raisedBy([] {
    KBXFunctions::assertionFailedForFile(kFile, 9, NSNumber::numberWithInteger(1), SEL("m:"),
                                         "%s of %d"_ns, "one", 2);
  });
  auto* exception = cast<KBXException>(raised);
  ASSERT_TRUE(exception);
  EXPECT_EQ(log.lines(), Lines{"NSUserDefaults+KBX:9 -m:: Assertion Failed: one of 2"});
  EXPECT_EQ(text(exception->name()), "KBXAssertionFailedException");
  EXPECT_EQ(text(exception->kbxReason()), "one of 2");
  EXPECT_EQ(text(locationOf(exception)), "NSUserDefaults+KBX:9 -m:");
  EXPECT_EQ(exception->userInfo()->count(), 1U);
}

TEST(KBXFunctions, APercentSignInAMessageIsNotReadAgain) {
  RecordingLog log;
  auto raised = raisedBy(
      [] { KBXFunctions::assertionFailedForFile("f", 1, nullptr, SEL(), "%@"_ns, "100%@ %d"_ns); });
  EXPECT_EQ(log.lines(), Lines{"f:1 : Assertion Failed: 100%@ %d"});
  EXPECT_EQ(text(cast<KBXException>(raised)->kbxReason()), "100%@ %d");
}

// ---- Logging -----------------------------------------------------------------------------

TEST(KBXFunctions, AFilesLineHasALoneBracket) {
  RecordingLog log;
  KBXFunctions::logFile("a/F", 5, NSNumber::classObject(), SEL("x"), "%d%%"_ns, 7);
  EXPECT_EQ(log.lines(), Lines{"F:5 +x] 7%"});
}

TEST(KBXFunctions, AFunctionsLineBeginsWithItsName) {
  RecordingLog log;
  KBXFunctions::logFunction("int f(void)", "%@ %@"_ns, "a"_ns, nullptr);
  EXPECT_EQ(log.lines(), Lines{"int f(void) a (null)"});
}

TEST(KBXFunctions, WithoutADelegateALineGoesToTheClassicLogAsItIs) {
  RecordingLog log;
  KBXFunctions::logString("50%@"_ns);
  KBXFunctions::logString(nullptr);
  EXPECT_EQ(log.lines(), (Lines{"50%@", "(null)"}));
}

TEST(KBXFunctions, ADelegateGetsEveryLineInPlaceOfTheLog) {
  RecordingLog log;
  auto listener = Listener::make();
  {
    ScopedDelegate delegate(listener);
    KBXFunctions::logString("a"_ns);
    KBXFunctions::logFunction("f", "b"_ns);
    raisedBy([] { KBXFunctions::assertionFailedForFile("F", 1, nullptr, SEL(), "c"_ns); });
  }
  KBXFunctions::logString("later"_ns);
  EXPECT_EQ(listener->lines, (Lines{"a", "f b", "F:1 : Assertion Failed: c"}));
  EXPECT_EQ(log.lines(), Lines{"later"});
}

TEST(KBXFunctions, ADelegateThatTakesNoLinesRaises) {
  auto number = NSNumber::numberWithInteger(1);
  ScopedDelegate delegate(number);
  auto raised = raisedBy([] { KBXFunctions::logString("a"_ns); });
  ASSERT_TRUE(raised);
  EXPECT_TRUE(text(raised->reason()).starts_with("-[NSNumber logString:]: unrecognized selector"));
}

}  // namespace
}  // namespace kbx
