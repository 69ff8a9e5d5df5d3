#include "NSUserDefaults+KBX.h"

#include <limits>

#include "KBXException.h"
#include "platform/objects/NSClass.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryPreferences.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

class NSUserDefaultsKBX : public testing::Test {
 protected:
  void SetUp() override {
    preferences.write("ferncase",
                      "<key>yes</key><string>YES</string><key>text</key><string>12 apples</string>"
                      "<key>one</key><integer>1</integer><key>real</key><real>2.75</real>"
                      "<key>true</key><true/><key>date</key><date>2001-01-01T00:00:00Z</date>"
                      "<key>list</key><array/><key>size</key><string>{640, 480.5}</string>"
                      "<key>empty</key><string/>");
    preferences.write("d",
                      "<key>yes</key><string>Yes</string><key>y</key><string>y</string>"
                      "<key>n</key><integer>7</integer><key>text</key><string>8</string>"
                      "<key>apples</key><string>8 apples</string><key>list</key><array/>");
  }

  TemporaryPreferences preferences;
  NSUserDefaults* defaults = NSUserDefaults::standardUserDefaults();
};

TEST_F(NSUserDefaultsKBX, AMissingKeyIsToldWithItsLine) {
  struct Case {
    int line;
    const char* selector;
    std::function<void(NSUserDefaults*)> call;
  };
  for (const auto& [line, selector, call] :
       {Case{9, "kbxBoolForKey:domain:defaultValue:",
             [](auto* d) { kbxBoolForKeyDomain(d, nullptr, "d"_ns, true); }},
        {21, "kbxIntegerForKey:domain:defaultValue:",
         [](auto* d) { kbxIntegerForKeyDomain(d, nullptr, "d"_ns, 1); }},
        {31, "kbxObjectForKey:domain:defaultValue:",
         [](auto* d) { kbxObjectForKeyDomain(d, nullptr, "d"_ns, nullptr); }},
        {48,
         "kbxObjectForKey:defaultValue:", [](auto* d) { kbxObjectForKey(d, nullptr, nullptr); }},
        {53,
         "kbxStringForKey:defaultValue:", [](auto* d) { kbxStringForKey(d, nullptr, nullptr); }},
        {59, "kbxBoolForKey:defaultValue:", [](auto* d) { kbxBoolForKey(d, nullptr, true); }},
        {68, "kbxIntegerForKey:defaultValue:", [](auto* d) { kbxIntegerForKey(d, nullptr, 1); }},
        {77, "kbxDoubleForKey:defaultValue:", [](auto* d) { kbxDoubleForKey(d, nullptr, 1); }},
        {53, "kbxStringForKey:defaultValue:", [](auto* d) { kbxSizeForKey(d, nullptr, {}); }}}) {
    RecordingLog log;
    auto raised = raisedBy([this, &get = call] { get(defaults); });
    auto* exception = cast<KBXException>(raised);
    ASSERT_TRUE(exception) << selector;
    const std::string place =
        "NSUserDefaults+KBX:" + std::to_string(line) + " -" + std::string(selector);
    EXPECT_EQ(text(exception->name()), "KBXAssertionFailedException");
    EXPECT_EQ(text(exception->reason()), "Precondition Failed: key at " + place);
    EXPECT_EQ(log.lines(),
              std::vector<std::string>{place + ": Assertion Failed: Precondition Failed: key"});
  }
}

TEST_F(NSUserDefaultsKBX, ADomainIsReadDirectlyAndOnlyWhatIsValidCounts) {
  EXPECT_TRUE(kbxBoolForKeyDomain(defaults, "yes"_ns, "d"_ns, false));
  EXPECT_TRUE(kbxBoolForKeyDomain(defaults, "n"_ns, "d"_ns, false));
  for (bool otherwise : {false, true})
    for (auto* key : {"y"_ns, "text"_ns, "list"_ns, "true"_ns, "none"_ns})
      EXPECT_EQ(kbxBoolForKeyDomain(defaults, key, "d"_ns, otherwise), otherwise);
  EXPECT_EQ(kbxIntegerForKeyDomain(defaults, "n"_ns, "d"_ns, 3), 7);
  EXPECT_EQ(kbxIntegerForKeyDomain(defaults, "text"_ns, "d"_ns, 3), 8);
  for (auto* key : {"apples"_ns, "yes"_ns, "list"_ns, "one"_ns, "none"_ns})
    EXPECT_EQ(kbxIntegerForKeyDomain(defaults, key, "d"_ns, 3), 3);
  EXPECT_TRUE(cast<NSArray>(kbxObjectForKeyDomain(defaults, "list"_ns, "d"_ns, "x"_ns)));
  EXPECT_TRUE(isSame(kbxObjectForKeyDomain(defaults, "one"_ns, "d"_ns, "x"_ns), "x"_ns));
  EXPECT_TRUE(isSame(kbxObjectForKeyDomain(defaults, "yes"_ns, nullptr, "x"_ns), "x"_ns));
}

