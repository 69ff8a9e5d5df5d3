#include "NSError+KBXDescription.h"

#include <map>
#include <random>

#include "NSError+KBX.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "platform/preferences/NSUserDefaults.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

/// An object whose description is the test's.
class Described : public NSObject {
  KBX_OBJECT(Described, NSObject)
 public:
  static Ref<Described> make(NSString* text) { return Ref<Described>::adopt(new Described(text)); }
  Ref<NSString> description() const override { return _text; }

 protected:
  explicit Described(NSString* text) : _text(text) {}

 private:
  const Ref<NSString> _text;
};
KBX_CLASS(Described)

/// The same of a class that stands beside the root class and knows nothing of kinds.
class Foreign final : public Described {
 public:
  static Ref<Foreign> make(NSString* text) { return Ref<Foreign>::adopt(new Foreign(text)); }
  NSClass* objectClass() const noexcept override {
    static auto* const root = NSClass::make("Foreign", nullptr);
    return root;
  }

 private:
  using Described::Described;
};

class ShortLogging final : public Preferences {
 public:
  Ref<NSDictionary> domain(NSString*) override {
    return NSDictionary::dictionaryWithPairs(
        {{"ErrorShortLogging"_ns, NSNumber::numberWithBool(true)}});
  }

 private:
  ScopedService<Preferences> _installed{*this};
};

Ref<NSDictionary> pairs(std::initializer_list<NSDictionary::Pair> list) {
  return NSDictionary::dictionaryWithPairs(list);
}

/// An error whose description is "text", so that the platform adds nothing.
Ref<NSError> errorWith(std::initializer_list<NSDictionary::Pair> list) {
  auto error = NSError::errorWithDomain("D"_ns, 1, pairs(list));
  return kbxErrorBySettingDescription(error, "text"_ns);
}

/// How a value stands in a full description, up to the next entry.
std::string printed(NSObject* value) {
  const std::string before = "<NSError Domain=D Code=1 UserInfo={\n    A = ";
  const std::string after = ",\n    NSLocalizedDescription = \"text\"\n    }>";
  std::string full = text(kbxFullDescription(errorWith({{"A"_ns, value}})));
  EXPECT_TRUE(full.starts_with(before) && full.ends_with(after)) << full;
  return full.substr(before.size(), full.size() - before.size() - after.size());
}

TEST(NSErrorKBXDescription, AnErrorIsADictionaryWithSortedKeysAndIndentedLevels) {
  auto error = KBXError1(901, pairs({{"KBXFailingObject"_ns, "data"_ns}}));
  error = kbxErrorByAddingStackFrame(error, "int a(void)", 1);
  error = kbxErrorByAddingStackFrame(error, "-[B b:]", 22);
  EXPECT_EQ(text(kbxFullDescription(error)),
            "<NSError Domain=KBXErrorDomain Code=901 UserInfo={\n"
            "    KBXFailingObject = \"data\",\n"
            "    KBXStackFrames = (\n"
            "        \"-[B b:] (22)\",\n"
            "        \"int a(void) (1)\"\n"
            "        ),\n"
            "    NSLocalizedDescription = \"The operation couldn’t be completed. "
            "(KBXErrorDomain error 901.)\"\n"
            "    }>");
}

TEST(NSErrorKBXDescription, AnAbsentErrorHasNone) {
  EXPECT_EQ(kbxFullDescription(nullptr), nullptr);
}

TEST(NSErrorKBXDescription, TheCodeIsSigned) {
  auto error = NSError::errorWithDomain("D"_ns, INT64_MIN, nullptr);
  EXPECT_TRUE(text(kbxFullDescription(error))
                  .starts_with("<NSError Domain=D Code=-9223372036854775808 UserInfo={\n"));
}

TEST(NSErrorKBXDescription, TheSystemsReasonIsAddedForAPOSIXError) {
  EXPECT_EQ(text(kbxFullDescription(posixError(2))),
            "<NSError Domain=NSPOSIXErrorDomain Code=2 UserInfo={\n"
            "    NSLocalizedDescription = \"The operation couldn’t be completed. "
            "No such file or directory\",\n"
            "    NSLocalizedFailureReason = \"No such file or directory\"\n"
            "    }>");
}

TEST(NSErrorKBXDescription, EntriesOfTheUserInfoAreKept) {
  auto error = NSError::errorWithDomain(
      NSPOSIXErrorDomain(), 2,
      pairs({{NSLocalizedRecoverySuggestionErrorKey(), "s"_ns},
             {NSLocalizedFailureReasonErrorKey(), "r"_ns},
             {NSLocalizedDescriptionKey(), NSNumber::numberWithInteger(5)}}));
  EXPECT_EQ(text(kbxFullDescription(error)),
            "<NSError Domain=NSPOSIXErrorDomain Code=2 UserInfo={\n"
            "    NSLocalizedDescription = 5,\n"
            "    NSLocalizedFailureReason = \"r\",\n"
            "    NSLocalizedRecoverySuggestion = \"s\"\n"
            "    }>");
}

