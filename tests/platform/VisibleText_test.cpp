#include "platform/xml/VisibleText.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/Markup.h"
#include "tests/support/RandomMarkup.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace test;
namespace fs = std::filesystem;

std::string found(const std::string& bytes) { return text(kbx::visibleText(data(bytes))); }

TEST(VisibleText, OnePassFindsWhatTheWholeChainFinds) {
  for (const char* input :
       {"x", " ", "<!-- c -->", "<p>a</p><p>b<br>c", "a<noframes>b<p>c</noframes>d<!-- e -->",
        "<html><head><title>a</title></head><body><p>b</p><p>c</p></body></html>",
        "<html xmlns='http://www.w3.org/1999/xhtml'><head>a</head><p>b</p><p>c</p>"
        "<noframes>d</noframes><script>e</script></html>",
        "<html xmlns='http://www.w3.org/1999/xhtml'>a<style>b<noframes>c</noframes></style>d"
        "<title>e</title><svg xmlns='http://www.w3.org/2000/svg'><style>f</style></svg></html>",
        "<note><head>a</head>b<script>c</script></note>", "<h:html xmlns:h='urn:x'>a</h:html>",
        "<table><noframes>a</table></noframes>b", "\xEF\xBB\xBFx", "<pre>\n a\n</pre>b"}) {
    SCOPED_TRACE(input);
    EXPECT_EQ(found(input), visibleText(input));
  }
  EXPECT_EQ(found(""), "");
}

TEST(VisibleText, OnePassFindsWhatTheWholeChainFindsInAnyHTML) {
  std::mt19937 random(20250102);
  for (int i = 0; i < 20000; ++i) {
    const std::string html = randomHTML(random);
    ASSERT_EQ(found(html), visibleText(html)) << html;
  }
}

TEST(VisibleText, OnePassFindsWhatTheWholeChainFindsInAnyXML) {
  std::mt19937 random(20250103);
  for (int i = 0; i < 5000; ++i) {
    const std::string xml = randomXML(random);
    ASSERT_EQ(found(xml), visibleText(xml)) << xml;
  }
}

TEST(VisibleText, OnePassFindsWhatTheWholeChainFindsInRealPages) {
  const fs::path folder = FERNCASE_SOURCE_DIR "/../shared/data/html";
  if (!fs::exists(folder)) GTEST_SKIP() << "no real data in " << folder;
  for (const auto& entry : fs::directory_iterator(folder)) {
    std::ifstream stream(entry.path(), std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(stream), {}};
    if (entry.path().extension() != ".html" || content.empty()) continue;
    EXPECT_EQ(found(content), visibleText(content)) << entry.path().filename();
  }
}

}  // namespace
}  // namespace kbx
