#include "platform/preferences/CFPreferences.h"

#include "tests/support/TemporaryPreferences.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

struct Case {
  const char* xml;
  bool isBoolean, boolean;
  bool isInteger;
  std::int64_t integer;
};

TEST(CFPreferences, AValueCountsOnlyWhenItIsValidForItsKind) {
  for (auto [xml, isBoolean, boolean, isInteger, integer] :
       {Case{"<true/>", true, true, false, 0},
        {"<false/>", true, false, false, 0},
        {"<integer>0</integer>", true, false, true, 0},
        {"<integer>-3</integer>", true, true, true, -3},
        {"<integer>9223372036854775808</integer>", true, true, false, 0},
        {"<real>2</real>", true, true, true, 2},
        {"<real>2.5</real>", true, true, false, 0},
        {"<real>0</real>", true, false, true, 0},
        {"<real>1e300</real>", true, true, false, 0},
        {"<real>9223372036854775808</real>", true, true, false, 0},
        {"<real>nan</real>", true, true, false, 0},
        {"<real>-inf</real>", true, true, false, 0},
        {"<string>YES</string>", true, true, false, 0},
        {"<string>True</string>", true, true, false, 0},
        {"<string>no</string>", true, false, false, 0},
        {"<string>fAlSe</string>", true, false, false, 0},
        {"<string>Y</string>", false, false, false, 0},
        {"<string>yes </string>", false, false, false, 0},
        {"<string>12</string>", false, false, true, 12},
        {"<string>-12</string>", false, false, true, -12},
        {"<string>+12</string>", false, false, true, 12},
        {"<string>+-12</string>", false, false, false, 0},
        {"<string>12a</string>", false, false, false, 0},
        {"<string> 12</string>", false, false, false, 0},
        {"<string>1.0</string>", false, false, false, 0},
        {"<string>9223372036854775808</string>", false, false, false, 0},
        {"<string/>", false, false, false, 0},
        {"<date>2001-01-01T00:00:01Z</date>", false, false, false, 0},
        {"<array><true/></array>", false, false, false, 0}}) {
    SCOPED_TRACE(xml);
    TemporaryPreferences preferences;
    preferences.write("d", std::string("<key>k</key>") + xml);
    bool isValid = !isBoolean;
    EXPECT_EQ(CFPreferencesGetAppBooleanValue("k"_ns, "d"_ns, &isValid), boolean);
    EXPECT_EQ(isValid, isBoolean);
    isValid = !isInteger;
    EXPECT_EQ(CFPreferencesGetAppIntegerValue("k"_ns, "d"_ns, &isValid), integer);
    EXPECT_EQ(isValid, isInteger);
    EXPECT_TRUE(CFPreferencesCopyAppValue("k"_ns, "d"_ns));
  }
}

TEST(CFPreferences, OnlyTheNamedDomainIsAsked) {
  TemporaryPreferences preferences;
  preferences.write("NSGlobalDomain", "<key>k</key><integer>1</integer>");
  preferences.write("ferncase", "<key>own</key><integer>2</integer>");
  NSUserDefaults::standardUserDefaults()->registerDefaults(
      NSDictionary::dictionaryWithPairs({{"k"_ns, "3"_ns}}));
  bool isValid = true;
  EXPECT_EQ(CFPreferencesGetAppIntegerValue("k"_ns, "d"_ns, &isValid), 0);
  EXPECT_FALSE(isValid);
  EXPECT_EQ(CFPreferencesCopyAppValue("k"_ns, "ferncase"_ns), nullptr);
  EXPECT_EQ(CFPreferencesGetAppIntegerValue("own"_ns, kCFPreferencesCurrentApplication(), nullptr),
            2);
}

TEST(CFPreferences, WithoutAKeyOrADomainThereIsNoValue) {
  TemporaryPreferences preferences;
  preferences.write("d", "<key>k</key><true/>");
  EXPECT_EQ(CFPreferencesCopyAppValue(nullptr, "d"_ns), nullptr);
  EXPECT_EQ(CFPreferencesCopyAppValue("k"_ns, nullptr), nullptr);
  EXPECT_FALSE(CFPreferencesGetAppBooleanValue("k"_ns, nullptr, nullptr));
}

}  // namespace
}  // namespace kbx
