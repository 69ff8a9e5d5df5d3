#include "host/results/RawValues.h"

#include <gtest/gtest.h>

#include "host/console/FerncaseErrors.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace std::string_view_literals;

TEST(RawValues, ValuesStandInTheOrderOfTheNamesWithANulBehindEach) {
  StringOutput output;
  auto results = makeRawValues(output, {"b", "none", "a", "list"}, "<null>");
  results->begin();
  results->delivered("1.eml", NSDictionary::dictionaryWithPairs(
                                  {{"a"_ns, NSNumber::numberWithInteger(7)},
                                   {"b"_ns, string("x\0y \x1B\n"sv)},
                                   {"list"_ns, NSArray::arrayWithObjects({"1"_ns, "2"_ns})}}));
  results->end();
  EXPECT_EQ(output.text(),
            "xy \x1B\n\0<null>\0"
            "7\0"
            "1\n2\0"sv);
}

TEST(RawValues, AFileThatFailedHasTheMarkerForEachName) {
  StringOutput output;
  makeRawValues(output, {"a", "b"}, "-")
      ->failed("1.eml", ferncaseError(FerncaseNoMessagesError, "x"));
  EXPECT_EQ(output.text(), "-\0-\0"sv);
}

}  // namespace
}  // namespace kbx
