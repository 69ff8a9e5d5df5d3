#include "platform/preferences/NSUserDefaults.h"

#include "platform/objects/NSClass.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/TemporaryPreferences.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

Ref<NSDictionary> pair(NSString* key, NSObject* value) {
  return NSDictionary::dictionaryWithPairs({{key, value}});
}

class NSUserDefaultsTest : public testing::Test {
 protected:
  TemporaryPreferences preferences;
  NSUserDefaults* defaults = NSUserDefaults::standardUserDefaults();
};

TEST_F(NSUserDefaultsTest, DomainsAreLookedThroughFromTheArgumentsToWhatWasRegistered) {
  preferences.write("ferncase", "<key>b</key><string>own</string><key>c</key><string>own</string>");
  preferences.write("NSGlobalDomain",
                    "<key>c</key><string>global</string><key>d</key><string>global</string>");
  const std::string arguments[] = {"-a", "argument", "-b", "argument"};
  NSUserDefaults::setArguments(arguments);
  auto registered = NSMutableDictionary::dictionary();
  for (auto* key : {"a"_ns, "b"_ns, "c"_ns, "d"_ns, "e"_ns})
    registered->setObjectForKey("registered"_ns, key);
  defaults->registerDefaults(registered);

  EXPECT_EQ(text(defaults->objectForKey("a"_ns)), "argument");
  EXPECT_EQ(text(defaults->objectForKey("b"_ns)), "argument");
  EXPECT_EQ(text(defaults->objectForKey("c"_ns)), "own");
  EXPECT_EQ(text(defaults->objectForKey("d"_ns)), "global");
  EXPECT_EQ(text(defaults->objectForKey("e"_ns)), "registered");
  EXPECT_EQ(defaults->objectForKey("f"_ns), nullptr);
  EXPECT_EQ(defaults->objectForKey(nullptr), nullptr);

  auto all = defaults->dictionaryRepresentation();
  EXPECT_EQ(all->count(), 5u);
  for (const auto& [key, value] : *all)
    EXPECT_TRUE(isEqual(value, defaults->objectForKey(cast<NSString>(key))));
}

TEST_F(NSUserDefaultsTest, ArgumentsAreReadInPairs) {
  const std::string arguments[] = {"file",  "-Count", "-5",    "--long", "x",    "-",
                                   "-Flag", "YES",    "-Flag", "NO",     "-Last"};
  NSUserDefaults::setArguments(arguments);
  EXPECT_EQ(text(defaults->volatileDomainForName(NSArgumentDomain())),
            text(NSDictionary::dictionaryWithPairs({{"Count"_ns, "-5"_ns}, {"Flag"_ns, "NO"_ns}})));
  EXPECT_EQ(defaults->integerForKey("Count"_ns), -5);
  NSUserDefaults::setArguments({});
  EXPECT_EQ(defaults->objectForKey("Count"_ns), nullptr);
}

TEST_F(NSUserDefaultsTest, WhatIsSetIsStoredInTheOwnDomain) {
  defaults->setObjectForKey("text"_ns, "s"_ns);
  defaults->setBoolForKey(true, "b"_ns);
  defaults->setIntegerForKey(-7, "i"_ns);
  defaults->setDoubleForKey(0.1, "d"_ns);
  auto stored = preferences.other().domain(applicationDomainName());
  ASSERT_TRUE(stored);
  EXPECT_EQ(stored->count(), 4u);
  EXPECT_TRUE(cast<NSNumber>(stored->objectForKey("b"_ns))->isBoolean());
  EXPECT_EQ(defaults->stringForKey("s"_ns)->lossyUTF8(), "text");
  EXPECT_EQ(defaults->integerForKey("i"_ns), -7);
  EXPECT_EQ(defaults->doubleForKey("d"_ns), 0.1);

  defaults->removeObjectForKey("s"_ns);
  defaults->setObjectForKey(nullptr, "b"_ns);
  EXPECT_EQ(preferences.other().domain(applicationDomainName())->count(), 2u);
}

