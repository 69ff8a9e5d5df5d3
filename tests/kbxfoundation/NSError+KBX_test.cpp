#include "NSError+KBX.h"

#include <cstdlib>

#include "platform/files/NSURL.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

Ref<NSError> bare() { return NSError::errorWithDomain("D"_ns, 7, nullptr); }

Ref<NSDictionary> pairs(std::initializer_list<NSDictionary::Pair> list) {
  return NSDictionary::dictionaryWithPairs(list);
}

NSObject* valueOf(NSError* error, NSString* key) { return error->userInfo()->objectForKey(key); }
std::string textOf(NSError* error, NSString* key) { return text(valueOf(error, key)); }

std::string frames(NSError* error) {
  auto* array = cast<NSArray>(valueOf(error, "KBXStackFrames"_ns));
  return array ? text(array->componentsJoinedByString("\n"_ns)) : "";
}

/// Domain, code and the keys in their order.
std::string shape(NSError* error) {
  std::string result = text(error->domain()) + " " + std::to_string(error->code());
  for (const auto& entry : *error->userInfo()) result += " " + text(entry.key);
  return result;
}

// ---- Constructors ------------------------------------------------------------------------

TEST(NSErrorKBX, AnErrorNamesTheCodeThatFailed) {
  auto error = kbxErrorWithDomain("D"_ns, -3, "a/b.m", 12, "-[A b\xC3\xA9]", "open(x)",
                                  pairs({{"more"_ns, "1"_ns}, {"KBXLine"_ns, "old"_ns}}));
  EXPECT_EQ(shape(error), "D -3 more KBXLine KBXFile KBXFunction KBXCodeString");
  EXPECT_EQ(textOf(error, "more"_ns), "1");
  EXPECT_EQ(textOf(error, "KBXFile"_ns), "a/b.m");
  EXPECT_EQ(textOf(error, "KBXFunction"_ns), "-[A b\xC3\xA9]");
  EXPECT_EQ(textOf(error, "KBXCodeString"_ns), "open(x)");
  auto* line = cast<NSNumber>(valueOf(error, "KBXLine"_ns));
  ASSERT_TRUE(line);
  EXPECT_EQ(line->kind(), NSNumber::Kind::Unsigned);
  EXPECT_EQ(line->unsignedIntegerValue(), 12U);
}

TEST(NSErrorKBX, AnErrorThatNamesTheCodeNeedsNoUserInfo) {
  EXPECT_EQ(shape(kbxErrorWithDomain("D"_ns, 0, "", 0, "", "", nullptr)),
            "D 0 KBXFile KBXLine KBXFunction KBXCodeString");
}

TEST(NSErrorKBX, TheCodesTextsAreRequired) {
  for (const char* bad : {static_cast<const char*>(nullptr), "\xFF"}) {
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(nameRaisedBy([=] {
                  kbxErrorWithDomain("D"_ns, 1, i == 0 ? bad : "f", 1, i == 1 ? bad : "f",
                                     i == 2 ? bad : "f", nullptr);
                }),
                "NSInvalidArgumentException");
    }
  }
}

TEST(NSErrorKBX, AFailedRequirementNamesIt) {
  auto error = kbxRequirementFailedError("data"_ns);
  EXPECT_EQ(shape(error), "KBXErrorDomain 901 NSLocalizedDescription KBXFailingObject");
  EXPECT_EQ(textOf(error, NSLocalizedDescriptionKey()),
            "The requirement \xE2\x80\x9C"
            "data\xE2\x80\x9D was not satisfied.");
  EXPECT_EQ(textOf(error, "KBXFailingObject"_ns), "data");
}

TEST(NSErrorKBX, AnAbsentRequirementIsStoredAsTheEmptyText) {
  auto error = kbxRequirementFailedError(nullptr);
  EXPECT_EQ(textOf(error, "KBXFailingObject"_ns), "");
  EXPECT_EQ(textOf(error, NSLocalizedDescriptionKey()),
            "The requirement “(null)” was not satisfied.");
}

