#include "platform/objects/NSNull.h"

#include <gtest/gtest.h>

#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(NSNull, ThereIsOneMarker) {
  EXPECT_TRUE(isSame(NSNull::null(), NSNull::null()));
  EXPECT_TRUE(isSame(NSNull::null()->copyObject(), NSNull::null()));
  EXPECT_EQ(text(NSNull::null()), "<null>");
  EXPECT_FALSE(isEqual(NSNull::null(), "<null>"_ns));
}

}  // namespace
}  // namespace kbx
