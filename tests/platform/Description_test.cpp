#include "platform/objects/Description.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSError.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/Nesting.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

/// A class that has nothing to say of itself.
class Silent final : public NSObject {
  KBX_OBJECT(Silent, NSObject)
 public:
  static Ref<Silent> make() { return Ref<Silent>::adopt(new Silent); }
  Ref<NSString> description() const override { return nullptr; }
};
KBX_CLASS(Silent)

TEST(Description, CollectionsPrintOnLinesOfTheirOwn) {
  auto list = NSArray::arrayWithObjects({"a"_ns, NSNumber::numberWithInteger(2)});
  auto whole = NSDictionary::dictionaryWithPairs(
      {{"list"_ns, list}, {"none"_ns, NSArray::array()}, {"key two"_ns, NSNull::null()}});
  EXPECT_EQ(text(NSArray::array()), "(\n)");
  EXPECT_EQ(text(NSDictionary::dictionary()), "{\n}");
  EXPECT_EQ(text(list), "(\n    a,\n    2\n)");
  EXPECT_EQ(text(whole),
            "{\n"
            "    list = (\n"
            "        a,\n"
            "        2\n"
            "    );\n"
            "    none = (\n"
            "    );\n"
            "    \"key two\" = \"<null>\";\n"
            "}");
}

TEST(Description, TextInsideACollectionIsQuotedWhereItNeedsIt) {
  struct Case {
    const char *value, *printed;
  };
  for (auto [value, printed] : {Case{"plain", "plain"},
                                {"aZ09_$./:", "aZ09_$./:"},
                                {"", "\"\""},
                                {"two words", "\"two words\""},
                                {"a-b", "\"a-b\""},
                                {"say \"no\"", "\"say \\\"no\\\"\""},
                                {"back\\slash", "\"back\\\\slash\""},
                                {"two\nlines", "\"two\\nlines\""},
                                {"caf\u00E9", "\"caf\u00E9\""}}) {
    SCOPED_TRACE(printed);
    auto list = NSArray::arrayWithObjects({string(value)});
    EXPECT_EQ(text(list), std::string("(\n    ") + printed + "\n)");
  }
  EXPECT_EQ(text("two words"_ns), "two words") << "outside it is the text itself";
}

TEST(Description, AbsentPrintsNull) {
  EXPECT_EQ(text(static_cast<NSObject*>(nullptr)), "(null)");
  EXPECT_EQ(text(Silent::make()), "(null)") << "so does an object without a description";
  EXPECT_EQ(text(NSArray::arrayWithObjects({Silent::make()})), "(\n    \"(null)\"\n)");
}

TEST(Description, LevelsThatAreTooDeepPrintDots) {
  EXPECT_EQ(text(nestedArrays(511)).find("..."), std::string::npos);
  EXPECT_NE(text(nestedArrays(514)).find("..."), std::string::npos);
  EXPECT_NE(text(nestedArrays(1000000)).find("..."), std::string::npos);
  EXPECT_NE(text(nestedDictionaries(100000)).find("..."), std::string::npos);
  EXPECT_EQ(text(nestedArrays(1)), "(\n)") << "no level stays open";
}

TEST(Description, ErrorsInErrorsAreLevelsToo) {
  Ref<NSObject> nested = "innermost"_ns;
  for (int i = 0; i < 20000; ++i) {
    auto list = NSArray::arrayWithObjects({nested.get()});
    nested = NSError::errorWithDomain("D"_ns, i,
                                      NSDictionary::dictionaryWithPairs({{"cause"_ns, list}}));
  }
  const std::string printed = text(nested);
  EXPECT_NE(printed.find("..."), std::string::npos);
  EXPECT_EQ(printed.find("innermost"), std::string::npos);
}

TEST(Description, RepeatedNestingPrintsABoundedText) {
  auto doubled = doubledArrays(400, "leaf"_ns);
  const std::string printed = text(doubled);
  EXPECT_GT(printed.size(), std::size_t{1} << 24);
  EXPECT_LT(printed.size(), std::size_t{1} << 25);
  EXPECT_NE(printed.find("..."), std::string::npos);
}

/// An object that counts how often it is asked, and gives up when that is too often.
class Asked final : public NSObject {
  KBX_OBJECT(Asked, NSObject)
 public:
  static Ref<Asked> make() { return Ref<Asked>::adopt(new Asked); }
  Ref<NSString> description() const override {
    if (++_times > 5'000'000) throw std::runtime_error("asked too often");
    return "asked"_ns;
  }
  std::size_t times() const { return _times; }

 private:
  mutable std::size_t _times = 0;
};
KBX_CLASS(Asked)

Ref<NSError> errorWith(NSDictionary* userInfo) {
  return NSError::errorWithDomain("D"_ns, 1, userInfo);
}

/// An error that holds the next one under two keys, and so on: 2^depth times the leaf.
Ref<NSError> doubledErrors(std::size_t depth, NSObject* leaf) {
  auto error = errorWith(NSDictionary::dictionaryWithPairs({{"leaf"_ns, leaf}}));
  while (--depth)
    error = errorWith(NSDictionary::dictionaryWithPairs({{"a"_ns, error}, {"b"_ns, error}}));
  return error;
}