TEST_F(NSUserDefaultsTest, AValueIsCopiedWhenItIsSet) {
  auto inner = NSMutableArray::array();
  auto list = NSArray::arrayWithObjects({inner.get()});
  defaults->setObjectForKey(list, "k"_ns);
  inner->addObject("later"_ns);
  auto kept = defaults->arrayForKey("k"_ns);
  ASSERT_TRUE(kept);
  EXPECT_EQ(cast<NSArray>(kept->objectAtIndex(0))->count(), 0u);
  EXPECT_EQ(cast<NSMutableArray>(kept->objectAtIndex(0)), nullptr);
}

TEST_F(NSUserDefaultsTest, WhatNoPropertyListHoldsIsAProgrammingError) {
  auto raised = raisedBy([&] { defaults->setObjectForKey(NSNull::null(), "k"_ns); });
  ASSERT_TRUE(raised);
  EXPECT_TRUE(isEqual(raised->name(), NSInvalidArgumentException()));
  EXPECT_EQ(text(raised->reason()), "Attempt to insert non-property list object <null> for key k");
  auto bad = pair("k"_ns, NSNull::null());
  const std::string name = "NSInvalidArgumentException";
  EXPECT_EQ(nameRaisedBy([&] { defaults->setPersistentDomainForName(bad, "d"_ns); }), name);
  EXPECT_EQ(nameRaisedBy([&] { defaults->setPersistentDomainForName(nullptr, "d"_ns); }), name);
  EXPECT_EQ(nameRaisedBy([&] { defaults->setPersistentDomainForName(bad, nullptr); }), name);
  EXPECT_EQ(nameRaisedBy([&] { defaults->setObjectForKey("v"_ns, nullptr); }), name);
  EXPECT_EQ(nameRaisedBy([&] { defaults->removeObjectForKey(nullptr); }), name);
  EXPECT_EQ(nameRaisedBy([&] { defaults->removePersistentDomainForName(nullptr); }), name);
  EXPECT_EQ(nameRaisedBy([&] { defaults->setVolatileDomainForName(nullptr, "d"_ns); }), name);
  EXPECT_EQ(nameRaisedBy([&] { defaults->removeVolatileDomainForName(nullptr); }), name);
}

TEST_F(NSUserDefaultsTest, TypedGettersReadNumbersAndTexts) {
  preferences.write(
      "ferncase",
      "<key>yes</key><string>YES</string><key>no</key><string>off</string>"
      "<key>n</key><integer>12</integer><key>t</key><string> 12.5 apples</string>"
      "<key>true</key><true/><key>r</key><real>2.75</real>"
      "<key>date</key><date>2001-01-01T00:00:00Z</date><key>data</key><data>AAE=</data>"
      "<key>strings</key><array><string>a</string></array>"
      "<key>mixed</key><array><string>a</string><true/></array>"
      "<key>dict</key><dict/>");
  struct Case {
    NSString* key;
    bool boolean;
    std::int64_t integer;
    double real;
    const char* text;
  };
  for (auto [key, boolean, integer, real, expected] : {Case{"yes"_ns, true, 0, 0, "YES"},
                                                       {"no"_ns, false, 0, 0, "off"},
                                                       {"n"_ns, true, 12, 12, "12"},
                                                       {"t"_ns, true, 12, 12.5, " 12.5 apples"},
                                                       {"true"_ns, true, 1, 1, "1"},
                                                       {"r"_ns, true, 2, 2.75, "2.75"},
                                                       {"date"_ns, false, 0, 0, "(null)"},
                                                       {"none"_ns, false, 0, 0, "(null)"}}) {
    SCOPED_TRACE(key->lossyUTF8());
    EXPECT_EQ(defaults->boolForKey(key), boolean);
    EXPECT_EQ(defaults->integerForKey(key), integer);
    EXPECT_EQ(defaults->doubleForKey(key), real);
    EXPECT_EQ(text(defaults->stringForKey(key)), expected);
  }
  EXPECT_EQ(defaults->dataForKey("data"_ns)->length(), 2u);
  EXPECT_EQ(defaults->arrayForKey("strings"_ns)->count(), 1u);
  EXPECT_EQ(defaults->stringArrayForKey("strings"_ns)->count(), 1u);
  EXPECT_EQ(defaults->stringArrayForKey("mixed"_ns), nullptr);
  EXPECT_EQ(defaults->stringArrayForKey("dict"_ns), nullptr);
  EXPECT_TRUE(defaults->dictionaryForKey("dict"_ns));
  EXPECT_EQ(defaults->dictionaryForKey("mixed"_ns), nullptr);
  EXPECT_EQ(defaults->dataForKey("mixed"_ns), nullptr);
}

