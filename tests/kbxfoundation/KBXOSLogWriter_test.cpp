#include "KBXOSLogWriter.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <limits>

#include "platform/objects/NSClass.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/FakeOperatingSystem.h"
#include "tests/support/FakeProcessIdentity.h"
#include "tests/support/RecordingUnifiedLog.h"
#include "tests/support/StandardErrorCapture.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using Entry = RecordingUnifiedLog::Entry;
using Texts = std::vector<std::string>;

constexpr double kMoment = 1714568523.456;  // 2024-05-01 13:02:03.456 UTC

/// What the writer should make of kMoment: the default locale's digits, the system's time zone.
std::string momentText() {
  return text(NSDateFormatter::initWithDateFormat("yyyy-MM-dd HH:mm:ss.SSS"_ns)
                  ->stringFromDate(NSDate::dateWithTimeIntervalSince1970(kMoment)));
}

/// A process named Host at kMoment, not under the development environment.
class KBXOSLogWriterTest : public testing::Test {
 protected:
  std::string standardError() const { return _standardError.text(); }

  FakeClock clock{kMoment};
  FakeEnvironment environment;
  FakeProcessIdentity identity{"Host"};
  RecordingUnifiedLog log;

 private:
  ScopedService<Clock> _clock{clock};
  ScopedService<Environment> _environment{environment};
  ScopedService<ProcessIdentity> _identity{identity};
  StandardErrorCapture _standardError;
};

Texts texts(NSArray* pieces) {
  Texts result;
  for (const auto& piece : *pieces) result.push_back(text(piece));
  return result;
}

std::vector<std::size_t> lengths(NSArray* pieces) {
  std::vector<std::size_t> result;
  for (const auto& piece : *pieces) result.push_back(cast<NSString>(piece)->length());
  return result;
}

Ref<NSString> repeated(std::u16string_view character, std::size_t count) {
  std::u16string units;
  for (std::size_t i = 0; i < count; ++i) units += character;
  return NSString::stringWithUTF16(units);
}

Ref<NSString> letters(std::size_t count) { return repeated(u"x", count); }

/// A writer whose texts a test can take away.
class Failing final : public KBXOSLogWriter {
 public:
  static Ref<Failing> init() { return Ref<Failing>::adopt(new Failing); }
  Ref<NSString> subsystem() const override {
    return hasSubsystem ? KBXOSLogWriter::subsystem() : NSString::stringWithUTF16(u"\xDC00");
  }
  std::optional<std::string> cStringFromString(NSString* string) const override {
    return hasUTF8 ? KBXOSLogWriter::cStringFromString(string) : std::nullopt;
  }

  bool hasSubsystem = true;
  bool hasUTF8 = true;
};

// ---- Which writer the system wants -----------------------------------------------------------

TEST_F(KBXOSLogWriterTest, TheUnifiedLogNeedsFoundationAndSystemVersionAndTheLogItself) {
  struct Case {
    const char* rule;
    double foundation;
    NSOperatingSystemVersion version;
    bool isThere;
    bool isAvailable;
  };
  for (const auto& [rule, foundation, version, isThere, isAvailable] :
       {Case{"the first of all", 1057, {10, 12, 0}, true, true},
        {"the floor of the number counts", 1056.999, {10, 15, 7}, true, false},
        {"1056.0 is not enough", 1056.0, {10, 15, 7}, true, false},
        {"10.11 is too old", 1677.104, {10, 11, 6}, true, false},
        {"a later version", 1677.104, {11, 0, 0}, true, true},
        {"10.12.0 is enough", 1300, {10, 12, 0}, true, true},
        {"a system of that version without the log", 1677.104, {10, 15, 7}, false, false}}) {
    SCOPED_TRACE(rule);
    FakeOperatingSystem system(foundation, version);
    ScopedService<OperatingSystem> installed(system);
    log.isThere = isThere;
    EXPECT_EQ(KBXOSLogWriter::isOSLogAvailable(), isAvailable);
  }
}

/// Notes the order of the questions.
class CuriousSystem final : public OperatingSystem {
 public:
  explicit CuriousSystem(double foundation) : _foundation(foundation) {}
  double foundationVersionNumber() override {
    questions.push_back("foundation");
    return _foundation;
  }
  NSOperatingSystemVersion version() override {
    questions.push_back("version");
    return {10, 15, 7};
  }
  bool isAvailable(NSOperatingSystemVersion) override { return true; }
  std::optional<std::int32_t> gestalt(OSType) override { return std::nullopt; }

