#include "KBXLogger.h"

#include <gmock/gmock.h>

#include <thread>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSNumber.h"
#include "platform/threads/NSThread.h"
#include "platform/threads/Synchronized.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/FakeOperatingSystem.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/RecordingUnifiedLog.h"
#include "tests/support/StandardErrorCapture.h"
#include "tests/support/TemporaryPreferences.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

constexpr const char* kFile = "/src/KBXFoundation/Source/NSString+KBXHTML";
constexpr unsigned long kLine = 191;
constexpr const char* kFunction = "+[NSString(KBXHTML) kbxUngatedStringWithHTMLData:error:]";

Ref<NSNumber> yes() { return NSNumber::numberWithBool(true); }
Ref<NSNumber> no() { return NSNumber::numberWithBool(false); }

Ref<KBXLogger> logger(std::initializer_list<NSDictionary::Pair> defaults = {}) {
  return KBXLogger::initWithDefaultsDictionary(NSDictionary::dictionaryWithPairs(defaults));
}

/// The one line that a message of the area gives.
std::string line(KBXLogger* logger, NSString* area, NSString* message = "abc"_ns) {
  RecordingLog log;
  logger->logFileFormat(kFile, kLine, kFunction, area, "%@"_ns, message);
  const auto lines = log.lines();
  return lines.size() == 1 ? lines[0] : std::to_string(lines.size()) + " lines";
}

/// Leaves no shared logger behind, and begins without one.
class SharedKBXLogger : public testing::Test {
 protected:
  SharedKBXLogger() { KBXLogger::setSharedLogger(nullptr); }
  ~SharedKBXLogger() override { KBXLogger::setSharedLogger(nullptr); }
};

// ---- Options ---------------------------------------------------------------------------------

TEST(KBXLogger, OnlyTheAreaIsIncludedByItself) {
  auto builtIn = logger();
  for (NSString* key : {"KBXLoggerAllAreas"_ns, "KBXLoggerIncludeFile"_ns,
                        "KBXLoggerIncludeLine"_ns, "KBXLoggerIncludeThread"_ns,
                        "KBXLoggerIncludeFunction"_ns, "KBXLoggerPrefix"_ns, "Parser"_ns})
    EXPECT_FALSE(builtIn->isOptionEnabled(key)) << text(key);
  EXPECT_TRUE(builtIn->isOptionEnabled("KBXLoggerIncludeArea"_ns));
}

TEST(KBXLogger, GivenValuesWinOverTheBuiltInOnes) {
  auto given = logger({{"KBXLoggerIncludeArea"_ns, no()}, {"KBXLoggerIncludeFile"_ns, "YES"_ns}});
  EXPECT_FALSE(given->isOptionEnabled("KBXLoggerIncludeArea"_ns));
  EXPECT_TRUE(given->isOptionEnabled("KBXLoggerIncludeFile"_ns));
}

TEST(KBXLogger, EveryGivenEntryIsKept) {
  EXPECT_TRUE(logger({{"SomethingElse"_ns, yes()}})->isOptionEnabled("SomethingElse"_ns));
}

TEST(KBXLogger, AnAbsentDictionaryGivesTheBuiltInValues) {
  auto none = KBXLogger::initWithDefaultsDictionary(nullptr);
  EXPECT_TRUE(none->isOptionEnabled("KBXLoggerIncludeArea"_ns));
  EXPECT_FALSE(none->isEnabledForArea("Parser"_ns));
}

TEST(KBXLogger, AnAbsentOptionIsOff) { EXPECT_FALSE(logger()->isOptionEnabled(nullptr)); }

TEST(KBXLogger, ChangesOfTheDictionaryAreNotSeen) {
  auto defaults = NSMutableDictionary::dictionary();
  auto made = KBXLogger::initWithDefaultsDictionary(defaults);
  defaults->setObjectForKey(yes(), "Parser"_ns);
  EXPECT_FALSE(made->isEnabledForArea("Parser"_ns));
}

// ---- Areas -----------------------------------------------------------------------------------

TEST(KBXLogger, AMessageOfNoAreaIsAlwaysWanted) {
  EXPECT_TRUE(logger()->isEnabledForArea(nullptr));
  EXPECT_TRUE(logger({{"KBXLoggerAllAreas"_ns, no()}})->isEnabledForArea(nullptr));
}

