#include "platform/text/Decomposition.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(Decomposition, ComposedCharactersAreTakenApart) {
  struct Case {
    const char* rule;
    std::u16string text, decomposed;  // by another language's tables
  };
  for (const auto& [rule, text, decomposed] :
       {Case{"plain text is itself", u"abc", u"abc"},
        {"a letter with a mark", u"\u00E9", u"e\u0301"},
        {"a letter with two marks", u"\u01D6", u"u\u0308\u0304"},
        {"marks in canonical order", u"a\u0301\u0327", u"a\u0327\u0301"},
        {"a Hangul syllable", u"\uAC01", u"\u1100\u1161\u11A8"},
        {"Devanagari with a nukta", u"\u0958", u"\u0915\u093C"},
        {"a singleton", u"\u212B", u"A\u030A"},
        {"beyond the first plane", u"\U0001D15E", u"\U0001D157\U0001D165"},
        {"compatibility forms stay", u"\uFB01\uFF21", u"\uFB01\uFF21"},
        {"a lone surrogate stays", {u'\u00E9', 0xD800}, {u'e', 0x301, 0xD800}},
        {"nothing", u"", u""}}) {
    SCOPED_TRACE(rule);
    const Ref<NSString> string = NSString::stringWithUTF16(text);
    EXPECT_TRUE(isEqual(string->decomposedStringWithCanonicalMapping(),
                        NSString::stringWithUTF16(decomposed)));
    EXPECT_EQ(decomposedLength(string), decomposed.size());
  }
}

TEST(Decomposition, TheLengthsOfThePartsAddUp) {
  const std::u16string text = u"\u01D6\u0327\uAC01\u0301x";
  for (std::size_t cut = 0; cut <= text.size(); ++cut)
    EXPECT_EQ(decomposedLength(std::u16string_view(text).substr(0, cut)) +
                  decomposedLength(std::u16string_view(text).substr(cut)),
              decomposedLength(std::u16string_view(text)));
}

}  // namespace
}  // namespace kbx