TEST(NSErrorKBXDescription, TheErrorBehindItIsAQuotedTextOneLevelDeeper) {
  auto deepest = errorWith({{"list"_ns, NSArray::arrayWithObjects({"x"_ns})}});
  auto middle = kbxErrorBySettingUnderlyingError(errorWith({}), deepest);
  auto error = kbxErrorBySettingUnderlyingError(errorWith({}), middle);
  EXPECT_EQ(text(kbxFullDescription(error)),
            "<NSError Domain=D Code=1 UserInfo={\n"
            "    NSLocalizedDescription = \"text\",\n"
            "    NSUnderlyingError = \"<NSError Domain=D Code=1 UserInfo={\n"
            "            NSLocalizedDescription = \"text\",\n"
            "            NSUnderlyingError = \"<NSError Domain=D Code=1 UserInfo={\n"
            "                    NSLocalizedDescription = \"text\",\n"
            "                    list = (\n"
            "                        \"x\"\n"
            "                        )\n"
            "                    }>\"\n"
            "            }>\"\n"
            "    }>");
}

TEST(NSErrorKBXDescription, AnErrorAmongTheValuesIsNotQuoted) {
  EXPECT_EQ(printed(errorWith({})),
            "<NSError Domain=D Code=1 UserInfo={\n"
            "        NSLocalizedDescription = \"text\"\n"
            "        }>");
  EXPECT_EQ(printed(NSArray::arrayWithObjects({errorWith({})})),
            "(\n"
            "        <NSError Domain=D Code=1 UserInfo={\n"
            "            NSLocalizedDescription = \"text\"\n"
            "            }>\n"
            "        )");
}

TEST(NSErrorKBXDescription, WhatIsNoErrorBehindItRaises) {
  auto error = errorWith({{NSUnderlyingErrorKey(), "odd"_ns}});
  auto raised = raisedBy([&] { kbxFullDescription(error); });
  ASSERT_TRUE(raised);
  EXPECT_EQ(text(raised->name()), "NSInvalidArgumentException");
  EXPECT_TRUE(text(raised->reason())
                  .starts_with("-[NSString kbxFullDescription]: unrecognized selector sent to "))
      << text(raised->reason());
}

