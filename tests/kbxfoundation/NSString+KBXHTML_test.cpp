#include "NSString+KBXHTML.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "KBXLogger.h"
#include "NSError+KBX.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/objects/NSNumber.h"
#include "platform/preferences/NSUserDefaults.h"
#include "platform/xml/XMLProcessing.h"
#include "tests/support/Markup.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RandomMarkup.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryPreferences.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using Lines = std::vector<std::string>;

const char* const kUngated = "+[NSString(KBXHTML) kbxUngatedStringWithHTMLData:error:]";
const char* const kTextData = "NSData *textDataFromDocument(NSXMLDocument *, NSData *, NSError **)";

/// The shared logger has only these areas on while it lives.
class Areas {
 public:
  explicit Areas(std::initializer_list<NSString*> areas = {},
                 std::initializer_list<NSString*> options = {}) {
    auto switches = NSMutableDictionary::dictionary();
    auto yes = NSNumber::numberWithBool(true);
    for (NSString* area : areas) switches->setObjectForKey(yes, area);
    for (NSString* option : options) switches->setObjectForKey(yes, option);
    KBXLogger::setSharedLogger(KBXLogger::initWithDefaultsDictionary(switches));
  }
  ~Areas() { KBXLogger::setSharedLogger(nullptr); }
};

/// The answers of the engine, each of which a test may replace.
class FakeXML final : public XMLProcessing {
 public:
  enum class Answer { Engine, Failure, SystemFailure, Empty, Text, BadText, Object, Raise };
  Answer first = Answer::Engine, second = Answer::Engine, transformed = Answer::Engine;
  int parses = 0;

  Ref<NSXMLDocument> documentWithData(NSData* data, std::uint64_t options,
                                      Ref<NSError>* error) override {
    optionsSeen.push_back(options);
    const Answer answer = ++parses == 1 ? first : second;
    if (answer == Answer::Engine) return XMLProcessing::documentWithData(data, options, error);
    if (answer == Answer::Raise) raiseRange("a test");
    if (answer == Answer::SystemFailure && error)
      *error = posixError(4);
    else if (error)
      *error = NSError::errorWithDomain(NSXMLParserErrorDomain(), answer == Answer::Empty ? 4 : 77,
                                        nullptr);
    return nullptr;
  }

  Ref<NSObject> objectByApplyingXSLT(const NSXMLDocument& document, NSString* xslt,
                                     NSDictionary* arguments, Ref<NSError>* error) override {
    stylesheet = text(xslt);
    hasArguments = arguments != nullptr;
    switch (transformed) {
      case Answer::Failure:
        if (error) *error = posixError(5);
        return nullptr;
      case Answer::Empty:
        return NSXMLDocument::document();
      case Answer::Text:
        return data("text");
      case Answer::BadText:
        return data("\xFF");
      case Answer::Object:
        return "an object"_ns;
      default:
        return XMLProcessing::objectByApplyingXSLT(document, xslt, arguments, error);
    }
  }

  std::vector<std::uint64_t> optionsSeen;
  std::string stylesheet;
  bool hasArguments = true;

 private:
  ScopedService<XMLProcessing> _installed{*this};
};

/// The stack frames of an error, the newest first, with "; " between.
std::string framesOf(NSError* error) {
  auto* frames =
      error ? cast<NSArray>(error->userInfo()->objectForKey("KBXStackFrames"_ns)) : nullptr;
  return frames ? text(frames->componentsJoinedByString("; "_ns)) : "none";
}

std::string frame(const char* function, int line) {
  return std::string(function) + " (" + std::to_string(line) + ")";
}

std::string converted(std::string_view html) {
  return text(kbxUngatedStringWithHTMLData(data(html), nullptr));
}

class NSStringKBXHTML : public testing::Test {
 protected:
  Areas _off;
};

// ---- What comes out ----

TEST_F(NSStringKBXHTML, EmptyDataIsEmptyTextWithoutAParse) {
  FakeXML xml;
  Ref<NSError> error;
  EXPECT_EQ(text(kbxUngatedStringWithHTMLData(NSData::data(), &error)), "");
  EXPECT_FALSE(error);
  EXPECT_EQ(xml.parses, 0);
}