  Texts questions;

 private:
  double _foundation;
};

TEST_F(KBXOSLogWriterTest, TheVersionIsAskedOnlyBehindTheFoundationNumber) {
  CuriousSystem old(1056.13), recent(1677.104);
  {
    ScopedService<OperatingSystem> installed(old);
    EXPECT_FALSE(KBXOSLogWriter::isOSLogAvailable());
  }
  EXPECT_THAT(old.questions, ElementsAre("foundation"));
  ScopedService<OperatingSystem> installed(recent);
  EXPECT_TRUE(KBXOSLogWriter::isOSLogAvailable());
  EXPECT_THAT(recent.questions, ElementsAre("foundation", "version"));
}

TEST(KBXOSLogWriter, ThisSystemHasNoUnifiedLog) {
  EXPECT_FALSE(KBXOSLogWriter::isOSLogAvailable());
}

// ---- Handles ---------------------------------------------------------------------------------

TEST_F(KBXOSLogWriterTest, TheGeneralHandleIsMadeWithTheWriter) {
  auto writer = KBXOSLogWriter::init();
  EXPECT_THAT(log.created(), ElementsAre("KBXLogger"));
  EXPECT_TRUE(isSame(writer->logForArea(nullptr), writer->logForArea(nullptr)));
  EXPECT_THAT(log.created(), ElementsAre("KBXLogger"));
}

TEST_F(KBXOSLogWriterTest, AnAreaGetsOneHandleOnItsFirstUse) {
  auto writer = KBXOSLogWriter::init();
  OSLog* parser = writer->logForArea("Parser"_ns);
  EXPECT_TRUE(isSame(parser, writer->logForArea(string("Parser"))));
  EXPECT_FALSE(isSame(parser, writer->logForArea("Other"_ns)));
  EXPECT_FALSE(isSame(parser, writer->logForArea(nullptr)));
  EXPECT_THAT(log.created(), ElementsAre("KBXLogger", "KBXLogger.Parser", "KBXLogger.Other"));
}

TEST_F(KBXOSLogWriterTest, AnEmptyAreaIsAnAreaLikeOthers) {
  auto writer = KBXOSLogWriter::init();
  EXPECT_FALSE(isSame(writer->logForArea(""_ns), writer->logForArea(nullptr)));
  EXPECT_THAT(log.created(), ElementsAre("KBXLogger", "KBXLogger."));
}

TEST_F(KBXOSLogWriterTest, AnAreaThatIsNoUTF8HasAHandle) {
  auto writer = KBXOSLogWriter::init();
  auto area = NSString::stringWithUTF16(u"\xD800");
  EXPECT_TRUE(writer->logForArea(area));
  EXPECT_TRUE(isSame(writer->logForArea(area), writer->logForArea(area)));
}

TEST_F(KBXOSLogWriterTest, AnotherWriterHasHandlesOfItsOwn) {
  auto first = KBXOSLogWriter::init(), second = KBXOSLogWriter::init();
  EXPECT_FALSE(isSame(first->logForArea("Parser"_ns), second->logForArea("Parser"_ns)));
}

TEST_F(KBXOSLogWriterTest, TheHandlesGoWithTheWriterTheGeneralOneFirst) {
  auto writer = KBXOSLogWriter::init();
  writer->logForArea("Parser"_ns);
  EXPECT_THAT(log.released(), IsEmpty());
  writer = nullptr;
  EXPECT_THAT(log.released(), ElementsAre("KBXLogger", "KBXLogger.Parser"));
}

TEST_F(KBXOSLogWriterTest, TheSubsystemIsNamedAfterTheProcessEachTime) {
  auto writer = KBXOSLogWriter::init();
  EXPECT_EQ(text(writer->subsystem()), "org.ferncase.Host");
  identity.name = "Other";
  EXPECT_EQ(text(writer->subsystem()), "org.ferncase.Other");
  writer->writePrefix(""_ns, "a"_ns, nullptr);
  writer->writePrefix(""_ns, "b"_ns, "Parser"_ns);
  EXPECT_THAT(log.entries(), ElementsAre(Entry{"org.ferncase.Host", "KBXLogger", " a"},
                                         Entry{"org.ferncase.Other", "KBXLogger.Parser", " b"}));
}

// ---- One entry -------------------------------------------------------------------------------

