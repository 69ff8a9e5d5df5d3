#include "platform/objects/NSError.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSException.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using Info = std::initializer_list<NSDictionary::Pair>;

Ref<NSError> error(NSString* domain, std::int64_t code, Info info = {}) {
  return NSError::errorWithDomain(domain, code, NSDictionary::dictionaryWithPairs(info));
}

TEST(NSError, AnErrorKeepsWhatItIsMadeOf) {
  auto one = error("D"_ns, -7, {{"key"_ns, "value"_ns}});
  EXPECT_EQ(text(one->domain()), "D");
  EXPECT_EQ(one->code(), -7);
  EXPECT_EQ(text(one->userInfo()->objectForKey("key"_ns)), "value");
}

TEST(NSError, AnAbsentUserInfoIsEmpty) {
  EXPECT_EQ(NSError::errorWithDomain("D"_ns, 1, nullptr)->userInfo()->count(), 0U);
}

TEST(NSError, AnErrorHasADomain) {
  EXPECT_THROW(NSError::errorWithDomain(nullptr, 1, nullptr), Raised);
}

TEST(NSError, AMutableUserInfoIsCopied) {
  auto info = NSMutableDictionary::dictionary();
  info->setObjectForKey("before"_ns, "key"_ns);
  auto one = NSError::errorWithDomain("D"_ns, 1, info);
  info->setObjectForKey("after"_ns, "key"_ns);
  EXPECT_EQ(text(one->userInfo()->objectForKey("key"_ns)), "before");
}

TEST(NSError, TheDescriptionIsTheFirstOfWhatIsKnown) {
  auto* reason = NSLocalizedFailureReasonErrorKey();
  struct Case {
    const char* rule;
    Ref<NSError> error;
    const char *description, *reason;
  };
  const Case cases[] = {
      {"its own words", error("D"_ns, 1, {{NSLocalizedDescriptionKey(), "Words."_ns}}), "Words.",
       "(null)"},
      {"its own reason", error("D"_ns, 1, {{reason, "Because."_ns}}),
       "The operation couldn’t be completed. Because.", "Because."},
      {"words that are no text",
       error("D"_ns, 1, {{NSLocalizedDescriptionKey(), NSNumber::numberWithInteger(1)}}),
       "The operation couldn’t be completed. (D error 1.)", "(null)"},
      {"domain and code", error("D"_ns, -1), "The operation couldn’t be completed. (D error -1.)",
       "(null)"},
      {"a POSIX code", posixError(ENOENT),
       "The operation couldn’t be completed. No such file or directory",
       "No such file or directory"},
      {"a POSIX code that no system has", posixError(100000),
       "The operation couldn’t be completed. Unknown error: 100000", "Unknown error: 100000"},
      {"a number that is POSIX's in its lower half only",
       error(NSPOSIXErrorDomain(), (std::int64_t{1} << 32) + ENOENT),
       "The operation couldn’t be completed. Unknown error: 4294967298",
       "Unknown error: 4294967298"},
      {"a Cocoa code", error(NSCocoaErrorDomain(), NSFileReadNoSuchFileError),
       "The operation couldn’t be completed. The file doesn’t exist.", "The file doesn’t exist."},
      {"the code of another domain", error("D"_ns, NSFileReadNoSuchFileError),
       "The operation couldn’t be completed. (D error 260.)", "(null)"},
      {"an unknown Cocoa code", error(NSCocoaErrorDomain(), 99),
       "The operation couldn’t be completed. (NSCocoaErrorDomain error 99.)", "(null)"},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.rule);
    EXPECT_EQ(text(one.error->localizedDescription()), one.description);
    EXPECT_EQ(text(one.error->localizedFailureReason()), one.reason);
  }
}