TEST_F(NSStringKBXHTML, HiddenTextDoesNotReachTheOutput) {
  struct Case {
    const char *rule, *input, *output;
  };
  for (auto [rule, input, output] :
       {Case{"head", "<head><title>a</title></head><body>b", "b"},
        Case{"script", "a<script>b</script>c", "ac"},
        Case{"each noframes is one blank", "a<noframes>b</noframes><noframes>c</noframes>d",
             "a  \nd"},
        Case{"comments", "a<!-- b -->c", "ac"},
        Case{"the charset is the document's", "<meta charset=koi8-r>\xC1", "а"}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(converted(input), output);
    FakeXML steps;
    EXPECT_EQ(converted(input), output);
  }
}

TEST_F(NSStringKBXHTML, TheShortWayFindsWhatTheStepsFind) {
  std::mt19937 random(20250104);
  for (int i = 0; i < 4000; ++i) {
    const std::string html = i % 4 == 0 ? test::randomXML(random) : test::randomHTML(random);
    Ref<NSError> shortError, longError;
    auto found = kbxUngatedStringWithHTMLData(data(html), &shortError);
    FakeXML steps;
    ASSERT_EQ(text(found), text(kbxUngatedStringWithHTMLData(data(html), &longError))) << html;
    ASSERT_EQ(shortError != nullptr, longError != nullptr) << html;
  }
}

TEST_F(NSStringKBXHTML, NothingToPutOutIsEmptyTextWithAStaleError) {
  for (const bool isObserved : {false, true}) {
    std::optional<FakeXML> steps;
    if (isObserved) steps.emplace();
    Ref<NSError> error;
    EXPECT_EQ(text(kbxUngatedStringWithHTMLData(data("<p> </p>"), &error)), "");
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), kUnexpectedClassError);
    EXPECT_EQ(framesOf(error), frame("-[NSObject(KBX) kbxEnsureClass:error:]", 34));
    EXPECT_EQ(converted("<p> </p>"), "");
  }
}

TEST_F(NSStringKBXHTML, CommentsAloneAreEmptyTextWithoutAnError) {
  for (const bool isObserved : {false, true}) {
    std::optional<FakeXML> steps;
    if (isObserved) steps.emplace();
    Ref<NSError> error;
    EXPECT_EQ(text(kbxUngatedStringWithHTMLData(data("<!-- a -->"), &error)), "");
    EXPECT_FALSE(error);
  }
}

// ---- What is asked of the platform ----

TEST_F(NSStringKBXHTML, TheMasksPreserveEverythingAndTidy) {
  FakeXML xml;
  converted("x");
  EXPECT_EQ(xml.optionsSeen, (std::vector<std::uint64_t>{0xFFF0061E, 0xFFF0021E}));
}

TEST_F(NSStringKBXHTML, TheStylesheetIsThisLine) {
  FakeXML xml;
  converted("x");
  const std::string gap(5, ' ');
  EXPECT_EQ(xml.stylesheet,
            "<?xml version='1.0' encoding='utf-8'?>" + gap + "<xsl:stylesheet version='1.0'" + gap +
                "xmlns:xsl='http://www.w3.org/1999/XSL/Transform'" + gap +
                "xmlns:xhtml='http://www.w3.org/1999/xhtml'>" + gap +
                "<xsl:output method='text'/>" + gap +
                "<xsl:template match='xhtml:head'></xsl:template>" + gap +
                "<xsl:template match='xhtml:script'></xsl:template>" + gap +
                "<xsl:template match='xhtml:noframes'><xsl:text> </xsl:text></xsl:template>" + gap +
                "</xsl:stylesheet>");
  EXPECT_FALSE(xml.hasArguments);
}

// ---- Failures ----

TEST_F(NSStringKBXHTML, AbsentDataFailsAt192) {
  Ref<NSError> error;
  EXPECT_FALSE(kbxUngatedStringWithHTMLData(nullptr, &error));
  EXPECT_EQ(error->code(), kRequirementFailedError);
  EXPECT_EQ(text(error->localizedDescription()), "The requirement “htmlData” was not satisfied.");
  EXPECT_EQ(framesOf(error), frame(kUngated, 192));
  EXPECT_FALSE(kbxUngatedStringWithHTMLData(nullptr, nullptr));
}

