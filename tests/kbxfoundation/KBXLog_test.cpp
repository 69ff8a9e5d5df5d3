#include "KBXLog.h"

#include <gmock/gmock.h>

#include "platform/objects/NSNumber.h"
#include "tests/support/FakeOperatingSystem.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/RecordingUnifiedLog.h"
#include "tests/support/StandardErrorCapture.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr LogSite kSite("KBXFoundation/Source/KBXSpotlightImporter", 73, "-[X name]");

int evaluations = 0;

Ref<NSString> argument() {
  ++evaluations;
  return "abc"_ns;
}

LogSite site() {
  ++evaluations;
  return kSite;
}

// One site each, called again and again.
void logInArea() { KBX_LOG_AREA("KBXLogTestArea", site(), "%@ %d"_ns, argument(), 42); }
void logInOtherArea() { KBX_LOG_AREA("KBXLogTestOther", site(), "%@"_ns, argument()); }
void logWithoutArea() { KBX_LOG(site(), "%@"_ns, argument()); }

void setShared(std::initializer_list<NSDictionary::Pair> defaults) {
  KBXLogger::setSharedLogger(
      KBXLogger::initWithDefaultsDictionary(NSDictionary::dictionaryWithPairs(defaults)));
}

/// Begins and ends without a shared logger.
class KBXLog : public testing::Test {
 protected:
  KBXLog() {
    KBXLogger::setSharedLogger(nullptr);
    evaluations = 0;
  }
  ~KBXLog() override { KBXLogger::setSharedLogger(nullptr); }

  RecordingLog log;
  Ref<NSNumber> yes = NSNumber::numberWithBool(true);
  Ref<NSNumber> no = NSNumber::numberWithBool(false);
};

TEST_F(KBXLog, WithoutASharedLoggerEverythingIsLogged) {
  logInArea();
  logInOtherArea();
  logWithoutArea();
  EXPECT_THAT(log.lines(), ElementsAre("[KBXLogTestArea] abc 42", "[KBXLogTestOther] abc", " abc"));
}

TEST_F(KBXLog, NothingIsEvaluatedForAnAreaThatIsOff) {
  setShared({});
  for (int i = 0; i < 3; ++i) logInArea();
  EXPECT_THAT(log.lines(), IsEmpty());
  EXPECT_EQ(evaluations, 0);
}

TEST_F(KBXLog, EverythingIsEvaluatedOnceForAnAreaThatIsOn) {
  setShared({{"KBXLogTestArea"_ns, yes}});
  logInArea();
  EXPECT_EQ(evaluations, 2);
  logInArea();
  logInOtherArea();
  EXPECT_THAT(log.lines(), ElementsAre("[KBXLogTestArea] abc 42", "[KBXLogTestArea] abc 42"));
  EXPECT_EQ(evaluations, 4);
}

TEST_F(KBXLog, AMessageOfNoAreaIsAlwaysLogged) {
  setShared({});
  logWithoutArea();
  EXPECT_THAT(log.lines(), ElementsAre(" abc"));
}

TEST_F(KBXLog, AnotherSharedLoggerCountsAtOnce) {
  struct Step {
    const char* rule;
    Ref<NSObject> value;
    bool isOn;
  };
  for (const auto& [rule, value, isOn] : {Step{"off", no, false},
                                          {"then on", yes, true},
                                          {"and on again", yes, true},
                                          {"then off", no, false},
                                          {"and off again", no, false},
                                          {"and on", "YES"_ns, true}}) {
    SCOPED_TRACE(rule);
    setShared({{"KBXLogTestArea"_ns, value}});
    for (int i = 0; i < 2; ++i) {
      const std::size_t before = log.lines().size();
      logInArea();
      EXPECT_EQ(log.lines().size() - before, isOn ? 1 : 0);
    }
  }
}

TEST_F(KBXLog, WithoutTheSharedLoggerAnAreaIsOnAgain) {
  setShared({});
  logInArea();
  KBXLogger::setSharedLogger(nullptr);
  logInArea();
  EXPECT_THAT(log.lines(), ElementsAre("[KBXLogTestArea] abc 42"));
}

TEST_F(KBXLog, TheSameLoggerSetAgainGivesTheSameAnswer) {
  auto logger = KBXLogger::initWithDefaultsDictionary(nullptr);
  for (int i = 0; i < 3; ++i) {
    KBXLogger::setSharedLogger(logger);
    logInArea();
  }
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(KBXLog, ThePlaceIsThePublishedOne) {
  setShared({{"KBXLoggerIncludeFile"_ns, yes},
             {"KBXLoggerIncludeLine"_ns, yes},
             {"KBXLoggerIncludeFunction"_ns, yes},
             {"KBXLogTestArea"_ns, yes}});
  logInArea();
  logWithoutArea();
  EXPECT_THAT(log.lines(), ElementsAre("[KBXLogTestArea] KBXSpotlightImporter:73 -[X name] abc 42",
                                       "KBXSpotlightImporter:73 -[X name] abc"));
}

TEST_F(KBXLog, AFormatMayHaveNoArguments) {
  KBX_LOG(kSite, "plain"_ns);
  KBX_LOG_AREA("KBXLogTestArea", kSite, "plain"_ns);
  EXPECT_THAT(log.lines(), ElementsAre(" plain", "[KBXLogTestArea] plain"));
}

/// Sets another shared logger while the message is made.
Ref<NSString> replacing() {
  KBXLogger::setSharedLogger(KBXLogger::initWithDefaultsDictionary(nullptr));
  return "abc"_ns;
}

TEST_F(KBXLog, TestAndMessageUseTheSameLogger) {
  setShared({{"KBXLogTestArea"_ns, yes}, {"KBXLoggerPrefix"_ns, "Old"_ns}});
  KBX_LOG_AREA("KBXLogTestArea", kSite, "%@"_ns, replacing());
  EXPECT_THAT(log.lines(), ElementsAre("Old [KBXLogTestArea] abc"));
}

TEST_F(KBXLog, AMessageAsksForTheSharedLoggerOnce) {
  // Without a shared logger each question makes a logger, with a writer and its general handle.
  FakeOperatingSystem system;
  ScopedService<OperatingSystem> installed(system);
  RecordingUnifiedLog unified;
  StandardErrorCapture quiet;
  logWithoutArea();
  EXPECT_THAT(unified.created(), ElementsAre("KBXLogger"));
  logInArea();
  EXPECT_THAT(unified.created(), ElementsAre("KBXLogger", "KBXLogger", "KBXLogger.KBXLogTestArea"));
}

TEST_F(KBXLog, ASiteFitsWhereAStatementDoes) {
  setShared({});
  if (log.lines().empty())
    KBX_LOG_AREA("KBXLogTestArea", kSite, "plain"_ns);
  else
    KBX_LOG(kSite, "plain"_ns);
  EXPECT_THAT(log.lines(), IsEmpty());
}

}  // namespace
}  // namespace kbx