TEST(NSError, AFailureWithAFileNamesTheFile) {
  struct Case {
    std::int64_t code;
    const char* path;
    const char* description;
  };
  for (auto [code, path, description] :
       {Case{NSFileReadNoSuchFileError, "/a/b.eml",
             "The file “b.eml” couldn’t be opened because there is no such file."},
        {NSFileReadNoPermissionError, "/a/b.eml",
         "The file “b.eml” couldn’t be opened because you don’t have permission."},
        {NSFileWriteOutOfSpaceError, "/a/%@.eml",
         "The file “%@.eml” couldn’t be saved because there isn’t enough space."},
        {NSFileNoSuchFileError, "b",
         "The file “b” couldn’t be saved because there is no such file or folder."},
        {NSFileReadUnknownError, "/", "The file “/” couldn’t be opened."},
        {NSFileWriteUnknownError, "/a/b", "The file “b” couldn’t be saved."}}) {
    SCOPED_TRACE(description);
    Ref<NSString> file = string(path);
    auto one = error(NSCocoaErrorDomain(), code, {{NSFilePathErrorKey(), file}});
    EXPECT_EQ(text(one->localizedDescription()), description);
  }
}

TEST(NSError, AnUnknownFailureWithAFileTellsItsCause) {
  auto cause = posixError(EIO);
  auto one = error(NSCocoaErrorDomain(), NSFileReadUnknownError,
                   {{NSFilePathErrorKey(), "/a/b"_ns}, {NSUnderlyingErrorKey(), cause}});
  EXPECT_EQ(text(one->localizedDescription()),
            "The file “b” couldn’t be opened: Input/output error.");
}

TEST(NSError, TheSuggestionIsTheUserInfos) {
  EXPECT_EQ(error("D"_ns, 1)->localizedRecoverySuggestion(), nullptr);
  auto one = error("D"_ns, 1, {{NSLocalizedRecoverySuggestionErrorKey(), "Try again."_ns}});
  EXPECT_EQ(text(one->localizedRecoverySuggestion()), "Try again.");
}

TEST(NSError, ItPrintsOnOneLine) {
  EXPECT_EQ(text(error("D"_ns, 3)),
            "Error Domain=D Code=3 \"The operation couldn’t be completed. (D error 3.)\"");
  auto one =
      error("D"_ns, INT64_MIN,
            {{NSLocalizedDescriptionKey(), "Words."_ns}, {"b"_ns, "1"_ns}, {"a"_ns, "2"_ns}});
  EXPECT_EQ(text(one),
            "Error Domain=D Code=-9223372036854775808 \"Words.\" "
            "UserInfo={NSLocalizedDescription=Words., b=1, a=2}");
}

TEST(NSError, EqualityAsksForDomainCodeAndUserInfo) {
  auto make = [] { return error("D"_ns, 1, {{"a"_ns, "1"_ns}}); };
  EXPECT_TRUE(isEqual(make(), make()));
  EXPECT_EQ(make()->hash(), make()->hash());
  EXPECT_FALSE(isEqual(make(), error("E"_ns, 1, {{"a"_ns, "1"_ns}})));
  EXPECT_FALSE(isEqual(make(), error("D"_ns, 2, {{"a"_ns, "1"_ns}})));
  EXPECT_FALSE(isEqual(make(), error("D"_ns, 1, {{"a"_ns, "2"_ns}})));
  EXPECT_FALSE(isEqual(make(), error("D"_ns, 1)));
  EXPECT_FALSE(isEqual(make(), "D"_ns));
  EXPECT_FALSE(make()->isEqual(nullptr));
}

TEST(NSError, AChainOfCausesOfAnyLengthIsReleasedAndCompared) {
  auto chain = [](int length) {
    Ref<NSError> one = posixError(EIO);
    for (int i = 0; i < length; ++i) one = error("D"_ns, i, {{NSUnderlyingErrorKey(), one}});
    return one;
  };
  auto one = chain(200000), same = chain(200000);
  EXPECT_TRUE(isEqual(one, same));
  EXPECT_FALSE(isEqual(one, chain(199999)));
  EXPECT_NE(text(one).find("..."), std::string::npos);
}

}  // namespace
}  // namespace kbx