TEST_F(NSStringKBXHTML, EveryFailureOfThePlatformHasItsFrames) {
  using Answer = FakeXML::Answer;
  struct Case {
    const char* rule;
    Answer first, second, transformed;
    std::int64_t code;
    std::string frames;
  };
  const std::string ensure = frame("-[NSObject(KBX) kbxEnsureClass:error:]", 34);
  const auto engine = Answer::Engine;
  for (const auto& [rule, first, second, transformed, code, frames] : {
           Case{"the first parse", Answer::Failure, engine, engine, 77, frame(kUngated, 196)},
           Case{"the first parse finds nothing", Answer::Empty, engine, engine, 4,
                frame(kUngated, 196)},
           Case{"the second parse", engine, Answer::Failure, engine, 77, frame(kUngated, 211)},
           Case{"the second parse, with an empty document's code of another domain", engine,
                Answer::SystemFailure, engine, 4, frame(kUngated, 211)},
           Case{"the transformation", engine, engine, Answer::Failure, 5,
                frame(kUngated, 216) + "; " + frame(kTextData, 102)},
           Case{"another object", engine, engine, Answer::Object, kUnexpectedClassError,
                frame(kUngated, 216) + "; " + frame(kTextData, 108) + "; " + ensure},
           Case{"bytes that are no UTF-8", engine, engine, Answer::BadText, 500,
                frame(kUngated, 218)},
       }) {
    SCOPED_TRACE(rule);
    for (const bool isAsked : {true, false}) {
      FakeXML xml;
      xml.first = first;
      xml.second = second;
      xml.transformed = transformed;
      Ref<NSError> error;
      EXPECT_FALSE(kbxUngatedStringWithHTMLData(data("x"), isAsked ? &error : nullptr));
      if (!isAsked) continue;
      ASSERT_TRUE(error);
      EXPECT_EQ(error->code(), code);
      EXPECT_EQ(framesOf(error), frames);
    }
  }
}

TEST_F(NSStringKBXHTML, AFailedTransformationOfAnotherObjectNamesTheHTML) {
  FakeXML xml;
  xml.transformed = FakeXML::Answer::Object;
  Ref<NSError> error;
  kbxUngatedStringWithHTMLData(data("<p>"), &error);
  EXPECT_EQ(text(cast<NSData>(error->userInfo()->objectForKey("KBXInputObject"_ns))), "<p>");
}

TEST_F(NSStringKBXHTML, AnEmptyDocumentsErrorOfTheSecondParseIsEmptyText) {
  FakeXML xml;
  xml.second = FakeXML::Answer::Empty;
  auto before = posixError(1);
  Ref<NSError> error = before;
  EXPECT_EQ(text(kbxUngatedStringWithHTMLData(data("x"), &error)), "");
  EXPECT_TRUE(isSame(error, before)) << "the caller's error is left alone";
}

// ---- Logs ----

TEST(NSStringKBXHTMLLogs, TheDataLogComesBeforeTheArgumentCheck) {
  const Areas areas(
      {KBXHTMLConverterDataLog()},
      {"KBXLoggerIncludeFile"_ns, "KBXLoggerIncludeLine"_ns, "KBXLoggerIncludeFunction"_ns});
  const std::string place = std::string("KBXHTMLConverterDataLog NSString+KBXHTML:191 ") + kUngated;
  RecordingLog log;
  kbxUngatedStringWithHTMLData(nullptr, nullptr);
  kbxUngatedStringWithHTMLData(data("ab"), nullptr);
  ASSERT_EQ(log.lines().size(), 2U);
  EXPECT_TRUE(log.lines()[0].ends_with("(null)")) << log.lines()[0];
  EXPECT_TRUE(log.lines()[1].ends_with("{length = 2, bytes = 0x6162}")) << log.lines()[1];
  for (const std::string& line : log.lines())
    for (const char* part : {"NSString+KBXHTML:191", kUngated})
      EXPECT_NE(line.find(part), line.npos) << line;
}

TEST(NSStringKBXHTMLLogs, ThePrettyLogHasTwoEntriesForEachConversion) {
  const Areas areas(
      {KBXHTMLConverterPrettyLog()},
      {"KBXLoggerIncludeFile"_ns, "KBXLoggerIncludeLine"_ns, "KBXLoggerIncludeFunction"_ns});
  RecordingLog log;
  EXPECT_EQ(converted("<p>a<!-- b -->"), "a");
  const Lines lines = log.lines();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_NE(lines[0].find("Parsed: <?xml"), std::string::npos);
  EXPECT_NE(lines[0].find("<!-- b -->"), std::string::npos);
  EXPECT_NE(lines[1].find("Comments Removed: <?xml"), std::string::npos);
  EXPECT_EQ(lines[1].find("<!-- b -->"), std::string::npos);
  for (const std::string& line : lines) {
    EXPECT_NE(line.find("NSString+KBXHTML:116"), line.npos) << line;
    EXPECT_NE(line.find("void logDocument(NSXMLDocument *, NSString *)"), line.npos) << line;
  }
}

TEST(NSStringKBXHTMLLogs, NothingConsultsTheHashLog) {
  const Areas areas({KBXHTMLConverterHashLog()});
  RecordingLog log;
  converted("x");
  EXPECT_EQ(log.lines(), Lines{});
}