TEST_F(KBXOSLogWriterTest, AnEntryGoesToTheHandleOfItsAreaAndToStandardError) {
  KBXOSLogWriter::init()->writePrefix("[Parser]"_ns, "abc"_ns, "Parser"_ns);
  EXPECT_THAT(log.entries(),
              ElementsAre(Entry{"org.ferncase.Host", "KBXLogger.Parser", "[Parser] abc"}));
  EXPECT_EQ(standardError(), momentText() + " [org.ferncase.Host] [Parser] abc\n");
}

/// A log whose handles write to standard error as well.
class ShowingLog final : public UnifiedLog {
 public:
  bool isAvailable() override { return true; }
  Ref<OSLog> create(NSString*, NSString*) override { return Ref<OSLog>::adopt(new Handle); }

 private:
  class Handle final : public OSLog {
    void writeError(const char* text) override { std::fprintf(stderr, "unified:%s\n", text); }
  };
  ScopedService<UnifiedLog> _installed{*this};
};

TEST_F(KBXOSLogWriterTest, TheUnifiedLogGetsAnEntryBeforeStandardError) {
  ShowingLog showing;
  KBXOSLogWriter::init()->writePrefix("p"_ns, "abc"_ns, nullptr);
  EXPECT_EQ(standardError(), "unified:p abc\n" + momentText() + " [org.ferncase.Host] p abc\n");
}

TEST_F(KBXOSLogWriterTest, AnEmptyPrefixLeavesTwoBlanksOnStandardError) {
  KBXOSLogWriter::init()->writePrefix(""_ns, "abc"_ns, nullptr);
  EXPECT_THAT(log.entries(), ElementsAre(Entry{"org.ferncase.Host", "KBXLogger", " abc"}));
  EXPECT_EQ(standardError(), momentText() + " [org.ferncase.Host]  abc\n");
}

TEST_F(KBXOSLogWriterTest, APercentSignIsText) {
  KBXOSLogWriter::init()->writePrefix("100%"_ns, "%d %s %n"_ns, nullptr);
  EXPECT_THAT(log.texts(), ElementsAre("100% %d %s %n"));
  EXPECT_THAT(standardError(), testing::EndsWith("] 100% %d %s %n\n"));
}

TEST_F(KBXOSLogWriterTest, UnderTheDevelopmentEnvironmentOnlyStandardErrorIsWritten) {
  environment.entries = {"KBXIsInXcode=YES"};
  KBXOSLogWriter::init()->writePrefix(""_ns, "abc"_ns, "Parser"_ns);
  EXPECT_THAT(log.entries(), IsEmpty());
  EXPECT_EQ(standardError(), momentText() + " [org.ferncase.Host]  abc\n");
  EXPECT_THAT(log.created(), ElementsAre("KBXLogger", "KBXLogger.Parser"));
}

TEST_F(KBXOSLogWriterTest, TheDevelopmentEnvironmentIsReadAsABoolean) {
  struct Case {
    const char* variable;
    bool isInXcode;
  };
  for (const auto& [variable, isInXcode] : {Case{"KBXIsInXcode=YES", true},
                                            {"KBXIsInXcode=yes", true},
                                            {"KBXIsInXcode=True", true},
                                            {"KBXIsInXcode=t", true},
                                            {"KBXIsInXcode=1", true},
                                            {"KBXIsInXcode=9", true},
                                            {"KBXIsInXcode= \t YES", true},
                                            {"KBXIsInXcode=NO", false},
                                            {"KBXIsInXcode=0", false},
                                            {"KBXIsInXcode=01", false},
                                            {"KBXIsInXcode=", false},
                                            {"KBXIsInXcode=on", false},
                                            {"KBXISINXCODE=YES", false},
                                            {"Other=YES", false}}) {
    SCOPED_TRACE(variable);
    environment.entries = {variable};
    const std::size_t before = log.entries().size();
    KBXOSLogWriter::init()->writePrefix(""_ns, "abc"_ns, nullptr);
    EXPECT_EQ(log.entries().size() - before, isInXcode ? 0 : 1);
  }
}

TEST_F(KBXOSLogWriterTest, TheDevelopmentEnvironmentIsReadOnceByEachWriter) {
  auto outside = KBXOSLogWriter::init();
  environment.entries = {"KBXIsInXcode=1"};
  auto inside = KBXOSLogWriter::init();
  environment.entries.clear();
  inside->writePrefix(""_ns, "inside"_ns, nullptr);
  outside->writePrefix(""_ns, "outside"_ns, nullptr);
  EXPECT_THAT(log.texts(), ElementsAre(" outside"));
}

