#include "platform/desktop/MimeGlobs.h"

#include <gtest/gtest.h>

namespace kbx {
namespace {

MimeGlobs globs(std::string_view text) {
  MimeGlobs result;
  result.add(text);
  return result;
}

TEST(MimeGlobs, ThePatternOfANameDecides) {
  const MimeGlobs known = globs(
      "# weights\n50:text/html:*.html\n50:application/x-tar:*.tar\n50:application/gzip:*.gz\n"
      "50:application/x-compressed-tar:*.tar.gz\n50:text/x-makefile:makefile\n"
      "10:text/x-readme:readme*\n50:text/x-csrc:*.c\n50:text/x-c++src:*.C:cs\n"
      "60:application/x-special:*.special.html\n40:text/x-weak:*.weak.html\n"
      "50:image/x-page:page-[0-9].*\n");
  struct Case {
    const char *name, *type;
  };
  for (auto [name, type] : {Case{"a.html", "text/html"},
                            {"A.HTML", "text/html"},
                            {"a.tar.gz", "application/x-compressed-tar"},
                            {"a.b.gz", "application/gzip"},
                            {"Makefile", "text/x-makefile"},
                            {"README.first", "text/x-readme"},
                            {"readme.html", "text/html"},
                            {"a.c", "text/x-csrc"},
                            {"a.C", "text/x-c++src"},
                            {"a.special.html", "application/x-special"},
                            {"a.weak.html", "text/html"},
                            {"page-7.x", "image/x-page"},
                            {"page-x.x", ""},
                            {".html", ""},
                            {".hidden.html", "text/html"},
                            {"html", ""},
                            {"", ""}})
    EXPECT_EQ(known.typeOfName(name), type) << name;
}

TEST(MimeGlobs, OfTwoFilesTheFirstGoesBefore) {
  MimeGlobs known = globs("50:a/own:*.x\n");
  known.add("50:b/system:*.x\n50:b/other:*.y\n");
  EXPECT_EQ(known.typeOfName("a.x"), "a/own");
  EXPECT_EQ(known.typeOfName("a.y"), "b/other");
}

TEST(MimeGlobs, ATypeCanBeClosedForTheFilesThatFollow) {
  MimeGlobs known = globs("50:a/b:__NOGLOBS__\n50:a/b:*.mine\n");
  known.add("50:a/b:*.x\n50:c/d:*.y\n");
  EXPECT_EQ(known.typeOfName("a.mine"), "a/b");
  EXPECT_EQ(known.typeOfName("a.x"), "");
  EXPECT_EQ(known.typeOfName("a.y"), "c/d");
}

TEST(MimeGlobs, LinesOfAnotherFormAreLeftOut) {
  std::string lines =
      "text/html:*.a\nx:text/html:*.b\n50:text/html\n50::*.c\n50:text/html:\n50x:a/b:*.d\n:::\n"
      "99999999999999999999:a/b:*.e\n50:good/one:*.f\n50:a/b:";
  for (int i = 0; i < 256; ++i) lines += 'g';
  const MimeGlobs known = globs(lines);
  for (const char* name : {"x.a", "x.b", "x.c", "x.d", "x.e"})
    EXPECT_EQ(known.typeOfName(name), "") << name;
  EXPECT_EQ(known.typeOfName("x.f"), "good/one");
}

TEST(MimeGlobs, APatternIsComparedByteByByte) {
  struct Case {
    const char *name, *pattern;
    bool fits;
  };
  for (auto [name, pattern, fits] : {Case{"abc", "abc", true}, {"abc", "ab", false},
                                     {"ab", "abc", false},     {"abc", "a*", true},
                                     {"abc", "*c", true},      {"abcbc", "a*bc", true},
                                     {"abc", "a?c", true},     {"ac", "a?c", false},
                                     {"", "*", true},          {"", "", true},
                                     {"", "?", false},         {"a-b", "a[-x]b", true},
                                     {"a7", "a[0-9]", true},   {"ax", "a[!0-9]", true},
                                     {"a7", "a[!0-9]", false}, {"a]", "a[]]", true},
                                     {"a]", "a[!]]", false},   {"a[", "a[", true},
                                     {"ab", "a[", false},      {"a\xE9", "a[\xE0-\xEF]", true}})
    EXPECT_EQ(fitsPattern(name, pattern), fits) << name << " " << pattern;
}

TEST(MimeGlobs, ManyStarsTakeNoMoreThanTheProductOfBothLengths) {
  std::string pattern;
  for (int i = 0; i < 120; ++i) pattern += "*a";
  const std::string name(254, 'a');
  EXPECT_FALSE(fitsPattern(name, pattern + "c"));
  EXPECT_TRUE(fitsPattern(name, pattern));
}

TEST(MimeGlobs, ANameThatNoFileHasIsOfNoType) {
  const MimeGlobs known = globs("50:a/b:*.x\n");
  std::string name;
  while (name.size() < 1 << 20) name += '.';
  name += ".x";
  EXPECT_EQ(known.typeOfName(name), "");
}

}  // namespace
}  // namespace kbx