// ---- The steps by themselves ----

TEST_F(NSStringKBXHTML, AbsentArgumentsOfTheStepsAreNamed) {
  auto document = test::parsed("x");
  auto bytes = data("x");
  struct Case {
    const char* requirement;
    std::string frames;
    std::function<bool(Ref<NSError>*)> succeeds;
  };
  const Case cases[] = {
      {"data",
       frame("NSXMLDocument *documentFromDataOptions(NSData *, NSUInteger, NSError **)", 17),
       [](auto* error) { return documentFromDataOptions(nullptr, 0, error) != nullptr; }},
      {"data",
       frame("NSXMLDocument *documentFromDataOptions(NSData *, NSUInteger, NSError **)", 17),
       [](auto* error) { return documentFromData(nullptr, true, error) != nullptr; }},
      {"string", frame("NSXMLDocument *documentFromString(NSString *, NSError **)", 71),
       [](auto* error) { return documentFromString(nullptr, error) != nullptr; }},
      {"document", frame(kTextData, 87),
       [&](auto* error) { return textDataFromDocument(nullptr, bytes, error) != nullptr; }},
      {"htmlData", frame(kTextData, 88),
       [&](auto* error) { return textDataFromDocument(document, nullptr, error) != nullptr; }},
      {"document",
       frame("NSXMLDocument *removeCommentsFromDocument(NSXMLDocument *, NSError **)", 122),
       [](auto* error) { return removeCommentsFromDocument(nullptr, error) != nullptr; }},
      {"data", frame("NSString *stringFromData(NSData *, NSError **)", 157),
       [](auto* error) { return stringFromData(nullptr, error) != nullptr; }},
  };
  for (const auto& [requirement, frames, succeeds] : cases) {
    SCOPED_TRACE(frames);
    Ref<NSError> error;
    EXPECT_FALSE(succeeds(&error));
    EXPECT_FALSE(succeeds(nullptr));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), kRequirementFailedError);
    EXPECT_EQ(text(error->localizedDescription()),
              "The requirement “" + std::string(requirement) + "” was not satisfied.");
    EXPECT_EQ(framesOf(error), frames);
  }
}

TEST_F(NSStringKBXHTML, APlatformsErrorGetsNoFrameWhereADocumentIsMade) {
  FakeXML xml;
  xml.first = xml.second = FakeXML::Answer::Failure;
  Ref<NSError> error;
  EXPECT_FALSE(documentFromDataOptions(data("x"), 0, &error));
  EXPECT_EQ(framesOf(error), "none");
  error = nullptr;
  EXPECT_FALSE(documentFromString("x"_ns, &error));
  EXPECT_EQ(framesOf(error), "none");
}

TEST_F(NSStringKBXHTML, TheFlagChoosesTheMask) {
  FakeXML xml;
  documentFromData(data("x"), true, nullptr);
  documentFromData(data("x"), false, nullptr);
  documentFromString("x"_ns, nullptr);
  EXPECT_EQ(xml.optionsSeen, (std::vector<std::uint64_t>{0xFFF0061E, 0xFFF0021E, 0xFFF0021E}));
}

TEST_F(NSStringKBXHTML, CommentsAreRemovedFromADocument) {
  auto document = removeCommentsFromDocument(test::parsed("<p>a<!-- b -->"), nullptr);
  EXPECT_EQ(text(document->XMLStringWithOptions(0)).find("<!--"), std::string::npos);
}

TEST_F(NSStringKBXHTML, OnlyADocumentWithoutAFormIsEmpty) {
  EXPECT_TRUE(isEmptyDocument(NSXMLDocument::document()));
  EXPECT_TRUE(isEmptyDocument(test::parsed("<!-- a -->", test::kTidyBoth)));
  EXPECT_FALSE(isEmptyDocument(test::parsed("x")));
  EXPECT_FALSE(isEmptyDocument(""_ns));
  EXPECT_FALSE(isEmptyDocument(nullptr));
}

TEST_F(NSStringKBXHTML, BytesAreUTF8) {
  EXPECT_EQ(text(stringFromData(data("é"), nullptr)), "é");
  Ref<NSError> error;
  EXPECT_FALSE(stringFromData(data("\xFF"), &error));
  EXPECT_EQ(error->code(), 500);
  EXPECT_EQ(framesOf(error), "none");
}