TEST(NSErrorKBX, AFailedRequirementKeepsOtherUserInfoAndReplacesItsOwn) {
  auto info = pairs({{"more"_ns, "1"_ns},
                     {"KBXFailingObject"_ns, "old"_ns},
                     {NSLocalizedDescriptionKey(), "old"_ns}});
  auto error = kbxRequirementFailedError("url"_ns, info);
  EXPECT_EQ(shape(error), "KBXErrorDomain 901 more KBXFailingObject NSLocalizedDescription");
  EXPECT_EQ(textOf(error, "KBXFailingObject"_ns), "url");
  EXPECT_EQ(textOf(error, NSLocalizedDescriptionKey()), "The requirement “url” was not satisfied.");
  EXPECT_EQ(text(info->objectForKey("KBXFailingObject"_ns)), "old");
}

TEST(NSErrorKBX, AFailedRequirementHasNoSuggestionWithoutAStackTrace) {
  EXPECT_EQ(valueOf(kbxRequirementFailedError("x"_ns), NSLocalizedRecoverySuggestionErrorKey()),
            nullptr);
}

NSObject* stackTraceOfTheTest(NSObject*, SEL) { return Ref<NSString>("main (1)"_ns).leak(); }

TEST(NSErrorKBXDeathTest, TheExceptionClasssStackTraceBecomesTheSuggestion) {
  // In a process of its own, because no method can be taken out of a class again.
  EXPECT_EXIT(
      {
        NSException::classObject()->objectClass()->addMethod(
            SEL("kbxCurrentStackTrace"), reinterpret_cast<IMP>(&stackTraceOfTheTest), "@@:");
        auto error = kbxRequirementFailedError("x"_ns);
        std::_Exit(textOf(error, NSLocalizedRecoverySuggestionErrorKey()) == "main (1)" ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST(NSErrorKBX, AnErrorWithACodeHasTheFailingObjectAlone) {
  auto error = kbxErrorWithCode(1402, NSNumber::numberWithInteger(5));
  EXPECT_EQ(shape(error), "KBXErrorDomain 1402 KBXFailingObject");
  EXPECT_EQ(textOf(error, "KBXFailingObject"_ns), "5");
  EXPECT_EQ(textOf(kbxErrorWithCode(1, nullptr), "KBXFailingObject"_ns), "<nil>");
}

TEST(NSErrorKBX, AnUnsupportedKeyIsToldWithThePath) {
  auto error = kbxErrorWithUnsupportedKey("size"_ns, NSURL::fileURLWithPath("/a b/c"_ns));
  EXPECT_EQ(shape(error), "KBXErrorDomain 1001 KBXFailingKey NSFilePath");
  EXPECT_EQ(textOf(error, "KBXFailingKey"_ns), "size");
  EXPECT_EQ(textOf(error, NSFilePathErrorKey()), "/a b/c");
  EXPECT_EQ(textOf(kbxErrorWithUnsupportedKey("k"_ns, nullptr), NSFilePathErrorKey()), "<nil>");
}

TEST(NSErrorKBX, AnUnsupportedKeyIsRequired) {
  EXPECT_EQ(nameRaisedBy([] { kbxErrorWithUnsupportedKey(nullptr, nullptr); }),
            "NSInvalidArgumentException");
}

TEST(NSErrorKBX, AFileOfAnotherKindIsCocoas259) {
  auto error =
      kbxErrorWithFailingObject("x"_ns, NSArray::classObject(), NSURL::fileURLWithPath("/a"_ns));
  EXPECT_EQ(shape(error),
            "NSCocoaErrorDomain 259 NSFilePath KBXFailingObject KBXExpectedType KBXActualType");
  EXPECT_EQ(textOf(error, NSFilePathErrorKey()), "/a");
  EXPECT_EQ(textOf(error, "KBXFailingObject"_ns), "x");
  EXPECT_EQ(textOf(error, "KBXExpectedType"_ns), "NSArray");
  EXPECT_EQ(textOf(error, "KBXActualType"_ns), "NSString");
}

TEST(NSErrorKBX, AFileOfAnotherKindHasAMarkerForEachAbsentValue) {
  auto error = kbxErrorWithFailingObject(nullptr, nullptr, nullptr);
  EXPECT_EQ(textOf(error, NSFilePathErrorKey()), "<nil>");
  EXPECT_TRUE(isSame(valueOf(error, "KBXFailingObject"_ns), NSNull::null()));
  EXPECT_EQ(textOf(error, "KBXExpectedType"_ns), "<nil>");
  EXPECT_TRUE(isSame(valueOf(error, "KBXActualType"_ns), NSNull::null()));
}

TEST(NSErrorKBX, AnUnexpectedValueIsToldWithTheExpectedOne) {
  auto error = kbxErrorWithActualValue(NSNumber::numberWithInteger(1), "two"_ns, "count"_ns);
  EXPECT_EQ(shape(error),
            "KBXErrorDomain 2000 KBXActualValue KBXExpectedValue KBXFailingKey "
            "NSLocalizedDescription");
  EXPECT_EQ(textOf(error, "KBXActualValue"_ns), "1");
  EXPECT_EQ(textOf(error, "KBXExpectedValue"_ns), "two");
  EXPECT_EQ(textOf(error, "KBXFailingKey"_ns), "count");
  EXPECT_EQ(textOf(error, NSLocalizedDescriptionKey()),
            "The value for count was expected to be two but was 1.");
}

TEST(NSErrorKBX, AbsentValuesAreMarkedInTheEntriesAndPrintedInTheDescription) {
  auto error = kbxErrorWithActualValue(nullptr, nullptr, nullptr);
  for (auto* key : {"KBXActualValue"_ns, "KBXExpectedValue"_ns, "KBXFailingKey"_ns})
    EXPECT_EQ(textOf(error, key), "<nil>");
  EXPECT_EQ(textOf(error, NSLocalizedDescriptionKey()),
            "The value for (null) was expected to be (null) but was (null).");
}

TEST(NSErrorKBX, AnErrorOfTheLibrarysDomainHasTheUserInfoGiven) {
  EXPECT_EQ(shape(KBXError1(902, pairs({{"a"_ns, "b"_ns}}))), "KBXErrorDomain 902 a");
  EXPECT_EQ(shape(KBXError1(-5, nullptr)), "KBXErrorDomain -5");
}

// ---- The check ---------------------------------------------------------------------------

TEST(NSErrorKBX, EqualValuesMatch) {
  Ref<NSError> error;
  auto one = NSNumber::numberWithInteger(1);
  EXPECT_TRUE(kbxCheckValue(string("a"), string("a"), "k"_ns, &error));
  EXPECT_TRUE(kbxCheckValue(one, NSNumber::numberWithDouble(1), "k"_ns, &error));
  EXPECT_EQ(error, nullptr);
}

TEST(NSErrorKBX, AMismatchIsError2000WithAFrame) {
  Ref<NSError> error;
  EXPECT_FALSE(kbxCheckValue("1"_ns, NSNumber::numberWithInteger(1), "k"_ns, &error));
  ASSERT_TRUE(error);
  EXPECT_TRUE(kbxHasDomain(error, "KBXErrorDomain"_ns, 2000));
  EXPECT_EQ(frames(error), "+[NSError(KBX) kbxCheckValue:matchesValue:forKey:error:] (332)");
}

TEST(NSErrorKBX, AbsentMatchesNothingNotEvenAbsent) {
  Ref<NSError> error;
  EXPECT_FALSE(kbxCheckValue(nullptr, nullptr, nullptr, &error));
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code(), 2000);
  for (auto* key : {"KBXActualValue"_ns, "KBXExpectedValue"_ns, "KBXFailingKey"_ns})
    EXPECT_EQ(textOf(error, key), "<nil>");
  EXPECT_FALSE(kbxCheckValue("a"_ns, nullptr, "k"_ns, nullptr));
  EXPECT_FALSE(kbxCheckValue(nullptr, "a"_ns, "k"_ns, nullptr));
}

// ---- Decorators --------------------------------------------------------------------------

TEST(NSErrorKBX, SettingAnEntryMakesANewErrorAndLeavesTheOldOne) {
  auto error = KBXError1(3, pairs({{"a"_ns, "1"_ns}, {"b"_ns, "2"_ns}}));
  auto set = kbxErrorBySettingObject(error, "new"_ns, "a"_ns);
  EXPECT_EQ(shape(set), "KBXErrorDomain 3 a b");
  EXPECT_EQ(textOf(set, "a"_ns), "new");
  EXPECT_EQ(textOf(set, "b"_ns), "2");
  EXPECT_EQ(textOf(error, "a"_ns), "1");
}

TEST(NSErrorKBX, SettingAnAbsentValueStoresAMarker) {
  EXPECT_EQ(textOf(kbxErrorBySettingObject(bare(), nullptr, "k"_ns), "k"_ns), "<nil>");
}

TEST(NSErrorKBX, SettingUnderAnAbsentKeyGivesAnEqualCopy) {
  auto error = KBXError1(3, pairs({{"a"_ns, "1"_ns}}));
  auto copy = kbxErrorBySettingObject(error, "x"_ns, nullptr);
  EXPECT_TRUE(isEqual(copy, error));
  EXPECT_FALSE(isSame(copy, error));
}

TEST(NSErrorKBX, AddingUserInfoSetsEachEntry) {
  auto error = KBXError1(3, pairs({{"a"_ns, "1"_ns}, {"b"_ns, "2"_ns}}));
  auto added = kbxErrorByAddingUserInfo(error, pairs({{"c"_ns, "3"_ns}, {"a"_ns, "4"_ns}}));
  EXPECT_EQ(shape(added), "KBXErrorDomain 3 a b c");
  EXPECT_EQ(textOf(added, "a"_ns), "4");
  EXPECT_EQ(textOf(added, "c"_ns), "3");
  EXPECT_EQ(shape(error), "KBXErrorDomain 3 a b");
}

TEST(NSErrorKBX, AddingNothingGivesTheVerySameError) {
  auto error = bare();
  EXPECT_TRUE(isSame(kbxErrorByAddingUserInfo(error, NSDictionary::dictionary()), error));
  EXPECT_TRUE(isSame(kbxErrorByAddingUserInfo(error, nullptr), error));
}

TEST(NSErrorKBX, AModeIsWrittenInOctalDigits) {
  struct Case {
    std::uint32_t mode;
    const char* digits;
  };
  for (auto [mode, digits] : {Case{0644, "644"}, {0, "0"}, {0100755, "100755"}})
    EXPECT_EQ(textOf(kbxErrorBySettingMode(bare(), mode, "m"_ns), "m"_ns), digits);
}

TEST(NSErrorKBX, EachDecoratorSetsItsKey) {
  auto url = NSURL::fileURLWithPath("/tmp/a b"_ns, true);
  auto cause = bare();
  struct Case {
    Ref<NSError> error;
    const char* key;
    Ref<NSObject> value;
  };
  for (const auto& [error, key, value] : std::initializer_list<Case>{
           {kbxErrorBySettingFilePath(bare(), "/p"_ns), "NSFilePath", "/p"_ns},
           {kbxErrorBySettingFileURL(bare(), url), "NSFilePath", "/tmp/a b"_ns},
           {kbxErrorBySettingCFilePath(bare(), "/c/\xC3\xA9"), "NSFilePath", string("/c/é")},
           {kbxErrorBySettingURL(bare(), url), "NSURL", url},
           {kbxErrorBySettingDestinationFilePath(bare(), "/d"_ns), "NSDestinationFilePath",
            "/d"_ns},
           {kbxErrorBySettingDescription(bare(), "text"_ns), "NSLocalizedDescription", "text"_ns},
           {kbxErrorBySettingRecoverySuggestion(bare(), "try"_ns), "NSLocalizedRecoverySuggestion",
            "try"_ns},
           {kbxErrorBySettingUnderlyingError(bare(), cause), "NSUnderlyingError", cause},
           {kbxErrorBySettingUnderlyingReason(bare(), "why"_ns), "KBXUnderlyingReason", "why"_ns},
           {kbxErrorBySettingFailingObject(bare(), "it"_ns), "KBXFailingObject", "it"_ns},
           {kbxErrorBySettingArguments(bare(), "args"_ns), "KBXArguments", "args"_ns},
           {kbxErrorBySettingHelpAnchor(bare(), "there"_ns), "NSHelpAnchor", "there"_ns}}) {
    SCOPED_TRACE(key);
    EXPECT_EQ(shape(error), std::string("D 7 ") + key);
    EXPECT_TRUE(isEqual(valueOf(error, string(key)), value));
  }
}

TEST(NSErrorKBX, EachDecoratorHasItsMarkerForAnAbsentValue) {
  auto marker = [](NSError* error) { return text(error->userInfo()->begin()->value); };
  EXPECT_EQ(marker(kbxErrorBySettingFilePath(bare(), nullptr)), "<nil>");
  EXPECT_EQ(marker(kbxErrorBySettingFileURL(bare(), nullptr)), "<nil>");
  EXPECT_EQ(marker(kbxErrorBySettingCFilePath(bare(), nullptr)), "<nil>");
  EXPECT_EQ(marker(kbxErrorBySettingURL(bare(), nullptr)), "<nil>");
  EXPECT_EQ(marker(kbxErrorBySettingDestinationFilePath(bare(), nullptr)), "<nil>");
  EXPECT_EQ(marker(kbxErrorBySettingDescription(bare(), nullptr)), "<nil>");
  EXPECT_EQ(marker(kbxErrorBySettingRecoverySuggestion(bare(), nullptr)), "<nil>");
  EXPECT_EQ(marker(kbxErrorBySettingUnderlyingError(bare(), nullptr)), "<nil>");
  EXPECT_EQ(marker(kbxErrorBySettingUnderlyingReason(bare(), nullptr)), "<nil>");
  EXPECT_EQ(marker(kbxErrorBySettingFailingObject(bare(), nullptr)), "<null>");
  EXPECT_EQ(marker(kbxErrorBySettingArguments(bare(), nullptr)), "<null>");
  EXPECT_EQ(marker(kbxErrorBySettingHelpAnchor(bare(), nullptr)), "");
}

TEST(NSErrorKBX, AFailingObjectIsToldWithItsClassAndTheExpectedOne) {
  auto error = kbxErrorBySettingFailingObject(bare(), NSNumber::numberWithBool(true),
                                              NSString::classObject());
  EXPECT_EQ(shape(error), "D 7 KBXFailingObject KBXExpectedType KBXActualType");
  EXPECT_TRUE(isSame(valueOf(error, "KBXExpectedType"_ns), NSString::classObject()));
  EXPECT_TRUE(isSame(valueOf(error, "KBXActualType"_ns), NSNumber::classObject()));
}

TEST(NSErrorKBX, AnAbsentFailingObjectHasTheNullMarkerForItsClassToo) {
  auto error = kbxErrorBySettingFailingObject(bare(), nullptr, nullptr);
  EXPECT_TRUE(isSame(valueOf(error, "KBXFailingObject"_ns), NSNull::null()));
  EXPECT_EQ(textOf(error, "KBXExpectedType"_ns), "<nil>");
  EXPECT_TRUE(isSame(valueOf(error, "KBXActualType"_ns), NSNull::null()));
}

TEST(NSErrorKBX, AClassThatFailsIsItsOwnClass) {
  auto error = kbxErrorBySettingFailingObject(bare(), NSNumber::classObject(), nullptr);
  EXPECT_TRUE(isSame(valueOf(error, "KBXActualType"_ns), NSNumber::classObject()));
}

TEST(NSErrorKBX, DecoratingAnAbsentErrorGivesAnAbsentError) {
  EXPECT_EQ(kbxErrorBySettingObject(nullptr, "v"_ns, "k"_ns), nullptr);
  EXPECT_EQ(kbxErrorByAddingUserInfo(nullptr, pairs({{"a"_ns, "b"_ns}})), nullptr);
  EXPECT_EQ(kbxErrorBySettingMode(nullptr, 1, "k"_ns), nullptr);
  EXPECT_EQ(kbxErrorBySettingCFilePath(nullptr, "/"), nullptr);
  EXPECT_EQ(kbxErrorByAddingStackFrame(nullptr, "f", 1), nullptr);
  EXPECT_EQ(kbxErrorBySettingFailingObject(nullptr, nullptr, nullptr), nullptr);
}

// ---- Stack frames ------------------------------------------------------------------------

TEST(NSErrorKBX, TheNewestFrameStandsFirst) {
  auto error = kbxErrorByAddingStackFrame(bare(), "a", 1);
  error = kbxErrorByAddingStackFrame(error, "b", 2);
  auto* array = cast<NSArray>(valueOf(error, "KBXStackFrames"_ns));
  ASSERT_TRUE(array);
  ASSERT_EQ(array->count(), 2U);
  EXPECT_EQ(text(array->objectAtIndex(0)), "b (2)");
  EXPECT_EQ(text(array->objectAtIndex(1)), "a (1)");
}

TEST(NSErrorKBX, AFrameKeepsDomainCodeAndUserInfoOfAPlatformError) {
  auto platform =
      NSError::errorWithDomain(NSPOSIXErrorDomain(), 13, pairs({{"NSFilePath"_ns, "/a"_ns}}));
  auto error = kbxErrorByAddingStackFrame(platform, "int f(void)", 4294967297UL);
  EXPECT_EQ(shape(error), "NSPOSIXErrorDomain 13 NSFilePath KBXStackFrames");
  EXPECT_EQ(frames(error), "int f(void) (4294967297)");
}

TEST(NSErrorKBX, ASignatureIsUTF8) {
  EXPECT_EQ(frames(kbxErrorByAddingStackFrame(bare(), "-[A \xC3\xA9:]", 1)), "-[A é:] (1)");
  EXPECT_EQ(frames(kbxErrorByAddingStackFrame(bare(), nullptr, 1)), "(null) (1)");
}

TEST(NSErrorKBX, WhatIsNoListOfFramesIsReplaced) {
  auto error = kbxErrorBySettingObject(bare(), "odd"_ns, "KBXStackFrames"_ns);
  EXPECT_EQ(frames(kbxErrorByAddingStackFrame(error, "f", 1)), "f (1)");
}

// ---- Queries -----------------------------------------------------------------------------

TEST(NSErrorKBX, DomainAndCodeAreAskedTogether) {
  auto error = NSError::errorWithDomain(string("D"), 7, nullptr);
  EXPECT_TRUE(kbxHasDomain(error, "D"_ns, 7));
  EXPECT_FALSE(kbxHasDomain(error, "D"_ns, 8));
  EXPECT_FALSE(kbxHasDomain(error, "E"_ns, 7));
  EXPECT_FALSE(kbxHasDomain(error, nullptr, 7));
  EXPECT_FALSE(kbxHasDomain(nullptr, "D"_ns, 7));
}

TEST(NSErrorKBX, PermissionsErrorsAreAFixedSet) {
  struct Case {
    NSString* domain;
    std::int64_t code;
    bool answer;
  };
  for (auto [domain, code, answer] : {Case{NSCocoaErrorDomain(), 513, true},
                                      {NSCocoaErrorDomain(), 512, true},
                                      {NSPOSIXErrorDomain(), 13, true},
                                      {NSCocoaErrorDomain(), 13, true},
                                      {NSCocoaErrorDomain(), 257, false},
                                      {NSPOSIXErrorDomain(), 513, false},
                                      {NSPOSIXErrorDomain(), 1, false},
                                      {NSOSStatusErrorDomain(), 13, false},
                                      {KBXErrorDomain(), 513, false}}) {
    SCOPED_TRACE(text(domain) + " " + std::to_string(code));
    EXPECT_EQ(kbxIsFilePermissionsError(NSError::errorWithDomain(domain, code, nullptr)), answer);
  }
  EXPECT_FALSE(kbxIsFilePermissionsError(nullptr));
}

// ---- How a function fails ----------------------------------------------------------------

Ref<NSString> firstWord(NSString* text, Ref<NSError>* error) {
  constexpr Frame frame{"NSString *firstWord(NSString *, NSError **)", 71};
  KBX_REQUIRE(text, "text", frame, error);
  return text;
}

bool printFirstWord(NSString* text, Ref<NSError>* error) {
  if (firstWord(text, error)) return true;
  passOn(error, {"BOOL printFirstWord(NSString *, NSError **)", 2});
  return false;
}

TEST(NSErrorKBX, FramesListTheOutermostCallerFirst) {
  Ref<NSError> error;
  EXPECT_FALSE(printFirstWord(nullptr, &error));
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code(), 901);
  EXPECT_EQ(textOf(error, "KBXFailingObject"_ns), "text");
  EXPECT_EQ(frames(error),
            "BOOL printFirstWord(NSString *, NSError **) (2)\n"
            "NSString *firstWord(NSString *, NSError **) (71)");
}

TEST(NSErrorKBX, ASatisfiedRequirementLeavesTheErrorAlone) {
  Ref<NSError> error;
  EXPECT_TRUE(printFirstWord("a"_ns, &error));
  EXPECT_EQ(error, nullptr);
}

TEST(NSErrorKBX, NothingIsMadeWithoutAnOutParameter) {
  EXPECT_FALSE(printFirstWord(nullptr, nullptr));
  bool isMade = false;
  fail(nullptr, {"f", 1}, [&] {
    isMade = true;
    return bare();
  });
  EXPECT_FALSE(isMade);
}

TEST(NSErrorKBX, NoFrameIsAddedToAnErrorThatDidNotCome) {
  Ref<NSError> error;
  passOn(&error, {"f", 1});
  EXPECT_EQ(error, nullptr);
}

}  // namespace
}  // namespace kbx