TEST(NSErrorKBXDescription, ValuesArePrintedByTheirKind) {
  struct Case {
    const char* rule;
    Ref<NSObject> value;
    const char* output;
  };
  for (const auto& [rule, value, output] : std::initializer_list<Case>{
           {"a string stands in quotes", "a b"_ns, "\"a b\""},
           {"quotes inside stay as they are", string("say \"hi\""), "\"say \"hi\"\""},
           {"an empty string is two quotes", ""_ns, "\"\""},
           {"a line break indents what follows", "a\nb\n\nc"_ns,
            "\"a\n        b\n        \n        c\""},
           {"a backslash and an n stay in a string", "a\\nb"_ns, "\"a\\nb\""},
           {"text beyond ASCII stays as it is", string("é\n“"), "\"é\n        “\""},
           {"a number stands bare", NSNumber::numberWithInteger(12), "12"},
           {"the null marker is its description", NSNull::null(), "<null>"},
           {"a class is its name", NSArray::classObject(), "NSArray"},
           {"an array holds a line for each element",
            NSArray::arrayWithObjects({"a"_ns, NSNumber::numberWithInteger(1)}),
            "(\n        \"a\",\n        1\n        )"},
           {"an empty array has three lines", NSArray::array(), "(\n        \n        )"},
           {"an empty dictionary has three lines", NSDictionary::dictionary(),
            "{\n        \n        }"},
           {"the keys of a dictionary are sorted", pairs({{"b"_ns, "2"_ns}, {"a"_ns, "1"_ns}}),
            "{\n        a = \"1\",\n        b = \"2\"\n        }"},
           {"a key is indented like its value", pairs({{"a\nb"_ns, "1"_ns}}),
            "{\n        a\n        b = \"1\"\n        }"},
           {"each level is indented on its own",
            NSArray::arrayWithObjects({NSArray::arrayWithObjects({"a\nb"_ns}), NSArray::array()}),
            "(\n"
            "        (\n"
            "            \"a\n"
            "                b\"\n"
            "            ),\n"
            "        (\n"
            "            \n"
            "            )\n"
            "        )"},
           {"a description's line breaks count, written out or not", Described::make("a\nb\\nc"_ns),
            "a\n        b\n        c"},
           {"an absent description prints as null", Described::make(nullptr), "(null)"},
           {"so does that of what is of no kind", Foreign::make(nullptr), "(null)"},
           {"what is of no kind is its description, unchanged", Foreign::make("a\nb\\nc"_ns),
            "a\n    b\\nc"}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(printed(value), output);
  }
}

// ---- The rules, one after the other --------------------------------------------------------

std::string plainFull(NSError* error);

std::string replaced(std::string text, std::string_view what, std::string_view with) {
  for (std::size_t at = 0; (at = text.find(what, at)) != text.npos; at += with.size())
    text.replace(at, what.size(), with);
  return text;
}

/// Each value as a text of its own, all of whose line breaks are then indented.
std::string plain(NSObject* value) {
  if (auto* error = cast<NSError>(value)) return plainFull(error);
  if (!value->respondsToSelector(SEL("isKindOfClass:"))) return text(value);
  std::string lines;
  auto addLine = [&](const std::string& line) { lines += (lines.empty() ? "" : ",\n") + line; };
  if (auto* array = cast<NSArray>(value)) {
    for (const auto& element : *array) addLine(plain(element));
    lines = "(\n" + lines + "\n)";
  } else if (auto* dictionary = cast<NSDictionary>(value)) {
    std::map<std::string, std::string> sorted;
    for (const auto& [key, entry] : *dictionary) sorted[text(key)] = plain(entry);
    for (const auto& [key, entry] : sorted) addLine(key + " = " + entry);
    lines = "{\n" + lines + "\n}";
  } else if (cast<NSString>(value)) {
    lines = '"' + text(value) + '"';
  } else {
    lines = replaced(text(value), "\\n", "\n");
  }
  return replaced(lines, "\n", "\n    ");
}

std::string plainFull(NSError* error) {
  auto info = error->userInfo()->mutableCopy();
  if (auto* cause = cast<NSError>(info->objectForKey(NSUnderlyingErrorKey())))
    info->setObjectForKey(string(plainFull(cause)), NSUnderlyingErrorKey());
  return "<NSError Domain=" + text(error->domain()) + " Code=" + std::to_string(error->code()) +
         " UserInfo=" + plain(info) + ">";
}

/// Values of every kind in one another, each with a description.
class Values {
 public:
  Ref<NSObject> any(unsigned depth) {
    switch (_random() % (depth ? 9 : 5)) {
      case 0:
        return NSNumber::numberWithInteger(static_cast<std::int64_t>(_random() % 100));
      case 1:
        return Described::make(someText());
      case 2:
        return Foreign::make(someText());
      case 3:
      case 4:
        return someText();
      case 5:
        return error(depth - 1);
      case 6:
        return dictionary(depth - 1);
      default:
        return array(depth - 1);
    }
  }
  Ref<NSError> error(unsigned depth) {
    auto info = dictionary(depth);
    info->setObjectForKey("text"_ns, NSLocalizedDescriptionKey());
    if (depth && _random() % 2) info->setObjectForKey(error(depth - 1), NSUnderlyingErrorKey());
    return NSError::errorWithDomain(someText(), 1, info);
  }

 private:
  Ref<NSMutableDictionary> dictionary(unsigned depth) {
    auto made = NSMutableDictionary::dictionary();
    for (auto left = _random() % 4; left; --left) made->setObjectForKey(any(depth), someText());
    return made;
  }
  Ref<NSObject> array(unsigned depth) {
    auto made = NSMutableArray::array();
    for (auto left = _random() % 4 + 1; left; --left) made->addObject(any(depth));
    return made;
  }
  Ref<NSString> someText() {
    std::string made;
    for (auto left = _random() % 6 + 1; left; --left) made += "a\\n\n\" "[_random() % 6];
    return string(made);
  }

  std::mt19937 _random{7};
};

TEST(NSErrorKBXDescription, AnyValuesArePrintedByTheRules) {
  Values values;
  for (int round = 0; round < 2000; ++round) {
    auto error = values.error(4);
    ASSERT_EQ(text(kbxFullDescription(error)), plainFull(error));
  }
}

TEST(NSErrorKBXDescription, KeysThatAreNoStringsAreSortedByTheirText) {
  auto value = pairs({{NSNumber::numberWithInteger(2), "two"_ns}, {"1"_ns, "one"_ns}});
  EXPECT_EQ(printed(value), "{\n        1 = \"one\",\n        2 = \"two\"\n        }");
}

TEST(NSErrorKBXDescription, AListThatHoldsItselfEnds) {
  auto list = NSMutableArray::array();
  list->addObject(list);
  auto deep = text(kbxFullDescription(errorWith({{"list"_ns, list}})));
  EXPECT_NE(deep.find("(\n"), std::string::npos);
  EXPECT_NE(deep.find(" ...\n"), std::string::npos);
  list->addObject(list);
  EXPECT_LT(kbxFullDescription(errorWith({{"list"_ns, list}}))->length(), 20'000'000U);
  list->removeAllObjects();
}

TEST(NSErrorKBXDescription, ALongChainOfErrorsEnds) {
  auto error = errorWith({});
  for (int i = 0; i < 200; ++i) error = kbxErrorBySettingUnderlyingError(errorWith({}), error);
  EXPECT_NE(text(kbxFullDescription(error)).find("\"...\""), std::string::npos);
}

/// An object that counts how often it is asked, and gives up when that is too often.
class Asked final : public NSObject {
  KBX_OBJECT(Asked, NSObject)
 public:
  static Ref<Asked> make() { return Ref<Asked>::adopt(new Asked); }
  Ref<NSString> description() const override {
    if (++_times > 500'000) throw std::runtime_error("asked too often");
    return "asked"_ns;
  }
  std::size_t times() const { return _times; }

 private:
  mutable std::size_t _times = 0;
};
KBX_CLASS(Asked)

TEST(NSErrorKBXDescription, ErrorsThatHoldAnErrorTwiceTakeBoundedWork) {
  for (NSString* second : {"b"_ns, NSUnderlyingErrorKey()}) {
    SCOPED_TRACE(text(second));
    auto leaf = Asked::make();
    auto error = errorWith({{"leaf"_ns, leaf}});
    for (int i = 0; i < 60; ++i) error = errorWith({{"a"_ns, error}, {second, error}});
    EXPECT_NE(text(kbxFullDescription(error)).find("..."), std::string::npos);
    EXPECT_LT(leaf->times(), 100'000U);
  }
}

TEST(NSErrorKBXDescription, ALongTextThatIsHeldManyTimesIsNotWrittenWithoutEnd) {
  auto longText = string(std::string(1'000'000, 'x'));
  auto list = NSMutableArray::array();
  for (int i = 0; i < 100; ++i) list->addObject(longText);
  const std::string printed = text(kbxFullDescription(errorWith({{"list"_ns, list}})));
  EXPECT_LT(printed.size(), 20'000'000U);
  EXPECT_NE(printed.find(",\n        ...\n        )"), std::string::npos);
}

TEST(NSErrorKBXDescription, ALongErrorBehindItIsPrintedWhole) {
  const std::string longText(17'000'000, 'x');
  auto error = errorWith({{"text"_ns, string(longText)}});
  const std::string printed =
      text(kbxFullDescription(kbxErrorBySettingUnderlyingError(errorWith({}), error)));
  EXPECT_NE(printed.find(longText), std::string::npos);
}

TEST(NSErrorKBXDescription, NothingIsLoggedByDefault) {
  RecordingLog log;
  kbxFullDescription(errorWith({}));
  EXPECT_TRUE(log.lines().empty());
}

TEST(NSErrorKBXDescription, WithShortLoggingOneLineIsLoggedAndTheFullTextComesBack) {
  RecordingLog log;
  ShortLogging preferences;
  auto error = errorWith({{"a"_ns, "b"_ns}});
  EXPECT_EQ(text(kbxFullDescription(error)),
            "<NSError Domain=D Code=1 UserInfo={\n"
            "    NSLocalizedDescription = \"text\",\n"
            "    a = \"b\"\n"
            "    }>");
  EXPECT_EQ(log.lines(), std::vector<std::string>{"Error: Error Domain=D Code=1 \"text\" "
                                                  "UserInfo={a=b, NSLocalizedDescription=text}"});
}

TEST(NSErrorKBXDescription, WithShortLoggingEachErrorIsLoggedTheErrorBehindItSecond) {
  RecordingLog log;
  ShortLogging preferences;
  auto error =
      errorWith({{"A"_ns, NSError::errorWithDomain("among"_ns, 3, nullptr)},
                 {NSUnderlyingErrorKey(), NSError::errorWithDomain("behind"_ns, 2, nullptr)}});
  kbxFullDescription(error);
  auto lines = log.lines();
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_TRUE(lines[0].starts_with("Error: Error Domain=D "));
  EXPECT_TRUE(lines[1].starts_with("Error: Error Domain=behind "));
  EXPECT_TRUE(lines[2].starts_with("Error: Error Domain=among "));
}

}  // namespace
}  // namespace kbx
