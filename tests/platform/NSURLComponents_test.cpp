#include "platform/files/NSURLComponents.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/Text.h"

namespace kbx {
namespace {

Ref<NSString> query(std::vector<std::pair<Ref<NSString>, Ref<NSString>>> pairs) {
  auto items = NSMutableArray::array();
  for (const auto& [name, value] : pairs)
    items->addObject(NSURLQueryItem::queryItemWithName(name, value));
  auto components = NSURLComponents::components();
  components->setQueryItems(items);
  items->removeAllObjects();  // the components have a copy
  return components->percentEncodedQuery();
}

TEST(NSURLComponents, ItemsAreJoinedByAmpersands) {
  EXPECT_EQ(text(query({{"a"_ns, "1"_ns}, {"b"_ns, "2"_ns}})), "a=1&b=2");
  EXPECT_EQ(text(query({{"a"_ns, ""_ns}, {""_ns, "b"_ns}})), "a=&=b");
}

TEST(NSURLComponents, ANameMayStandAlone) {
  EXPECT_EQ(text(query({{"a"_ns, nullptr}, {"b"_ns, nullptr}})), "a&b");
}

TEST(NSURLComponents, NamesAndValuesAreEscaped) {
  EXPECT_EQ(text(query({{"a b&=c"_ns, "é%#[]\"<>&="_ns}})),
            "a%20b%26%3Dc=%C3%A9%25%23%5B%5D%22%3C%3E%26%3D");
  EXPECT_EQ(text(query({{"q"_ns, "-._~!$'()*+,;:@/?"_ns}})), "q=-._~!$'()*+,;:@/?");
}

TEST(NSURLComponents, NoItemIsAnEmptyQueryAndNoItemsAreNone) {
  EXPECT_EQ(text(query({})), "");
  auto components = NSURLComponents::components();
  EXPECT_EQ(components->percentEncodedQuery(), nullptr);
  components->setQueryItems(NSArray::array());
  components->setQueryItems(nullptr);
  EXPECT_EQ(components->percentEncodedQuery(), nullptr);
}

TEST(NSURLComponents, ALoneSurrogateHasNoPlaceInAQuery) {
  auto lone = NSString::stringWithUTF16(std::u16string{0xD800});
  EXPECT_EQ(query({{lone, "a"_ns}}), nullptr);
  EXPECT_EQ(query({{"a"_ns, lone}}), nullptr);
}

TEST(NSURLComponents, ItemsAreEqualWhenTheirPartsAre) {
  auto item = NSURLQueryItem::queryItemWithName("a"_ns, "1"_ns);
  EXPECT_TRUE(isEqual(item, NSURLQueryItem::queryItemWithName("a"_ns, "1"_ns)));
  EXPECT_FALSE(isEqual(item, NSURLQueryItem::queryItemWithName("a"_ns, "2"_ns)));
  EXPECT_FALSE(isEqual(item, NSURLQueryItem::queryItemWithName("b"_ns, "1"_ns)));
  EXPECT_FALSE(isEqual(item, NSURLQueryItem::queryItemWithName("a"_ns, nullptr)));
  EXPECT_TRUE(isEqual(NSURLQueryItem::queryItemWithName(nullptr, nullptr),
                      NSURLQueryItem::queryItemWithName(""_ns, nullptr)));
}

}  // namespace
}  // namespace kbx