TEST_F(NSStringKBXHTML, OnlyAnElementOfThatVeryNameIsDeleted) {
  auto root = test::parsed("<a><noframes/><NOFRAMES/><b/>noframes<?noframes?></a>", test::kTidyBoth)
                  ->rootElement();
  auto children = root->children();
  std::vector<bool> answers;
  for (const auto& child : *children) answers.push_back(shouldDeleteNode(cast<NSXMLNode>(child)));
  EXPECT_EQ(answers, (std::vector{true, false, false, false, false}));
  EXPECT_FALSE(shouldDeleteNode(nullptr));
}

TEST_F(NSStringKBXHTML, NoframesElementsAreTakenOutOfASubtree) {
  auto document = test::parsed(
      "<a><noframes>x<b/></noframes>t<noframes/><b><noframes/>u<c><noframes/></c></b></a>",
      test::kTidyBoth);
  processDocument(document);
  EXPECT_EQ(text(document->rootElement()->XMLStringWithOptions(0)), "<a>t<b>u<c/></b></a>");
}

TEST_F(NSStringKBXHTML, ARootIsNotTakenOut) {
  auto document = test::parsed("<noframes>x</noframes>", test::kTidyBoth);
  processDocument(document);
  EXPECT_TRUE(document->rootElement());
  processDocument(nullptr);
  processDocument(NSXMLDocument::document());
  processNode(document);
  EXPECT_TRUE(document->rootElement()) << "a document is no element";
}

// ---- The gate ----

TEST_F(NSStringKBXHTML, TheGatedConversionAnswersLikeTheOther) {
  EXPECT_EQ(text(kbxStringWithHTMLData(data("<p>a<p>b"), nullptr)), "a\nb");
  Ref<NSError> error;
  EXPECT_FALSE(kbxStringWithHTMLData(nullptr, &error));
  EXPECT_EQ(framesOf(error), frame(kUngated, 192));
}

/// Counts how many conversions are inside at once.
class CountingXML final : public XMLProcessing {
 public:
  Ref<NSXMLDocument> documentWithData(NSData* data, std::uint64_t options,
                                      Ref<NSError>* error) override {
    const int now = ++_inside;
    for (int seen = most; now > seen && !most.compare_exchange_weak(seen, now);) {
    }
    std::this_thread::yield();
    auto document = XMLProcessing::documentWithData(data, options, error);
    --_inside;
    return document;
  }

  std::atomic<int> most{0};

 private:
  std::atomic<int> _inside{0};
  ScopedService<XMLProcessing> _installed{*this};
};

/// The most conversions at once while so many threads convert.
int mostConversionsAtOnce(int threads) {
  CountingXML xml;
  auto html = data("<p>a<p>b");
  kbxStringWithHTMLData(html, nullptr);  // threads that ask first at once may get a gate each
  std::barrier start(threads);
  std::vector<std::thread> running;
  for (int i = 0; i < threads; ++i)
    running.emplace_back([&] {
      start.arrive_and_wait();
      for (int k = 0; k < 200; ++k)
        if (text(kbxStringWithHTMLData(html, nullptr)) != "a\nb") std::abort();
    });
  for (std::thread& thread : running) thread.join();
  return xml.most;
}

TEST_F(NSStringKBXHTML, NoMoreThanEightConversionsRunAtOnce) {
  EXPECT_LE(mostConversionsAtOnce(16), 8);
}

// In a process of its own: the count is read once.
TEST_F(NSStringKBXHTML, TheUserDefaultMakesThemRunOneAfterAnother) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto runOneByOne = [] {
    TemporaryPreferences preferences;
    auto* defaults = NSUserDefaults::standardUserDefaults();
    defaults->setIntegerForKey(1, "KBXStringWithHTMLSemaphore"_ns);
    const int most = mostConversionsAtOnce(8);
    defaults->setIntegerForKey(8, "KBXStringWithHTMLSemaphore"_ns);
    std::exit(most == 1 && mostConversionsAtOnce(8) == 1 ? 0 : 1);
  };
  EXPECT_EXIT(runOneByOne(), testing::ExitedWithCode(0), "");
}

TEST_F(NSStringKBXHTML, AnExceptionGivesItsUnitBack) {
  for (int i = 0; i < 20; ++i) {  // more often than the semaphore has units
    FakeXML xml;
    xml.first = FakeXML::Answer::Raise;
    EXPECT_EQ(nameRaisedBy([] { kbxStringWithHTMLData(data("x"), nullptr); }), "NSRangeException");
  }
  EXPECT_EQ(text(kbxStringWithHTMLData(data("x"), nullptr)), "x");
}

}  // namespace
}  // namespace kbx