TEST(Description, ErrorsThatHoldAnErrorTwiceTakeBoundedWork) {
  auto leaf = Asked::make();
  const std::string printed = text(doubledErrors(60, leaf));
  EXPECT_TRUE(printed.starts_with("Error Domain=D Code=1 ")) << "the outermost is told";
  EXPECT_NE(printed.find("..."), std::string::npos);
  EXPECT_LT(leaf->times(), 100'000U);
  EXPECT_LT(printed.size(), std::size_t{1} << 27);
}

TEST(Description, ErrorsInDictionariesTakeBoundedWork) {
  auto leaf = Asked::make();
  Ref<NSObject> nested = leaf;
  for (int i = 0; i < 60; ++i) {
    auto error = errorWith(NSDictionary::dictionaryWithPairs({{"cause"_ns, nested}}));
    nested = NSDictionary::dictionaryWithPairs({{"a"_ns, error}, {"b"_ns, error}});
  }
  EXPECT_NE(text(nested).find("..."), std::string::npos);
  EXPECT_LT(leaf->times(), 100'000U);
}

/// An object that tells its child twice.
class Doubling final : public NSObject {
  KBX_OBJECT(Doubling, NSObject)
 public:
  static Ref<Doubling> make(NSObject* child) { return Ref<Doubling>::adopt(new Doubling(child)); }
  Ref<NSString> description() const override {
    return stringWithFormat("%@ %@"_ns, _child, _child);
  }

 private:
  explicit Doubling(NSObject* child) : _child(child) {}
  const Ref<NSObject> _child;
};
KBX_CLASS(Doubling)

TEST(Description, ObjectsThatTellOthersTwiceTakeBoundedWork) {
  auto leaf = Asked::make();
  Ref<NSObject> nested = leaf;
  for (int i = 0; i < 60; ++i) nested = Doubling::make(nested);
  EXPECT_NE(text(nested).find("..."), std::string::npos);
  EXPECT_LT(leaf->times(), 4'000'000U);
}

TEST(Description, ALongTextIsNotCopiedAtEachOfManyLevels) {
  const std::string longText(1'000'000, 'x');
  auto error = errorWith(NSDictionary::dictionaryWithPairs({{"text"_ns, string(longText)}}));
  for (int i = 0; i < 400; ++i)
    error = errorWith(NSDictionary::dictionaryWithPairs({{NSUnderlyingErrorKey(), error}}));
  const std::string printed = text(error);
  EXPECT_NE(printed.find("NSUnderlyingError=..."), std::string::npos);
  EXPECT_EQ(printed.find(longText), std::string::npos);
}

TEST(Description, AnErrorThatLeadsBackToItselfTakesBoundedWork) {
  auto leaf = Asked::make();
  auto list = NSMutableArray::array();
  auto error = errorWith(
      NSDictionary::dictionaryWithPairs({{"a"_ns, list}, {"b"_ns, list}, {"c"_ns, leaf}}));
  list->addObject(error);
  EXPECT_NE(text(error).find("..."), std::string::npos);
  EXPECT_LT(leaf->times(), 100'000U);
  list->removeAllObjects();
}

TEST(Description, TheBudgetBeginsAnewWithEachOutermostDescription) {
  auto list = NSArray::arrayWithObjects({NSNumber::numberWithInteger(2)});
  const std::string plain = text(list);
  text(doubledErrors(40, NSNull::null()));
  EXPECT_EQ(text(list), plain);
  const DescriptionBudget budget;
  text(doubledErrors(40, NSNull::null()));
  EXPECT_TRUE(budget.isSpent()) << "descriptions share the one that is open";
  EXPECT_EQ(text(list), "...");
}

TEST(Description, ErrorsThatAreOneAfterTheOtherArePrintedWhole) {
  const std::string longText(1'000'000, 'x');
  auto error = errorWith(NSDictionary::dictionaryWithPairs({{"text"_ns, string(longText)}}));
  for (int i = 0; i < 40; ++i)
    error = errorWith(NSDictionary::dictionaryWithPairs({{NSUnderlyingErrorKey(), error}}));
  const std::string printed = text(error);
  EXPECT_NE(printed.find(longText), std::string::npos);
  EXPECT_EQ(printed.find("..."), std::string::npos);
}

TEST(Description, AnErrorWithTheSameLongTextManyTimesPrintsABoundedText) {
  auto longText = string(std::string(std::size_t{1} << 20, 'x'));
  auto info = NSMutableDictionary::dictionary();
  for (int i = 0; i < 200; ++i) info->setObjectForKey(longText, string(std::to_string(i)));
  const std::string printed = text(errorWith(info));
  EXPECT_TRUE(printed.ends_with(", ...}"));
  EXPECT_LT(printed.size(), std::size_t{1} << 25);
}

TEST(Description, ACollectionThatHoldsItselfTwiceTakesBoundedWork) {
  auto leaf = Asked::make();
  auto list = NSMutableArray::array();
  for (NSObject* element :
       {static_cast<NSObject*>(list), static_cast<NSObject*>(list), static_cast<NSObject*>(leaf)})
    list->addObject(element);
  EXPECT_NE(text(list).find("..."), std::string::npos);
  EXPECT_LT(leaf->times(), 100'000U);
  list->removeAllObjects();
}

TEST(Description, ACollectionThatHoldsItselfPrintsABoundedText) {
  auto list = NSMutableArray::array();
  list->addObject(list);
  EXPECT_NE(text(list).find("..."), std::string::npos);
  list->removeAllObjects();
}

}  // namespace
}  // namespace kbx
