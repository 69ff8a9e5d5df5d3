#include "NSError+KBXException.h"

#include <cstdlib>

#include "KBXException.h"
#include "NSError+KBX.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

/// An exception that knows where it came from, as far as the test says.
class TracedException : public NSException {
  KBX_OBJECT(TracedException, NSException)
 public:
  static Ref<TracedException> make() { return Ref<TracedException>::adopt(new TracedException); }
  Ref<NSObject> kbxStackTrace() const { return trace; }
  Ref<NSObject> kbxShortStackTrace() const { return "short"_ns; }

  Ref<NSObject> trace = "own"_ns;

 private:
  TracedException() : NSException("N"_ns, "R"_ns, nullptr) {}
};
KBX_CLASS(TracedException)

NSObject* currentTrace(NSObject*, SEL) { return Ref<NSString>("current"_ns).leak(); }

[[maybe_unused]] const bool isTracing =
    addMethod<&TracedException::kbxStackTrace>(TracedException::classObject(), "kbxStackTrace") &&
    addMethod<&TracedException::kbxShortStackTrace>(TracedException::classObject(),
                                                    "kbxShortStackTrace") &&
    TracedException::classObject()->objectClass()->addMethod(
        SEL("kbxCurrentStackTrace"), reinterpret_cast<IMP>(&currentTrace), "@@:");

std::string textOf(NSError* error, NSString* key) {
  return text(error->userInfo()->objectForKey(key));
}

/// The keys in their order.
std::string keys(NSError* error) {
  std::string result;
  for (const auto& entry : *error->userInfo()) result += text(entry.key) + " ";
  return result;
}

TEST(NSErrorKBXException, AnExceptionBecomesError5) {
  auto error = kbxErrorFromException(NSException::exceptionWithName(
      "N"_ns, "R"_ns,
      NSDictionary::dictionaryWithPairs(
          {{"more"_ns, "1"_ns}, {NSLocalizedDescriptionKey(), "old"_ns}})));
  EXPECT_TRUE(kbxHasDomain(error, "KBXErrorDomain"_ns, 5));
  EXPECT_EQ(keys(error),
            "more NSLocalizedDescription NSLocalizedFailureReason NSLocalizedRecoverySuggestion ");
  EXPECT_EQ(textOf(error, "more"_ns), "1");
  EXPECT_EQ(textOf(error, NSLocalizedDescriptionKey()), "N");
  EXPECT_EQ(textOf(error, NSLocalizedFailureReasonErrorKey()), "N - R\nStack Trace: <unknown>");
  EXPECT_EQ(textOf(error, NSLocalizedRecoverySuggestionErrorKey()), "R");
}

TEST(NSErrorKBXException, TheLibrarysExceptionTellsItsLocation) {
  auto error = kbxErrorFromException(KBXException::exceptionWithName(
      "N"_ns, "x"_ns, NSDictionary::dictionaryWithPairs({{"KBXExceptionLocation"_ns, "L"_ns}})));
  EXPECT_EQ(textOf(error, "KBXExceptionLocation"_ns), "L");
  EXPECT_EQ(textOf(error, NSLocalizedFailureReasonErrorKey()),
            "N - x at L\nStack Trace: <unknown>");
  EXPECT_EQ(textOf(error, NSLocalizedRecoverySuggestionErrorKey()), "x at L");
}

TEST(NSErrorKBXException, AnExceptionsTracesAreTold) {
  auto error = kbxErrorFromException(TracedException::make());
  EXPECT_EQ(keys(error),
            "NSLocalizedDescription NSLocalizedFailureReason KBXShortFailureReason "
            "NSLocalizedRecoverySuggestion ");
  EXPECT_EQ(textOf(error, NSLocalizedFailureReasonErrorKey()), "N - R\nStack Trace: own");
  EXPECT_EQ(textOf(error, "KBXShortFailureReason"_ns), "N - R\nStack Trace: short");
}

TEST(NSErrorKBXException, TheCurrentTraceStandsInForAnAbsentOne) {
  auto exception = TracedException::make();
  exception->trace = nullptr;
  EXPECT_EQ(textOf(kbxErrorFromException(exception), NSLocalizedFailureReasonErrorKey()),
            "N - R\nStack Trace: current");
}

