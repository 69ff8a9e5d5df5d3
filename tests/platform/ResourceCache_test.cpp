#include "platform/resources/ResourceCache.h"

#include <gtest/gtest.h>

#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(ResourceCache, AValueStaysUntilItsKeyIsRemoved) {
  ResourceCache cache;
  cache.setValue("1"_ns, "a"_ns, cache.removals());
  cache.setValue("2"_ns, "b"_ns, cache.removals());
  cache.setValue("3"_ns, "a"_ns, cache.removals());
  EXPECT_EQ(text(cache.valueForKey(string("a"))), "3");
  EXPECT_EQ(text(cache.valueForKey(string("b"))), "2");
  cache.removeValueForKey(string("a"));
  EXPECT_EQ(cache.valueForKey("a"_ns), nullptr);
  EXPECT_EQ(text(cache.valueForKey("b"_ns)), "2");
  cache.removeAllValues();
  EXPECT_EQ(cache.valueForKey("b"_ns), nullptr);
}

TEST(ResourceCache, AnAbsentKeyHasNoValue) {
  ResourceCache cache;
  EXPECT_EQ(cache.valueForKey(nullptr), nullptr);
  cache.removeValueForKey(nullptr);
}

TEST(ResourceCache, AValueThatWasReadBeforeARemovalIsNotKept) {
  ResourceCache cache;
  auto before = cache.removals();
  cache.removeValueForKey("a"_ns);
  cache.setValue("old"_ns, "a"_ns, before);
  EXPECT_EQ(cache.valueForKey("a"_ns), nullptr);
  before = cache.removals();
  cache.removeAllValues();
  cache.setValue("old"_ns, "a"_ns, before);
  EXPECT_EQ(cache.valueForKey("a"_ns), nullptr);
}

}  // namespace
}  // namespace kbx
