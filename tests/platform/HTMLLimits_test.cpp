// Hostile HTML: depth, numbers and time.
#include <gtest/gtest.h>

#include <pthread.h>
#include <time.h>

#include <algorithm>
#include <functional>
#include <string>

#include "tests/support/Markup.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace test;

std::string repeated(std::string_view text, std::size_t count) {
  std::string result;
  result.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

std::size_t depthOf(NSXMLDocument* document) {
  std::size_t depth = 0;
  std::size_t deepest = 0;
  for (const XMLNode* node = document->tree().document; node;) {
    if (node->firstChild) {
      node = node->firstChild;
      deepest = std::max(deepest, ++depth);
      continue;
    }
    while (node && !node->next) {
      node = node->parent;
      --depth;
    }
    if (node) node = node->next;
  }
  return deepest;
}

TEST(HTMLLimits, DeeperTagsAreIgnoredAndTheirTextIsKept) {
  const std::string input = repeated("<div>a", 1000);
  auto document = parsed(input, kTidyBoth);
  EXPECT_EQ(depthOf(document), 512U + 1) << "the innermost holds a text";
  EXPECT_EQ(visibleText(input), repeated("a\n", 999) + "a");
}

TEST(HTMLLimits, HiddenTextStaysHiddenHoweverDeep) {
  const std::string deep = repeated("<b>", 600);
  EXPECT_EQ(visibleText(deep + "a<script>b</script><style>c</style><noframes>d</noframes>e"),
            "a\ne");
}

TEST(HTMLLimits, DeeperXMLIsHTML) {
  const std::string fits = repeated("<x>", 512) + repeated("</x>", 512);
  EXPECT_EQ(canonical(fits, kTidyBoth), fits);
  EXPECT_TRUE(canonical("<x>" + fits + "</x>", kTidyBoth).starts_with("<html"));
}

TEST(HTMLLimits, TheDeepestDocumentParsesBackToItself) {
  for (const char* tag : {"<div>", "<b>x", "<blah>", "<svg>", "<table><tr><td>"}) {
    const std::string first = canonical(repeated(tag, 2000));
    EXPECT_EQ(canonical(first), first) << tag;
  }
}

TEST(HTMLLimits, ASmallStackIsEnough) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, std::size_t{512} << 10);
  const auto work = [](void*) -> void* {
    for (const char* tag : {"<div>", "<b>", "<svg><g>", "<table><tr><td>", "<x>"})
      EXPECT_EQ(visibleText(repeated(tag, 50000) + "a"), "a") << tag;
    EXPECT_EQ(visibleText(repeated("<noframes>", 50000) + "a"), " ");
    return nullptr;
  };
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, work, nullptr), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

/// What this thread has worked so far; other programs do not count.
double secondsWorked() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// The shortest of several runs.
double secondsFor(const std::string& input) {
  double best = 1e9;
  for (int run = 0; run < 3; ++run) {
    const double start = secondsWorked();
    visibleText(input);
    best = std::min(best, secondsWorked() - start);
  }
  return best;
}

TEST(HTMLLimits, TimeGrowsWithTheInputAlone) {
  struct Case {
    const char* name;
    std::function<std::string(std::size_t)> make;  // of an input ten times as long for ten times
  };
  const auto times = [](const char* text, std::size_t count) {
    return [=](std::size_t factor) { return repeated(text, factor * count / 10); };
  };
  const auto attributes = [](std::size_t factor) {
    std::string tag = "<p";
    for (std::size_t i = 0; i < factor * 2000; ++i) tag += " a" + std::to_string(i) + "=1";
    return tag + ">x";
  };
  constexpr std::size_t kMega = std::size_t{1} << 20;
  const Case cases[] = {
      {"attributes", attributes},
      {"one tag with many attributes before many with some",
       [=](std::size_t factor) {
         std::string html = attributes(factor);
         for (std::size_t i = 0; i < factor * 500; ++i)
           html += "<p a b c d e f g h i j k l m n o p q r s t>";
         return html;
       }},
      {"entities that are too long together",
       [](std::size_t factor) {
         std::string xml = "<!DOCTYPE a [<!ENTITY e '" + std::string(50000, 'x') + "'>";
         xml += "<!ENTITY f '" + repeated("&e;", 8) + "'>";
         return xml + repeated("<!ENTITY g '&f;&f;&f;'>", factor * 2000) + "]><a>&f;</a>";
       }},
      {"forms", times("<form>", 50000)},
      {"fonts",
       [](std::size_t factor) {
         std::string html;
         for (std::size_t i = 0; i < factor * 300; ++i)
           html += "<font size=" + std::to_string(i) + ">x<p>";
         return html;
       }},
      {"nested blocks", times("<div>", 100000)},
      {"less-than signs", times("<", kMega)},
      {"ampersands", times("&", kMega)},
      {"comments", times("<!--", kMega / 4)},
      {"quotes", times("<a b=\"", kMega / 6)},
      {"instructions", times("<?x>", kMega / 4)},
      {"programs", times("<?php>", kMega / 6)},
      {"server code", times("<%", kMega / 2)},
      {"stray end tags", times("</b></p>", kMega / 8)},
      {"names", times("<b><i></b>", kMega / 10)},
      {"references in pieces", times("a&#33;", kMega / 6)},
  };
  for (const auto& [name, make] : cases) {
    SCOPED_TRACE(name);
    const double small = secondsFor(make(1));
    const double large = secondsFor(make(10));
    // Ten times the input: a hundred times the time would be quadratic. Small times are not sure.
    EXPECT_LT(large, 35 * std::max(small, 0.0005));
  }
}

}  // namespace
}  // namespace kbx