TEST(NSErrorKBXException, WhatHasNoNameOrReasonCannotBeConverted) {
  for (const auto& exception :
       {NSException::exceptionWithName("N"_ns, nullptr, nullptr),
        NSException::exceptionWithName(nullptr, "R"_ns, nullptr), Ref<NSException>()})
    EXPECT_EQ(nameRaisedBy([&] { kbxErrorFromException(exception); }),
              "NSInvalidArgumentException");
}

TEST(NSErrorKBXException, NoEditionIsToldWhileOnlyTheClassAnswers) {
  auto error = kbxErrorFromException(NSException::exceptionWithName("N"_ns, "R"_ns, nullptr));
  EXPECT_EQ(error->userInfo()->objectForKey("KBXIsMacAppStoreVersion"_ns), nullptr);
  EXPECT_EQ(error->userInfo()->objectForKey("KBXIsInAppSandbox"_ns), nullptr);
}

// ---- Where the object that stands for the process answers ----------------------------------

signed char yes(NSObject*, SEL) { return 1; }
signed char no(NSObject*, SEL) { return 0; }

NSClass* processInfoClass() {
  NSClass* known = NSClass::named("NSProcessInfo");
  return known ? known : NSClass::make("NSProcessInfo", NSObject::classObject());
}

class Process final : public NSObject {
 public:
  NSClass* objectClass() const noexcept override { return processInfoClass(); }
};

NSObject* currentProcess(NSObject*, SEL) { return new Process; }

template <class Body>
void define(NSClass* target, const char* name, Body* body, const char* types) {
  const SEL selector(name);
  const auto implementation = reinterpret_cast<IMP>(body);
  if (target->addMethod(selector, implementation, types)) return;
  *target->instanceMethod(selector) = Method{selector, implementation, types};
}

using Answer = signed char(NSObject*, SEL);

/// The keys that an exception's error has beyond the usual three. For a process of its own, because
/// no method can be taken out of a class again.
std::string editionKeys(Answer* isStoreVersion, Answer* isInSandbox) {
  NSClass* processInfo = processInfoClass();
  define(processInfo->objectClass(), "processInfo", &currentProcess, "@@:");
  if (isStoreVersion) define(processInfo, "kbxIsMacAppStoreVersion", isStoreVersion, "c@:");
  define(processInfo->objectClass(), "kbxIsMacAppStoreVersion", &yes, "c@:");
  define(processInfo->objectClass(), "kbxIsInAppSandbox", isInSandbox, "c@:");
  auto error = kbxErrorFromException(NSException::exceptionWithName("N"_ns, "R"_ns, nullptr));
  std::string result;
  for (auto* key : {"KBXIsMacAppStoreVersion"_ns, "KBXIsInAppSandbox"_ns}) {
    auto* value = cast<NSNumber>(error->userInfo()->objectForKey(key));
    if (value && value->isBoolean() && value->boolValue()) result += text(key) + " ";
  }
  return result;
}

TEST(NSErrorKBXExceptionDeathTest, TheSandboxIsToldOnlyWhereAnObjectAnswersForTheEdition) {
  struct Case {
    const char* rule;
    Answer* isStoreVersion;  // absent: no method
    Answer* isInSandbox;
    const char* keys;
  };
  for (auto [rule, isStoreVersion, isInSandbox, keys] :
       {Case{"both are true", &yes, &yes, "KBXIsMacAppStoreVersion KBXIsInAppSandbox "},
        {"the edition alone", &yes, &no, "KBXIsMacAppStoreVersion "},
        {"the sandbox counts without the edition", &no, &yes, "KBXIsInAppSandbox "},
        {"neither", &no, &no, ""},
        {"nobody answers for the edition", nullptr, &yes, ""}}) {
    SCOPED_TRACE(rule);
    EXPECT_EXIT(std::_Exit(editionKeys(isStoreVersion, isInSandbox) == keys ? 0 : 1),
                testing::ExitedWithCode(0), "");
  }
}

}  // namespace
}  // namespace kbx