TEST_F(KBXOSLogWriterTest, ATimeWithoutTextIsAnUnknownDate) {
  clock.seconds = std::numeric_limits<double>::quiet_NaN();
  KBXOSLogWriter::init()->writePrefix(""_ns, "abc"_ns, nullptr);
  EXPECT_EQ(standardError(), "unknown date [org.ferncase.Host]  abc\n");
}

TEST_F(KBXOSLogWriterTest, ASubsystemWithoutUTF8IsNamedAfterTheLogger) {
  auto writer = Failing::init();
  writer->hasSubsystem = false;
  writer->logCString("abc", nullptr);
  EXPECT_EQ(standardError(), momentText() + " [KBXLogger] abc\n");
  EXPECT_THAT(log.texts(), ElementsAre("abc"));
}

// ---- UTF-8 -----------------------------------------------------------------------------------

TEST_F(KBXOSLogWriterTest, TextWithoutUTF8IsWrittenWithEscapes) {
  struct Case {
    const char* rule;
    std::u16string text;
    const char* utf8;
  };
  auto writer = KBXOSLogWriter::init();
  for (const auto& [rule, units, utf8] :
       {Case{"UTF-8 as it is", u"a\u00E9\u20AC\U0001F600", "aé€😀"},
        {"empty text", u"", ""},
        {"a lone high surrogate", u"a\xD800", "UTF-8 error: a\\ud800"},
        {"a lone low surrogate in lower case", u"\xDFAB", "UTF-8 error: \\udfab"},
        {"a pair the wrong way round", u"\xDC00\xD800", "UTF-8 error: \\udc00\\ud800"},
        {"what is above 0xFF, a pair too", u"\u20AC\U0001F600\xD800",
         "UTF-8 error: \\u20ac\\ud83d\\ude00\\ud800"},
        {"0x80 to 0xFF in octal digits", u"\u0080\u00E9\u00FF\xD800",
         "UTF-8 error: \\200\\351\\377\\ud800"},
        {"a backslash", u"\\n\xD800", "UTF-8 error: \\\\n\\ud800"}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(writer->cStringFromString(NSString::stringWithUTF16(units)), utf8);
  }
}

TEST_F(KBXOSLogWriterTest, AnAbsentTextIsToldAsOne) {
  EXPECT_EQ(KBXOSLogWriter::init()->cStringFromString(nullptr), "UTF-8 error: (null)");
}

TEST_F(KBXOSLogWriterTest, AMessageWithoutUTF8IsWrittenWithItsPrefix) {
  KBXOSLogWriter::init()->writePrefix("[Parser]"_ns, NSString::stringWithUTF16(u"a\xD800"),
                                      "Parser"_ns);
  EXPECT_THAT(log.entries(), ElementsAre(Entry{"org.ferncase.Host", "KBXLogger.Parser",
                                               "UTF-8 error: [Parser] a\\ud800"}));
}

TEST_F(KBXOSLogWriterTest, WithoutAnyUTF8AFixedTextIsWrittenToTheArea) {
  auto writer = Failing::init();
  writer->hasUTF8 = false;
  writer->writePrefix("p"_ns, letters(1000), "Parser"_ns);
  EXPECT_THAT(log.entries(), ElementsAre(Entry{"org.ferncase.Host", "KBXLogger.Parser",
                                               "Fallback UTF-8 conversion failed."}));
  EXPECT_EQ(standardError(),
            momentText() + " [org.ferncase.Host] Fallback UTF-8 conversion failed.\n");
}

TEST_F(KBXOSLogWriterTest, AnEntryEndsWithItsFirstZeroByte) {
  auto message = NSString::stringWithUTF16(std::u16string(u"abc\0def", 7));
  KBXOSLogWriter::init()->writePrefix(""_ns, message, nullptr);
  EXPECT_THAT(log.texts(), ElementsAre(" abc"));
}

// ---- Long messages ---------------------------------------------------------------------------

TEST_F(KBXOSLogWriterTest, AnEntryOf255BytesIsWholeAndOneOf256IsSplit) {
  auto writer = KBXOSLogWriter::init();
  writer->writePrefix(""_ns, letters(254), nullptr);
  EXPECT_THAT(log.texts(), ElementsAre(" " + text(letters(254))));
  writer->writePrefix(""_ns, letters(255), nullptr);
  EXPECT_THAT(log.texts(), ElementsAre(" " + text(letters(254)), " " + text(letters(129)),
                                       " " + text(letters(126))));
}

TEST_F(KBXOSLogWriterTest, TheLengthIsInBytesNotInUnits) {
  auto writer = KBXOSLogWriter::init();
  writer->writePrefix(""_ns, repeated(u"\u00E9", 127), nullptr);  // 255 bytes
  EXPECT_EQ(log.texts().size(), 1u);
  writer->writePrefix("p"_ns, repeated(u"\u00E9", 130), nullptr);  // 262 bytes
  EXPECT_THAT(log.texts(), ElementsAre(" " + text(repeated(u"\u00E9", 127)),
                                       "p " + text(repeated(u"\u00E9", 129)), "p é"));
}

TEST_F(KBXOSLogWriterTest, EachPieceBearsThePrefixAndGoesToTheSameArea) {
  KBXOSLogWriter::init()->writePrefix("[P]"_ns, letters(300), "Parser"_ns);
  auto entry = [](std::size_t count) {
    return Entry{"org.ferncase.Host", "KBXLogger.Parser", "[P] " + text(letters(count))};
  };
  EXPECT_THAT(log.entries(), ElementsAre(entry(129), entry(129), entry(42)));
  const std::string start = momentText() + " [org.ferncase.Host] [P] ";
  EXPECT_EQ(standardError(), start + text(letters(129)) + "\n" + start + text(letters(129)) + "\n" +
                                 start + text(letters(42)) + "\n");
}

TEST_F(KBXOSLogWriterTest, AShortMessageBehindALongPrefixIsOnePiece) {
  auto prefix = letters(300);
  KBXOSLogWriter::init()->writePrefix(prefix, "abc"_ns, nullptr);
  EXPECT_THAT(log.texts(), ElementsAre(text(prefix) + " abc"));
}

TEST_F(KBXOSLogWriterTest, AnEmptyMessageBehindALongPrefixVanishes) {
  KBXOSLogWriter::init()->writePrefix(letters(300), ""_ns, nullptr);
  EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(KBXOSLogWriterTest, APieceIsNeverCutAgain) {
  auto prefix = letters(200);
  KBXOSLogWriter::init()->writePrefix(prefix, letters(200), nullptr);
  EXPECT_THAT(log.texts(), ElementsAre(text(prefix) + " " + text(letters(129)),
                                       text(prefix) + " " + text(letters(71))));
}

TEST_F(KBXOSLogWriterTest, WithoutTheLengthCheckAnEntryIsWhole) {
  KBXOSLogWriter::init()->writePrefix("p"_ns, letters(1000), nullptr, false);
  EXPECT_THAT(log.texts(), ElementsAre("p " + text(letters(1000))));
}

TEST_F(KBXOSLogWriterTest, AShortMessageKeepsItsLineFeeds) {
  KBXOSLogWriter::init()->writePrefix(""_ns, "a\n\nb"_ns, nullptr);
  EXPECT_THAT(log.texts(), ElementsAre(" a\n\nb"));
}

TEST_F(KBXOSLogWriterTest, EmptyLinesOfALongMessageVanish) {
  KBXOSLogWriter::init()->writePrefix(letters(255), "a\n\nb"_ns, nullptr);
  EXPECT_THAT(log.texts(), ElementsAre(text(letters(255)) + " a", text(letters(255)) + " b"));
}

TEST_F(KBXOSLogWriterTest, ALongMessageWithoutUTF8IsSplitAsItIsNotEscaped) {
  std::u16string units(129, u'x');
  units.insert(0, 1, char16_t{0xD800});
  auto message = NSString::stringWithUTF16(units);
  KBXOSLogWriter::init()->writePrefix(letters(250), message, nullptr);
  EXPECT_THAT(log.texts(),
              ElementsAre("UTF-8 error: " + text(letters(250)) + " \\ud800" + text(letters(128)),
                          text(letters(250)) + " x"));
}

// ---- Splitting -------------------------------------------------------------------------------

TEST_F(KBXOSLogWriterTest, AMessageIsSplitAtLineFeedsAlone) {
  struct Case {
    const char* rule;
    Ref<NSString> message;
    Texts pieces;
  };
  auto writer = KBXOSLogWriter::init();
  for (const auto& [rule, message, pieces] :
       {Case{"lines", "a\nb"_ns, {"a", "b"}},
        {"an empty line has no piece", "a\n\nb"_ns, {"a", "b"}},
        {"nor have those at the ends", "\na\n"_ns, {"a"}},
        {"line feeds alone", "\n\n"_ns, {}},
        {"an empty message", ""_ns, {}},
        {"an absent message", nullptr, {}},
        {"a carriage return stays in its line", "a\r\nb\rc"_ns, {"a\r", "b\rc"}},
        {"other line ends do not count", string("a\u2028b\u0085c\vd"), {"a\u2028b\u0085c\vd"}}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(texts(writer->splitMessage(message)), pieces);
  }
}

TEST_F(KBXOSLogWriterTest, EachLineIsSplitByItself) {
  auto message = stringWithFormat("%@\nb\n%@"_ns, letters(130), letters(300));
  EXPECT_THAT(lengths(KBXOSLogWriter::init()->splitMessage(message)),
              ElementsAre(129, 1, 1, 129, 129, 42));
}

TEST_F(KBXOSLogWriterTest, APieceIsClosedOnceItIsLongerThanTheLimit) {
  auto writer = KBXOSLogWriter::init();
  EXPECT_THAT(lengths(writer->splitLine(letters(128), 128)), ElementsAre(128));
  EXPECT_THAT(lengths(writer->splitLine(letters(129), 128)), ElementsAre(129));
  EXPECT_THAT(lengths(writer->splitLine(letters(130), 128)), ElementsAre(129, 1));
  EXPECT_THAT(lengths(writer->splitLine(letters(258), 128)), ElementsAre(129, 129));
  EXPECT_THAT(lengths(writer->splitLine(letters(300), 128)), ElementsAre(129, 129, 42));
  EXPECT_THAT(lengths(writer->splitLine(letters(3), 0)), ElementsAre(1, 1, 1));
  EXPECT_THAT(lengths(writer->splitLine(letters(3), 1000)), ElementsAre(3));
}

TEST_F(KBXOSLogWriterTest, ALineWithoutTextHasNoPieces) {
  auto writer = KBXOSLogWriter::init();
  EXPECT_THAT(lengths(writer->splitLine(""_ns, 128)), IsEmpty());
  EXPECT_THAT(lengths(writer->splitLine(nullptr, 128)), IsEmpty());
}

TEST_F(KBXOSLogWriterTest, NoPairIsCut) {
  auto writer = KBXOSLogWriter::init();
  auto emoji = repeated(u"\U0001F600", 200);
  EXPECT_THAT(lengths(writer->splitLine(emoji, 128)), ElementsAre(130, 130, 130, 10));
  // Shifted by one unit, the limit falls between the halves of a pair.
  auto shifted = stringWithFormat("x%@"_ns, emoji);
  EXPECT_THAT(lengths(writer->splitLine(shifted, 128)), ElementsAre(129, 130, 130, 12));
}

TEST_F(KBXOSLogWriterTest, NoComposedCharacterIsCut) {
  struct Case {
    const char* rule;
    std::u16string line;
    std::vector<std::size_t> lengths;  // of the pieces, for a limit of 4
  };
  auto writer = KBXOSLogWriter::init();
  for (const auto& [rule, line, expected] :
       {Case{"a base with its marks", u"abcde\u0301\u0323f", {7, 1}},
        {"a flag", u"abcd\U0001F1E8\U0001F1EDx", {8, 1}},
        {"a joined emoji", u"abcd\U0001F468\u200D\U0001F469\u200D\U0001F467x", {12, 1}},
        {"a syllable of its letters", u"abcd\u1112\u1161\u11ABx", {7, 1}},
        {"a carriage return and a line feed are two", u"abcd\r\nx", {5, 2}},
        {"a lone surrogate is one", u"abcd\xD800x", {5, 1}},
        {"a mark with no base", u"\u0301abcde", {5, 1}}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(lengths(writer->splitLine(NSString::stringWithUTF16(line), 4)), expected);
  }
}

TEST_F(KBXOSLogWriterTest, AnEndlessComposedCharacterIsOnePiece) {
  auto line = stringWithFormat("e%@x"_ns, repeated(u"\u0301", 1000));
  EXPECT_THAT(lengths(KBXOSLogWriter::init()->splitLine(line, 128)), ElementsAre(1001, 1));
}

}  // namespace
}  // namespace kbx