TEST_F(NSUserDefaultsKBX, AnyClassOfObjectIsAnswered) {
  EXPECT_TRUE(cast<NSArray>(kbxObjectForKey(defaults, "list"_ns, "x"_ns)));
  EXPECT_TRUE(isSame(kbxObjectForKey(defaults, "none"_ns, "x"_ns), "x"_ns));
  EXPECT_EQ(kbxObjectForKey(defaults, "none"_ns, nullptr), nullptr);
}

TEST_F(NSUserDefaultsKBX, OnlyATextIsAString) {
  EXPECT_EQ(text(kbxStringForKey(defaults, "yes"_ns, "x"_ns)), "YES");
  EXPECT_EQ(text(kbxStringForKey(defaults, "empty"_ns, "x"_ns)), "");
  for (auto* key : {"one"_ns, "true"_ns, "date"_ns, "none"_ns})
    EXPECT_EQ(text(kbxStringForKey(defaults, key, "x"_ns)), "x");
}

TEST_F(NSUserDefaultsKBX, WhatAnswersANumberGivesItAndEverythingElseTheDefault) {
  struct Case {
    NSString* key;
    bool boolean;
    std::int64_t integer;
    double real;
  };
  for (auto [key, boolean, integer, real] : {Case{"yes"_ns, true, 0, 0},
                                             {"text"_ns, true, 12, 12},
                                             {"one"_ns, true, 1, 1},
                                             {"real"_ns, true, 2, 2.75},
                                             {"true"_ns, true, 1, 1},
                                             {"empty"_ns, false, 0, 0}}) {
    SCOPED_TRACE(text(key));
    EXPECT_EQ(kbxBoolForKey(defaults, key, !boolean), boolean);
    EXPECT_EQ(kbxIntegerForKey(defaults, key, 99), integer);
    EXPECT_EQ(kbxDoubleForKey(defaults, key, 99.5), real);
  }
  for (auto* key : {"date"_ns, "list"_ns, "none"_ns}) {
    SCOPED_TRACE(text(key));
    EXPECT_TRUE(kbxBoolForKey(defaults, key, true));
    EXPECT_FALSE(kbxBoolForKey(defaults, key, false));
    EXPECT_EQ(kbxIntegerForKey(defaults, key, -4), -4);
    EXPECT_EQ(kbxDoubleForKey(defaults, key, 99.5), 99.5);
  }
}

TEST_F(NSUserDefaultsKBX, AnyDefaultsObjectCanBeAsked) {
  auto suite = NSUserDefaults::initWithSuiteName("d"_ns);
  EXPECT_EQ(kbxIntegerForKey(suite, "n"_ns, 0), 7);
  EXPECT_EQ(kbxIntegerForKey(suite, "one"_ns, 5), 5);
}

TEST_F(NSUserDefaultsKBX, ASizeIsReadFromItsTextAndTheDefaultComesBackUnchanged) {
  EXPECT_EQ(kbxSizeForKey(defaults, "size"_ns, {}), (NSSize{640, 480.5}));
  EXPECT_EQ(kbxSizeForKey(defaults, "yes"_ns, {1, 2}), NSSize{});
  for (double number :
       {0.0, 0.1, -1.0 / 3, 1e300, 5e-324, 123456789.123456789, std::numeric_limits<double>::max()})
    for (auto* key : {"none"_ns, "one"_ns})
      EXPECT_EQ(kbxSizeForKey(defaults, key, {number, -number}), (NSSize{number, -number}));
}

TEST_F(NSUserDefaultsKBX, AnAbsentReceiverAnswersNothing) {
  NSUserDefaults* nobody = nullptr;
  EXPECT_FALSE(kbxBoolForKey(nobody, nullptr, true));
  EXPECT_EQ(kbxIntegerForKey(nobody, "one"_ns, 3), 0);
  EXPECT_EQ(kbxDoubleForKey(nobody, "one"_ns, 3), 0);
  EXPECT_EQ(kbxObjectForKey(nobody, "one"_ns, "x"_ns), nullptr);
  EXPECT_EQ(kbxStringForKey(nobody, "yes"_ns, "x"_ns), nullptr);
  EXPECT_FALSE(kbxBoolForKeyDomain(nobody, "yes"_ns, "d"_ns, true));
  EXPECT_EQ(kbxIntegerForKeyDomain(nobody, "n"_ns, "d"_ns, 3), 0);
  EXPECT_EQ(kbxObjectForKeyDomain(nobody, "n"_ns, "d"_ns, "x"_ns), nullptr);
  EXPECT_EQ(kbxSizeForKey(nobody, "size"_ns, {1, 2}), NSSize{});
}

}  // namespace
}  // namespace kbx