TEST_F(NSUserDefaultsTest, ASuiteHasItsOwnDomainAndSharesTheOthers) {
  preferences.write("NSGlobalDomain", "<key>g</key><string>global</string>");
  auto suite = NSUserDefaults::initWithSuiteName("suite"_ns);
  ASSERT_TRUE(suite);
  suite->setObjectForKey("v"_ns, "k"_ns);
  EXPECT_EQ(defaults->objectForKey("k"_ns), nullptr);
  EXPECT_TRUE(isEqual(defaults->persistentDomainForName("suite"_ns), pair("k"_ns, "v"_ns)));
  EXPECT_EQ(text(suite->objectForKey("g"_ns)), "global");
  EXPECT_EQ(NSUserDefaults::initWithSuiteName(NSGlobalDomain()), nullptr);
  EXPECT_EQ(NSUserDefaults::initWithSuiteName(applicationDomainName()), nullptr);
  EXPECT_EQ(NSUserDefaults::initWithSuiteName(""_ns), nullptr);
  auto own = NSUserDefaults::initWithSuiteName(nullptr);
  ASSERT_TRUE(own);
  own->setObjectForKey("v"_ns, "k"_ns);
  EXPECT_EQ(text(defaults->objectForKey("k"_ns)), "v");
}

TEST_F(NSUserDefaultsTest, APersistentDomainIsReadAloneAndReplacedWhole) {
  defaults->registerDefaults(pair("r"_ns, "v"_ns));
  EXPECT_EQ(defaults->persistentDomainForName("d"_ns), nullptr);
  defaults->setPersistentDomainForName(pair("a"_ns, "1"_ns), "d"_ns);
  defaults->setPersistentDomainForName(pair("b"_ns, "2"_ns), "d"_ns);
  EXPECT_TRUE(isEqual(defaults->persistentDomainForName("d"_ns), pair("b"_ns, "2"_ns)));
  defaults->removePersistentDomainForName("d"_ns);
  EXPECT_EQ(defaults->persistentDomainForName("d"_ns), nullptr);
}

TEST_F(NSUserDefaultsTest, AVolatileDomainIsNotLookedThroughAndNotStored) {
  defaults->setVolatileDomainForName(pair("a"_ns, "1"_ns), "v"_ns);
  EXPECT_TRUE(isEqual(defaults->volatileDomainForName("v"_ns), pair("a"_ns, "1"_ns)));
  EXPECT_TRUE(defaults->volatileDomainNames()->containsObject("v"_ns));
  EXPECT_EQ(defaults->objectForKey("a"_ns), nullptr);
  EXPECT_EQ(defaults->persistentDomainForName("v"_ns), nullptr);
  EXPECT_EQ(
      nameRaisedBy([&] { defaults->setVolatileDomainForName(NSDictionary::dictionary(), "v"_ns); }),
      "NSInvalidArgumentException");
  defaults->removeVolatileDomainForName("v"_ns);
  EXPECT_EQ(defaults->volatileDomainForName("v"_ns), nullptr);
  EXPECT_EQ(defaults->volatileDomainForName(nullptr), nullptr);
}

TEST_F(NSUserDefaultsTest, RegisteredEntriesAddUp) {
  defaults->registerDefaults(pair("a"_ns, "1"_ns));
  defaults->registerDefaults(pair("b"_ns, "2"_ns));
  defaults->registerDefaults(nullptr);
  EXPECT_EQ(text(defaults->objectForKey("a"_ns)), "1");
  EXPECT_EQ(text(defaults->objectForKey("b"_ns)), "2");
  EXPECT_TRUE(preferences.read("ferncase").empty());
}

TEST_F(NSUserDefaultsTest, SynchronizingShowsWhatOthersStored) {
  EXPECT_EQ(defaults->objectForKey("k"_ns), nullptr);
  preferences.write("ferncase", "<key>k</key><string>v</string>");
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(text(defaults->objectForKey("k"_ns)), "v");
}

}  // namespace
}  // namespace kbx
