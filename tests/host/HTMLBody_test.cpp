#include "host/import/HTMLBody.h"

#include <gtest/gtest.h>

#include "platform/objects/NSNumber.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

Ref<NSMutableDictionary> withText(std::initializer_list<std::pair<NSString*, NSObject*>> entries) {
  auto attributes = NSMutableDictionary::dictionary();
  for (const auto& [name, value] : entries) attributes->setObjectForKey(value, name);
  addTextOfHTMLBody(attributes);
  return attributes;
}

std::string textOf(NSDictionary* attributes) {
  return text(attributes->objectForKey("kMDItemTextContent"_ns));
}

constexpr char kHTML[] = "<p>caf\xC3\xA9</p><!-- no --><script>no</script><p>a &amp; b";

TEST(HTMLBody, TheVisibleTextIsSetAndMarked) {
  auto attributes = withText({{"kMDItemHTMLContent"_ns, string(kHTML)}});
  EXPECT_EQ(textOf(attributes), "caf\xC3\xA9\na & b");
  auto* mark = cast<NSNumber>(attributes->objectForKey("KBXTextContentIsSynthesized"_ns));
  EXPECT_TRUE(mark && mark->isBoolean() && mark->boolValue());
}

TEST(HTMLBody, BytesServeWhereThereIsNoHTMLText) {
  auto bytes = data(kHTML);
  EXPECT_EQ(textOf(withText({{"kMDItemHTMLContentData"_ns, bytes}})), "caf\xC3\xA9\na & b");
  EXPECT_EQ(
      textOf(withText({{"kMDItemHTMLContentData"_ns, bytes}, {"kMDItemHTMLContent"_ns, "x"_ns}})),
      "x");
}

TEST(HTMLBody, ATextThatIsThereStaysEvenAnEmptyOne) {
  for (NSString* text : {"plain"_ns, ""_ns}) {
    auto attributes =
        withText({{"kMDItemTextContent"_ns, text}, {"kMDItemHTMLContent"_ns, "html"_ns}});
    EXPECT_EQ(attributes->objectForKey("kMDItemTextContent"_ns), text);
    EXPECT_EQ(attributes->count(), 2u);
  }
}

TEST(HTMLBody, NothingComesOfNoHTMLAndOfOtherTypes) {
  EXPECT_EQ(withText({})->count(), 0u);
  EXPECT_EQ(withText({{"kMDItemHTMLContent"_ns, NSNumber::numberWithBool(true)}})->count(), 1u);
  EXPECT_EQ(withText({{"kMDItemHTMLContentData"_ns, "text"_ns}})->count(), 1u);
}

}  // namespace
}  // namespace kbx
