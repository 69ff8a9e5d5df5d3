#include "NSString+KBXCreation.h"

#include <gtest/gtest.h>

#include <cstring>
#include <regex>
#include <string>

#include "NSError+KBX.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/FakeRandomSource.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

Ref<NSString> contents(std::string_view bytes) {
  TemporaryFolder folder;
  return kbxStringWithContentsOfFile(folder.write("a", bytes)->path());
}

TEST(NSStringKBXCreation, AFormatIsFilledIn) {
  const FormatArgument arguments[] = {7, "x"_ns};
  EXPECT_EQ(text(kbxStringWithFormat("%d-%@"_ns, arguments)), "7-x");
}

TEST(NSStringKBXCreation, AUniqueStringIsAUUIDInItsStandardForm) {
  const std::regex standard("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
  EXPECT_TRUE(std::regex_match(text(kbxUniqueString()), standard));
  EXPECT_NE(text(kbxUniqueString()), text(kbxUniqueString()));
}

TEST(NSStringKBXCreation, WithoutAUUIDThereIsNoUniqueString) {
  FakeRandomSource source;
  ScopedService<RandomSource> installed(source);
  EXPECT_EQ(kbxUniqueString(), nullptr);
}

TEST(NSStringKBXCreation, APrefixStandsBeforeAFullStopAndTheUUID) {
  FakeRandomSource source;
  source.hasBytes = true;
  ScopedService<RandomSource> installed(source);
  EXPECT_EQ(text(kbxUniqueString("mail"_ns)), "mail.FFFFFFFF-FFFF-4FFF-BFFF-FFFFFFFFFFFF");
}

TEST(NSStringKBXCreation, ACharsetsNameGivesItsEncoding) {
  struct Case {
    const char* name;
    std::uint64_t encoding;
  };
  for (auto [name, encoding] : {Case{"UTF-8", 4},
                                {"utf-8", 4},
                                {"uTf-8", 4},
                                {"US-ASCII", 1},
                                {"ISO-8859-1", 5},
                                {"iso-8859-2", 9},
                                {"Windows-1252", 12},
                                {"UTF-16", 10},
                                {"macintosh", 30},
                                {"iso-2022-jp", 21},
                                {"\u212AOI8-R", 0x80000A02}})  // the Kelvin sign is a capital k
    EXPECT_EQ(std::uint64_t{kbxStringEncodingForMIMEEncoding(string(name))}, encoding) << name;
}

TEST(NSStringKBXCreation, AnUnknownOrAbsentCharsetIsLatin1) {
  EXPECT_EQ(kbxStringEncodingForMIMEEncoding(nullptr), 5u);
  for (const char* name : {"", "x-unknown", "utf 8", "日本"})
    EXPECT_EQ(kbxStringEncodingForMIMEEncoding(string(name)), 5u) << name;
  EXPECT_EQ(
      kbxStringEncodingForMIMEEncoding(NSString::stringWithUTF16(std::u16string{u'u', 0xD800})),
      5u);
}

TEST(NSStringKBXCreation, APathsBytesBecomeText) {
  EXPECT_EQ(text(kbxStringWithFileSystemRepresentation("/tmp/é")), "/tmp/é");
  EXPECT_EQ(text(kbxStringWithFileSystemRepresentation("/tmp/abc", 4)), "/tmp");
  EXPECT_EQ(text(kbxStringWithFileSystemRepresentation("")), "");
  EXPECT_EQ(kbxStringWithFileSystemRepresentation(nullptr), nullptr);
  EXPECT_EQ(kbxStringWithFileSystemRepresentation(nullptr, 3), nullptr);
}

TEST(NSStringKBXCreation, ACharacterIsATextOfOneUnit) {
  for (char16_t unit : {u'a', u'\0', u'é', u'\uFFFF'}) {
    EXPECT_EQ(kbxStringWithCharacter(unit)->length(), 1u);
    EXPECT_EQ(kbxStringWithCharacter(unit)->characterAtIndex(0), unit);
  }
  EXPECT_EQ(kbxStringWithCharacter(0xD83D)->characterAtIndex(0), 0xD83D) << "half a pair too";
}

TEST(NSStringKBXCreation, AScalarIsATextOfOneOrTwoUnits) {
  EXPECT_EQ(text(kbxStringWith32BitCharacter('a')), "a");
  EXPECT_EQ(text(kbxStringWith32BitCharacter(0x20AC)), "€");
  EXPECT_EQ(text(kbxStringWith32BitCharacter(0x1F600)), "😀");
  EXPECT_EQ(kbxStringWith32BitCharacter(0x10FFFF)->length(), 2u);
  EXPECT_EQ(kbxStringWith32BitCharacter(0)->length(), 1u);
  EXPECT_EQ(kbxStringWith32BitCharacter(0xFEFF)->length(), 1u) << "no byte-order mark here";
}

TEST(NSStringKBXCreation, AValueThatIsNoScalarIsAbsent) {
  for (std::uint32_t value : {0xD800u, 0xDFFFu, 0x110000u, 0xFFFFFFFFu})
    EXPECT_EQ(kbxStringWith32BitCharacter(value), nullptr) << value;
}

TEST(NSStringKBXCreation, BytesBecomeTextInTheirEncoding) {
  Ref<NSError> error;
  EXPECT_EQ(text(kbxStringWithData(data("\xE9"), NSISOLatin1StringEncoding, &error)), "é");
  EXPECT_EQ(text(kbxStringWithData(data("\x8E"), NSMacOSRomanStringEncoding, &error)), "é");
  EXPECT_EQ(text(kbxStringWithData(data("é"), NSUTF8StringEncoding, &error)), "é");
  EXPECT_EQ(text(kbxStringWithData(data(""), NSUTF8StringEncoding, &error)), "");
  EXPECT_EQ(error, nullptr);
}

TEST(NSStringKBXCreation, MalformedBytesAreError500WithoutAFrame) {
  auto bytes = data("\xFF");
  Ref<NSError> error;
  EXPECT_EQ(kbxStringWithData(bytes, NSUTF8StringEncoding, &error), nullptr);
  ASSERT_NE(error, nullptr);
  EXPECT_TRUE(kbxHasDomain(error, KBXErrorDomain(), 500));
  EXPECT_EQ(text(error->userInfo()->allKeys()->componentsJoinedByString(" "_ns)),
            "KBXInputObject KBXStringEncoding NSLocalizedFailureReason");
  EXPECT_TRUE(isSame(error->userInfo()->objectForKey("KBXInputObject"_ns), bytes.get()));
  auto* encoding = cast<NSNumber>(error->userInfo()->objectForKey("KBXStringEncoding"_ns));
  ASSERT_NE(encoding, nullptr);
  EXPECT_EQ(encoding->kind(), NSNumber::Kind::Unsigned);
  EXPECT_EQ(encoding->unsignedIntegerValue(), 4u);
  EXPECT_EQ(text(error->localizedFailureReason()), "Error decoding data to string.");
}

TEST(NSStringKBXCreation, AnUnknownEncodingIsError500Too) {
  Ref<NSError> error;
  EXPECT_EQ(kbxStringWithData(data("a"), static_cast<NSStringEncoding>(77), &error), nullptr);
  EXPECT_TRUE(kbxHasDomain(error, KBXErrorDomain(), 500));
}

TEST(NSStringKBXCreation, AbsentBytesAreWrittenAsAMarker) {
  Ref<NSError> error;
  EXPECT_EQ(kbxStringWithData(nullptr, NSUTF8StringEncoding, &error), nullptr);
  EXPECT_EQ(text(error->userInfo()->objectForKey("KBXInputObject"_ns)), "<nil>");
}

TEST(NSStringKBXCreation, NobodyNeedsToAskForTheError) {
  EXPECT_EQ(kbxStringWithData(data("\xFF"), NSUTF8StringEncoding, nullptr), nullptr);
}

TEST(NSStringKBXCreation, UTF8BytesHaveAWayOfTheirOwn) {
  EXPECT_EQ(text(kbxStringWithUTF8Data(data("日本"))), "日本");
  EXPECT_EQ(kbxStringWithUTF8Data(data("\xE9")), nullptr);
  EXPECT_EQ(kbxStringWithUTF8Data(nullptr), nullptr);
}

TEST(NSStringKBXCreation, AFilesTextIsTheFirstThatFits) {
  struct Case {
    const char* rule;
    std::string bytes;
    std::string text;
  };
  for (const auto& [rule, bytes, expected] :
       {Case{"UTF-8", "Grüße", "Grüße"},
        {"nothing", "", ""},
        {"UTF-16 little-endian with a mark", "\xFF\xFE\xE9\0"s, "é"},
        {"UTF-16 big-endian with a mark", "\xFE\xFF\0\xE9"s, "é"},
        {"UTF-16 without a mark is Roman", "\xE9\0"s, "È\0"s},
        {"UTF-16 of an odd length is Roman", "\xFF\xFE\xE9", "ˇ˛È"},
        {"Roman", "caf\x8E", "café"},
        {"Latin 1 passes for Roman", "caf\xE9", "cafÈ"}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(text(contents(bytes)), expected);
  }
}

TEST(NSStringKBXCreation, AFileThatCannotBeReadHasNoText) {
  TemporaryFolder folder;
  EXPECT_EQ(kbxStringWithContentsOfFile(folder.url("missing")->path()), nullptr);
  EXPECT_EQ(kbxStringWithContentsOfFile(folder.url()->path()), nullptr) << "a folder";
  EXPECT_EQ(kbxStringWithContentsOfFile(""_ns), nullptr);
  EXPECT_EQ(kbxStringWithContentsOfFile(nullptr), nullptr);
}

}  // namespace
}  // namespace kbx
