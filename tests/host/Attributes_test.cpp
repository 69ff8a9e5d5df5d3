#include "host/results/Attributes.h"

#include <gtest/gtest.h>

#include "platform/objects/NSNumber.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

std::vector<std::string> sortedNames(std::initializer_list<NSDictionary::Pair> pairs) {
  std::vector<std::string> names;
  for (const auto& each : sortedAttributes(NSDictionary::dictionaryWithPairs(pairs)))
    names.push_back(text(each.name));
  return names;
}

TEST(Attributes, NamesAreSortedByTheirUnits) {
  NSString* value = "x"_ns;
  EXPECT_EQ(
      sortedNames(
          {{"b"_ns, value}, {"é"_ns, value}, {"B"_ns, value}, {"ab"_ns, value}, {"a"_ns, value}}),
      (std::vector<std::string>{"B", "a", "ab", "b", "é"}));
}

TEST(Attributes, AKeyThatIsNoStringIsNamedByItsDescription) {
  EXPECT_EQ(sortedNames({{"2"_ns, "x"_ns}, {NSNumber::numberWithInteger(1), "y"_ns}}),
            (std::vector<std::string>{"1", "2"}));
}

TEST(Attributes, NoneGiveNone) { EXPECT_TRUE(sortedNames({}).empty()); }

}  // namespace
}  // namespace kbx
