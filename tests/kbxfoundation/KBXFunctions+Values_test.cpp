#include "KBXFunctions.h"

#include <cstring>
#include <limits>

#include "KBXException.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSGeometry.h"
#include "platform/objects/NSRange.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

template <class T>
std::string formatted(const char* encoding, T value) {
  return text(KBXFunctions::stringFromPointer(&value, encoding));
}

TEST(KBXFunctionsValues, ASignedCharacterIsABooleanOrALetter) {
  struct Case {
    int value;
    const char* output;
  };
  for (auto [value, output] :
       {Case{1, "YES"}, {0, "NO"}, {2, "'\x02'"}, {'A', "'A'"}, {-23, "'\xC3\xA9'"}})
    EXPECT_EQ(formatted("c", static_cast<signed char>(value)), output);
}

TEST(KBXFunctionsValues, IntegersHaveTheirWidthAndSign) {
  EXPECT_EQ(formatted("S", std::uint16_t{65535}), "65535");
  EXPECT_EQ(formatted("s", std::uint16_t{65535}), "-1");
  EXPECT_EQ(formatted("s", std::int16_t{-32768}), "-32768");
  EXPECT_EQ(formatted("i", std::numeric_limits<std::int32_t>::min()), "-2147483648");
  EXPECT_EQ(formatted("I", std::numeric_limits<std::uint32_t>::max()), "4294967295");
  EXPECT_EQ(formatted("q", std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(formatted("Q", std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
}

TEST(KBXFunctionsValues, RealNumbersHaveSixDecimals) {
  EXPECT_EQ(formatted("f", 0.5F), "0.500000");
  EXPECT_EQ(formatted("d", -1.0 / 3), "-0.333333");
  EXPECT_EQ(formatted("D", 2.25L), "2.250000");
}

TEST(KBXFunctionsValues, SelectorsAndClassesAreTheirNames) {
  EXPECT_EQ(formatted(":", SEL("kbxChild:")), "kbxChild:");
  EXPECT_EQ(formatted("#", NSArray::classObject()), "NSArray");
  const SEL none;
  NSClass* nobody = nullptr;
  EXPECT_EQ(KBXFunctions::stringFromPointer(&none, ":"), nullptr);
  EXPECT_EQ(KBXFunctions::stringFromPointer(&nobody, "#"), nullptr);
}

TEST(KBXFunctionsValues, PointersAreHexadecimal) {
  EXPECT_EQ(formatted("^v", reinterpret_cast<void*>(0x1A2B)), "0x1a2b");
  EXPECT_EQ(formatted<void*>("^v", nullptr), "0x0");
}

TEST(KBXFunctionsValues, TextIsFoundBehindAPointer) {
  for (const char* encoding : {"*", "r*"}) {
    EXPECT_EQ(formatted(encoding, "text é"), "text é");
    EXPECT_EQ(formatted<const char*>(encoding, nullptr), "(null)");
  }
}

TEST(KBXFunctionsValues, TextInAnArrayIsFoundAtTheAddress) {
  const char stored[16] = "sixteen at most";
  EXPECT_EQ(text(KBXFunctions::stringFromPointer(stored, "[16c]")), "sixteen at most");
  EXPECT_EQ(text(KBXFunctions::stringFromPointer(stored, "[c]")), "sixteen at most");
  EXPECT_EQ(text(KBXFunctions::stringFromPointer(stored, "[0c]")), "sixteen at most");
}

TEST(KBXFunctionsValues, AFullArrayNeedsNoZero) {
  const char stored[4] = {'f', 'u', 'l', 'l'};
  EXPECT_EQ(text(KBXFunctions::stringFromPointer(stored, "[4c]")), "full");
}

TEST(KBXFunctionsValues, StructuresAreThePlatformsTexts) {
  EXPECT_EQ(formatted("{_NSRange=QQ}", NSMakeRange(3, 4)), "{3, 4}");
  EXPECT_EQ(formatted("{CGPoint=dd}", NSPoint{1, 2.5}), "{1, 2.5}");
  EXPECT_EQ(formatted("{CGSize=dd}", NSSize{640, 480}), "{640, 480}");
  EXPECT_EQ(formatted("{CGRect={CGPoint=dd}{CGSize=dd}}", NSRect{{0, 0}, {1, 2}}),
            "{{0, 0}, {1, 2}}");
}

TEST(KBXFunctionsValues, ObjectsAreTheirDescriptions) {
  for (const char* encoding : {"@", "^{__CFString=}", "r^{__CFString=}"}) {
    EXPECT_EQ(formatted<NSObject*>(encoding, "text"_ns), "text");
    EXPECT_EQ(formatted<NSObject*>(encoding, nullptr), "(null)");
  }
}

TEST(KBXFunctionsValues, AValueNeedNotBeAligned) {
  char bytes[1 + sizeof(double)];
  const double value = 1.5;
  std::memcpy(bytes + 1, &value, sizeof value);
  EXPECT_EQ(text(KBXFunctions::stringFromPointer(bytes + 1, "d")), "1.500000");
}

TEST(KBXFunctionsValues, AnyOtherEncodingIsAProgrammingError) {
  const char value[32] = "text";
  for (const char* encoding :
       {"",      "C",      "cc",           "l",           "L",    "B",    "v", "^",  "^c", "r",
        "**",    "@?",     "[16C]",        "[16c",        "[16]", "16c]", "[", "[]", "c]", "[1 6c]",
        "[-1c]", "[16cc]", "{_NSRange=QQ", "{CGPoint=ff}"}) {
    SCOPED_TRACE(encoding);
    RecordingLog log;
    auto raised = raisedBy([&] { KBXFunctions::stringFromPointer(value, encoding); });
    auto* exception = cast<KBXException>(raised);
    ASSERT_TRUE(exception);
    EXPECT_EQ(text(exception->name()), "KBXAssertionFailedException");
    EXPECT_EQ(text(exception->reason()), std::string("Unhandled type encoding: ") + encoding +
                                             " at KBXFunctions:187 "
                                             "+stringFromPointer:typeEncoding:");
  }
}

TEST(KBXFunctionsValues, AnAbsentEncodingIsUnhandledAndAnAbsentAddressInvalid) {
  RecordingLog log;
  auto raised = raisedBy([] { KBXFunctions::stringFromPointer("", nullptr); });
  ASSERT_TRUE(cast<KBXException>(raised));
  EXPECT_EQ(text(cast<KBXException>(raised)->kbxReason()), "Unhandled type encoding: (null)");
  EXPECT_EQ(nameRaisedBy([] { KBXFunctions::stringFromPointer(nullptr, "c"); }),
            "NSInvalidArgumentException");
}

}  // namespace
}  // namespace kbx
