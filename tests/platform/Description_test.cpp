#include "platform/objects/Description.h"

#include <gtest/gtest.h>

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

TEST(Description, ACollectionThatHoldsItselfPrintsABoundedText) {
  auto list = NSMutableArray::array();
  list->addObject(list);
  EXPECT_NE(text(list).find("..."), std::string::npos);
  list->removeAllObjects();
}

}  // namespace
}  // namespace kbx
