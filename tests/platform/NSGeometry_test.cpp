#include "platform/objects/NSGeometry.h"

#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(NSGeometry, NumbersAreTheShortestThatReadBackTheSame) {
  struct Case {
    double x, y;
    const char* output;
  };
  for (auto [x, y, output] : {Case{1, 2, "{1, 2}"},
                              {0, -0.5, "{0, -0.5}"},
                              {0.1, 1.0 / 3, "{0.1, 0.3333333333333333}"},
                              {100000, 2e6, "{100000, 2000000}"},
                              {-1e20, 1e21, "{-100000000000000000000, 1e+21}"},
                              {0.0001, 0.00002, "{0.0001, 2e-05}"},
                              {1e300, 123456789, "{1e+300, 123456789}"}}) {
    SCOPED_TRACE(output);
    EXPECT_EQ(text(NSStringFromPoint({x, y})), output);
    EXPECT_EQ(text(NSStringFromSize({x, y})), output);
    EXPECT_EQ(NSSizeFromString(string(output)), (NSSize{x, y}));
  }
}

TEST(NSGeometry, ARectangleIsItsOriginAndItsSize) {
  EXPECT_EQ(text(NSStringFromRect({{0, 0}, {1, 2}})), "{{0, 0}, {1, 2}}");
}

TEST(NSGeometry, ASizeIsReadWithAnyBlanks) {
  EXPECT_EQ(NSSizeFromString("{3,4}"_ns), (NSSize{3, 4}));
  EXPECT_EQ(NSSizeFromString(" { 3.5 ,\t-4 }\n"_ns), (NSSize{3.5, -4}));
}

TEST(NSGeometry, ATextOfAnotherFormIsTheEmptySize) {
  EXPECT_EQ(NSSizeFromString(nullptr), NSSize{});
  for (const char* bad : {"", "{", "{1", "{1,", "{1, 2", "1, 2", "{1 2}", "{1, 2} 3", "{a, b}",
                          "{1, 2, 3}", "{{1, 2}, {3, 4}}", "{1, \xC3\xA9}"})
    EXPECT_EQ(NSSizeFromString(string(bad)), NSSize{}) << bad;
}

}  // namespace
}  // namespace kbx