TEST(KBXLogger, AnEmptyAreaIsAnAreaLikeOthers) {
  EXPECT_FALSE(logger()->isEnabledForArea(""_ns));
  EXPECT_TRUE(logger({{""_ns, yes()}})->isEnabledForArea(""_ns));
  EXPECT_EQ(line(logger(), ""_ns), "[] abc");
}

TEST(KBXLogger, AnAreaIsSwitchedOnByItsOwnKey) {
  struct Case {
    const char* rule;
    Ref<NSObject> value;
    bool isEnabled;
  };
  for (const auto& [rule, value, isEnabled] :
       {Case{"YES", "YES"_ns, true},
        {"one", NSNumber::numberWithInteger(1), true},
        {"true", yes(), true},
        {"a digit behind blanks", "  7"_ns, true},
        {"NO", "NO"_ns, false},
        {"zero", NSNumber::numberWithInteger(0), false},
        {"false", no(), false},
        {"the text 0", "0"_ns, false},
        {"a zero in front", "01"_ns, false},
        {"neither number nor text", NSArray::arrayWithObjects({yes()}), false}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(logger({{"Parser"_ns, value}})->isEnabledForArea("Parser"_ns), isEnabled);
  }
  EXPECT_FALSE(logger({{"Parser"_ns, yes()}})->isEnabledForArea("Other"_ns));
  EXPECT_FALSE(logger({{"Parser"_ns, yes()}})->isEnabledForArea("parser"_ns));
}

TEST(KBXLogger, AllAreasSwitchesOnEvenThoseThatAreOff) {
  auto all = logger({{"KBXLoggerAllAreas"_ns, "y"_ns}, {"Parser"_ns, no()}});
  EXPECT_TRUE(all->isEnabledForArea("Parser"_ns));
  EXPECT_TRUE(all->isEnabledForArea("Other"_ns));
}

TEST(KBXLogger, LoggingItselfDoesNotAskForTheArea) {
  EXPECT_EQ(line(logger({{"Parser"_ns, no()}}), "Parser"_ns), "[Parser] abc");
}

// ---- Prefixes --------------------------------------------------------------------------------

TEST(KBXLogger, ThePrefixHoldsWhatIsSwitchedOnInAFixedOrder) {
  auto all = logger({{"KBXHTMLConverterDataLog"_ns, yes()},
                     {"KBXLoggerIncludeFunction"_ns, yes()},
                     {"KBXLoggerIncludeThread"_ns, yes()},
                     {"KBXLoggerIncludeLine"_ns, yes()},
                     {"KBXLoggerIncludeFile"_ns, yes()},
                     {"KBXLoggerPrefix"_ns, "Importer"_ns}});
  EXPECT_EQ(line(all, "KBXHTMLConverterDataLog"_ns),
            "Importer [KBXHTMLConverterDataLog] NSString+KBXHTML:191 <main: \"\"> "
            "+[NSString(KBXHTML) kbxUngatedStringWithHTMLData:error:] abc");
}

TEST(KBXLogger, EachOptionAddsItsPart) {
  struct Case {
    const char* rule;
    std::vector<NSString*> options;
    NSString* area;
    const char* line;
  };
  for (const auto& [rule, options, area, expected] :
       {Case{"the area by itself", {}, "Parser"_ns, "[Parser] abc"},
        {"no area: the empty prefix and its blank", {}, nullptr, " abc"},
        {"the file", {"KBXLoggerIncludeFile"_ns}, nullptr, "NSString+KBXHTML abc"},
        {"the line belongs to the file", {"KBXLoggerIncludeLine"_ns}, "Parser"_ns, "[Parser] abc"},
        {"file and line",
         {"KBXLoggerIncludeFile"_ns, "KBXLoggerIncludeLine"_ns},
         nullptr,
         "NSString+KBXHTML:191 abc"},
        {"the thread", {"KBXLoggerIncludeThread"_ns}, nullptr, "<main: \"\"> abc"},
        {"the function",
         {"KBXLoggerIncludeFunction"_ns},
         nullptr,
         "+[NSString(KBXHTML) kbxUngatedStringWithHTMLData:error:] abc"},
        {"file and function",
         {"KBXLoggerIncludeFunction"_ns, "KBXLoggerIncludeFile"_ns},
         "P"_ns,
         "[P] NSString+KBXHTML +[NSString(KBXHTML) kbxUngatedStringWithHTMLData:error:] abc"}}) {
    SCOPED_TRACE(rule);
    auto defaults = NSMutableDictionary::dictionary();
    for (NSString* option : options) defaults->setObjectForKey(yes(), option);
    EXPECT_EQ(line(KBXLogger::initWithDefaultsDictionary(defaults), area), expected);
  }
}

TEST(KBXLogger, WithoutTheAreaOptionTheAreaIsStillTold) {
  FakeOperatingSystem system;
  ScopedService<OperatingSystem> installed(system);
  RecordingUnifiedLog log;
  StandardErrorCapture quiet;
  logger({{"KBXLoggerIncludeArea"_ns, no()}})
      ->logFileFormat(kFile, kLine, kFunction, "Parser"_ns, "abc"_ns);
  ASSERT_EQ(log.entries().size(), 1u);
  EXPECT_EQ(log.entries()[0].text, " abc");
  EXPECT_EQ(log.entries()[0].category, "KBXLogger.Parser");
}

TEST(KBXLogger, APrefixOfAnotherKindIsDescribed) {
  struct Case {
    const char* rule;
    Ref<NSObject> prefix;
    const char* line;
  };
  for (const auto& [rule, prefix, expected] :
       {Case{"a number", NSNumber::numberWithInteger(42), "42 [Parser] abc"},
        {"false is a prefix, too", no(), "0 [Parser] abc"},
        {"an empty text leaves its blank", ""_ns, " [Parser] abc"},
        {"a text as it is", "100% %@"_ns, "100% %@ [Parser] abc"}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(line(logger({{"KBXLoggerPrefix"_ns, prefix}}), "Parser"_ns), expected);
  }
  Ref<NSArray> list = NSArray::arrayWithObjects({"a"_ns});
  EXPECT_EQ(line(logger({{"KBXLoggerPrefix"_ns, list}}), nullptr), text(list) + " abc");
}

TEST(KBXLogger, TheFileIsTheLastPartOfItsPath) {
  struct Case {
    const char* path;
    const char* name;
  };
  auto withFile = logger({{"KBXLoggerIncludeFile"_ns, yes()}, {"KBXLoggerIncludeLine"_ns, yes()}});
  for (const auto& [path, name] : {Case{"/src/File", "File:7 abc"},
                                   {"File", "File:7 abc"},
                                   {"/src/Datei-ä", "Datei-ä:7 abc"},
                                   {"", ":7 abc"},
                                   {"/src/\xFF", "(null):7 abc"},
                                   {nullptr, "(null):7 abc"}}) {
    RecordingLog log;
    withFile->logFileFormat(path, 7, "f", nullptr, "abc"_ns);
    EXPECT_THAT(log.lines(), ElementsAre(name));
  }
}

TEST(KBXLogger, ALineNumberIsUnsigned) {
  RecordingLog log;
  logger({{"KBXLoggerIncludeFile"_ns, yes()}, {"KBXLoggerIncludeLine"_ns, yes()}})
      ->logFileFormat("f", ~0ul, "f", nullptr, "abc"_ns);
  EXPECT_THAT(log.lines(), ElementsAre("f:18446744073709551615 abc"));
}

TEST(KBXLogger, AFunctionThatIsNoUTF8IsTold) {
  RecordingLog log;
  auto withFunction = logger({{"KBXLoggerIncludeFunction"_ns, yes()}});
  withFunction->logFileFormat("f", 1, nullptr, nullptr, "abc"_ns);
  withFunction->logFileFormat("f", 1, "\xFF", nullptr, "abc"_ns);
  withFunction->logFileFormat("f", 1, "void é(int)", nullptr, "abc"_ns);
  EXPECT_THAT(log.lines(), ElementsAre("(null) abc", "(null) abc", "void é(int) abc"));
}

TEST(KBXLogger, AnotherThreadIsToldByItsAddressAndName) {
  auto withThread = logger({{"KBXLoggerIncludeThread"_ns, yes()}});
  std::string unnamed, named, address;
  std::thread([&] {
    unnamed = line(withThread, nullptr);
    NSThread::currentThread()->setName("Worker"_ns);
    named = line(withThread, nullptr);
    address = text(stringWithFormat("%p"_ns, static_cast<void*>(NSThread::currentThread().get())));
  }).join();
  EXPECT_THAT(address, MatchesRegex("0x[0-9a-f]+"));
  EXPECT_EQ(unnamed, "<" + address + ": \"\"> abc");
  EXPECT_EQ(named, "<" + address + ": \"Worker\"> abc");
}

TEST(KBXLogger, TheMainThreadIsToldByItsName) {
  auto main = NSThread::currentThread();
  main->setName("Indexer"_ns);
  EXPECT_EQ(line(logger({{"KBXLoggerIncludeThread"_ns, yes()}}), nullptr),
            "<main: \"Indexer\"> abc");
  main->setName(nullptr);
}

// ---- Messages --------------------------------------------------------------------------------

TEST(KBXLogger, AFormatIsFilledIn) {
  RecordingLog log;
  logger()->logFileFormat(kFile, kLine, kFunction, nullptr, "%@ %d %s %@"_ns, "abc"_ns, 42, "x",
                          nullptr);
  EXPECT_THAT(log.lines(), ElementsAre(" abc 42 x (null)"));
}

TEST(KBXLogger, AFormatMayHaveNoArguments) {
  RecordingLog log;
  logger()->logFileFormat(kFile, kLine, kFunction, nullptr, "100%%"_ns);
  EXPECT_THAT(log.lines(), ElementsAre(" 100%"));
}

TEST(KBXLogger, CollectedArgumentsGiveTheSameMessage) {
  RecordingLog log;
  const FormatArgument list[] = {"abc"_ns, 42};
  const FormatArguments arguments = list;
  logger()->logFileFormat(kFile, kLine, kFunction, "P"_ns, "%@ %d"_ns, arguments);
  logger()->logFileFormat(kFile, kLine, kFunction, "P"_ns, "none"_ns, FormatArguments());
  EXPECT_THAT(log.lines(), ElementsAre("[P] abc 42", "[P] none"));
}

TEST(KBXLogger, AFinishedMessageIsNoFormat) {
  RecordingLog log;
  logger()->logFileMessage(kFile, kLine, kFunction, "P"_ns, "%d of 100% %@ %n"_ns);
  EXPECT_THAT(log.lines(), ElementsAre("[P] %d of 100% %@ %n"));
}

TEST(KBXLogger, AnAbsentMessageIsToldAsOne) {
  RecordingLog log;
  logger()->logFileMessage(kFile, kLine, kFunction, nullptr, nullptr);
  EXPECT_THAT(log.lines(), ElementsAre(" (null)"));
}

TEST(KBXLogger, AFinishedPrefixIsHandedOn) {
  RecordingLog log;
  logger()->logPrefix("%d"_ns, "%@"_ns, "Parser"_ns);
  logger()->logPrefix(""_ns, "abc"_ns, nullptr);
  EXPECT_THAT(log.lines(), ElementsAre("%d %@", " abc"));
}

TEST(KBXLogger, AnAbsentPrefixRaisesAndLogsNoMessage) {
  RecordingLog log;
  auto exception = raisedBy([] { logger()->logPrefix(nullptr, "abc"_ns, nullptr); });
  ASSERT_TRUE(exception);
  EXPECT_EQ(text(exception->name()), "NSInternalInconsistencyException");
  EXPECT_EQ(text(exception->reason()), "Invalid parameter not satisfying: prefix");
  EXPECT_THAT(log.lines(),
              ElementsAre("*** Assertion failure in -[KBXLogger logPrefix:message:area:], "
                          "KBXFoundation/Source/KBXLogger:327"));
}

/// Says who it is, and logs a line of its own while it does.
class TellsAboutItself final : public NSObject {
 public:
  explicit TellsAboutItself(KBXLogger* logger) : _logger(logger) {}
  Ref<NSString> description() const override {
    _logger->logFileMessage(kFile, kLine, kFunction, nullptr, "inner"_ns);
    return "outer"_ns;
  }

 private:
  const Ref<KBXLogger> _logger;
};

TEST(KBXLogger, AnArgumentMayLogWhileItIsDescribed) {
  auto shared = logger();
  auto object = Ref<TellsAboutItself>::adopt(new TellsAboutItself(shared));
  RecordingLog log;
  shared->logFileFormat(kFile, kLine, kFunction, nullptr, "%@"_ns, object);
  EXPECT_THAT(log.lines(), ElementsAre(" inner", " outer"));
}

// ---- Writers ---------------------------------------------------------------------------------

TEST(KBXLogger, WhereThereIsAUnifiedLogItGetsTheMessages) {
  FakeOperatingSystem system(1677.104, {10, 12, 0});
  ScopedService<OperatingSystem> installed(system);
  RecordingUnifiedLog unified;
  RecordingLog classic;
  StandardErrorCapture quiet;
  logger()->logFileFormat(kFile, kLine, kFunction, nullptr, "abc"_ns);
  EXPECT_THAT(unified.texts(), ElementsAre(" abc"));
  EXPECT_THAT(classic.lines(), IsEmpty());
}

TEST(KBXLogger, OnAnOldSystemTheClassicLogGetsThem) {
  FakeOperatingSystem system(1349, {10, 11, 6});
  ScopedService<OperatingSystem> installed(system);
  RecordingUnifiedLog unified;
  RecordingLog classic;
  logger()->logFileFormat(kFile, kLine, kFunction, nullptr, "abc"_ns);
  EXPECT_THAT(unified.texts(), IsEmpty());
  EXPECT_THAT(unified.created(), IsEmpty());
  EXPECT_THAT(classic.lines(), ElementsAre(" abc"));
}

TEST(KBXLogger, TheWriterIsChosenWhenTheLoggerIsMade) {
  RecordingUnifiedLog unified;
  unified.isThere = false;
  auto made = logger();
  unified.isThere = true;
  EXPECT_EQ(line(made, nullptr), " abc");
  EXPECT_THAT(unified.created(), IsEmpty());
}

TEST(KBXLogger, TheWriterGoesWithTheLogger) {
  FakeOperatingSystem system;
  ScopedService<OperatingSystem> installed(system);
  RecordingUnifiedLog unified;
  auto made = logger();
  EXPECT_THAT(unified.released(), IsEmpty());
  made = nullptr;
  EXPECT_THAT(unified.released(), ElementsAre("KBXLogger"));
}

// ---- Where the values come from --------------------------------------------------------------

/// Stores the one value of a domain.
void setDomain(NSString* name, NSString* key, NSObject* value) {
  auto values = NSDictionary::dictionaryWithPairs({{key, value}});
  NSUserDefaults::standardUserDefaults()->setPersistentDomainForName(values, name);
}

TEST(KBXLogger, ALoggerReadsTheStandardUserDefaultsOfAllDomains) {
  TemporaryPreferences preferences;
  setDomain(applicationDomainName(), "Stored"_ns, yes());
  setDomain(NSGlobalDomain(), "Global"_ns, yes());
  NSUserDefaults::setArguments(std::vector<std::string>{"-Argument", "YES"});
  auto registered = NSDictionary::dictionaryWithPairs(
      {{"Registered"_ns, yes()}, {"KBXLoggerIncludeArea"_ns, no()}});
  NSUserDefaults::standardUserDefaults()->registerDefaults(registered);
  auto made = KBXLogger::init();
  for (NSString* area : {"Stored"_ns, "Global"_ns, "Argument"_ns, "Registered"_ns})
    EXPECT_TRUE(made->isEnabledForArea(area)) << text(area);
  EXPECT_FALSE(made->isEnabledForArea("Other"_ns));
  EXPECT_EQ(line(made, "Stored"_ns), " abc");
}

TEST(KBXLogger, ALoggerOfADomainReadsThatDomainAlone) {
  TemporaryPreferences preferences;
  setDomain(applicationDomainName(), "Own"_ns, yes());
  setDomain("org.example"_ns, "Parser"_ns, yes());
  auto made = KBXLogger::initWithPersistentDomainName("org.example"_ns);
  EXPECT_TRUE(made->isEnabledForArea("Parser"_ns));
  EXPECT_FALSE(made->isEnabledForArea("Own"_ns));
}

TEST(KBXLogger, AnUnknownDomainLeavesTheBuiltInValues) {
  TemporaryPreferences preferences;
  RecordingLog log;
  for (NSString* name : {"org.example"_ns, ""_ns, static_cast<NSString*>(nullptr)}) {
    auto made = KBXLogger::initWithPersistentDomainName(name);
    EXPECT_FALSE(made->isEnabledForArea("Parser"_ns));
    EXPECT_TRUE(made->isOptionEnabled("KBXLoggerIncludeArea"_ns));
  }
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(KBXLogger, ADisposableLoggerHasEveryAreaOn) {
  auto disposable = KBXLogger::initDisposableLogger();
  EXPECT_TRUE(disposable->isOptionEnabled("KBXLoggerAllAreas"_ns));
  EXPECT_TRUE(disposable->isEnabledForArea("Parser"_ns));
  EXPECT_EQ(line(disposable, "Parser"_ns), "[Parser] abc");
}

TEST(KBXLogger, ADisposableLoggerKnowsNoDefaults) {
  TemporaryPreferences preferences;
  for (NSString* domain : {applicationDomainName(), NSGlobalDomain()})
    setDomain(domain, "KBXLoggerPrefix"_ns, "Stored"_ns);
  EXPECT_EQ(line(KBXLogger::initDisposableLogger(), "Parser"_ns), "[Parser] abc");
}

TEST(KBXLogger, LaterChangesOfTheDefaultsNeedANewLogger) {
  TemporaryPreferences preferences;
  auto before = KBXLogger::init();
  setDomain(applicationDomainName(), "Parser"_ns, yes());
  EXPECT_FALSE(before->isEnabledForArea("Parser"_ns));
  EXPECT_TRUE(KBXLogger::init()->isEnabledForArea("Parser"_ns));
}

// ---- The shared logger -----------------------------------------------------------------------

TEST_F(SharedKBXLogger, BeforeOneIsSetEveryCallGivesANewDisposableOne) {
  auto first = KBXLogger::sharedLogger(), second = KBXLogger::sharedLogger();
  EXPECT_FALSE(isSame(first, second));
  EXPECT_TRUE(first->isEnabledForArea("Parser"_ns));
  EXPECT_TRUE(second->isEnabledForArea("Parser"_ns));
}

TEST_F(SharedKBXLogger, BeforeOneIsSetTheWriterIsChosenInEveryCall) {
  RecordingUnifiedLog unified;
  FakeOperatingSystem system;
  ScopedService<OperatingSystem> installed(system);
  for (bool isThere : {true, false, true}) {
    unified.isThere = isThere;
    const std::size_t before = unified.created().size();
    KBXLogger::sharedLogger();
    EXPECT_EQ(unified.created().size() - before, isThere ? 1u : 0u);
  }
}

TEST_F(SharedKBXLogger, TheLockOfTheClassMayBeHeldByTheCaller) {
  Synchronized lock(KBXLogger::classObject());
  auto first = logger();
  KBXLogger::setSharedLogger(first);
  EXPECT_TRUE(isSame(KBXLogger::sharedLogger(), first));
}

TEST_F(SharedKBXLogger, TheLastOneSetIsGiven) {
  auto first = logger(), second = logger();
  KBXLogger::setSharedLogger(first);
  EXPECT_TRUE(isSame(KBXLogger::sharedLogger(), first));
  EXPECT_TRUE(isSame(KBXLogger::sharedLogger(), first));
  KBXLogger::setSharedLogger(second);
  EXPECT_TRUE(isSame(KBXLogger::sharedLogger(), second));
  KBXLogger::setSharedLogger(second);
  EXPECT_TRUE(isSame(KBXLogger::sharedLogger(), second));
  KBXLogger::setSharedLogger(nullptr);
  EXPECT_FALSE(isSame(KBXLogger::sharedLogger(), second));
}

TEST_F(SharedKBXLogger, AReplacedLoggerLivesForThoseWhoHaveIt) {
  FakeOperatingSystem system;
  ScopedService<OperatingSystem> installed(system);
  RecordingUnifiedLog unified;
  KBXLogger::setSharedLogger(logger());
  auto held = KBXLogger::sharedLogger();
  KBXLogger::setSharedLogger(nullptr);
  EXPECT_THAT(unified.released(), IsEmpty());
  held = nullptr;
  EXPECT_THAT(unified.released(), ElementsAre("KBXLogger"));
}

TEST_F(SharedKBXLogger, SettingUpReadsTheDomainEachTime) {
  TemporaryPreferences preferences;
  KBXLogger::setUpWithPersistentDomainName("org.example"_ns);
  auto first = KBXLogger::sharedLogger();
  EXPECT_TRUE(isSame(first, KBXLogger::sharedLogger()));
  EXPECT_FALSE(first->isEnabledForArea("Parser"_ns));
  setDomain("org.example"_ns, "Parser"_ns, yes());
  EXPECT_FALSE(KBXLogger::sharedLogger()->isEnabledForArea("Parser"_ns));
  KBXLogger::setUpWithPersistentDomainName("org.example"_ns);
  EXPECT_FALSE(isSame(first, KBXLogger::sharedLogger()));
  EXPECT_TRUE(KBXLogger::sharedLogger()->isEnabledForArea("Parser"_ns));
}

}  // namespace
}  // namespace kbx
