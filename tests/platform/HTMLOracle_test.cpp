// Real pages against a parser of all of HTML's tree construction: no word that it shows is lost.
#include <gtest/gtest.h>
#include <gumbo.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "platform/markup/MarkupText.h"
#include "tests/support/Markup.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace test;
namespace fs = std::filesystem;

/// What is not shown, or is raw text there and markup here.
const std::set<GumboTag> kLeftOut = {GUMBO_TAG_HEAD,     GUMBO_TAG_SCRIPT,  GUMBO_TAG_STYLE,
                                     GUMBO_TAG_TITLE,    GUMBO_TAG_IFRAME,  GUMBO_TAG_NOFRAMES,
                                     GUMBO_TAG_NOSCRIPT, GUMBO_TAG_NOEMBED, GUMBO_TAG_TEMPLATE};

void addWords(const GumboNode* root, std::set<std::string>& words) {
  std::vector<const GumboNode*> waiting = {root};
  while (!waiting.empty()) {
    const GumboNode* const node = waiting.back();
    waiting.pop_back();
    if (node->type == GUMBO_NODE_TEXT || node->type == GUMBO_NODE_CDATA) {
      std::istringstream text(node->v.text.text);
      for (std::string word; text >> word;) words.insert(word);
    }
    if (node->type != GUMBO_NODE_ELEMENT || kLeftOut.contains(node->v.element.tag)) continue;
    const GumboVector& children = node->v.element.children;
    for (unsigned i = 0; i < children.length; ++i)
      waiting.push_back(static_cast<const GumboNode*>(children.data[i]));
  }
}

std::set<std::string> wordsShown(std::string_view html) {
  GumboOptions options = kGumboDefaultOptions;
  GumboOutput* const output = gumbo_parse_with_options(&options, html.data(), html.size());
  std::set<std::string> words;
  addWords(output->root, words);
  gumbo_destroy_output(&options, output);
  return words;
}

TEST(HTMLOracle, NoWordOfARealPageIsLost) {
  const fs::path folder = FERNCASE_SOURCE_DIR "/../shared/data/html";
  if (!fs::exists(folder)) GTEST_SKIP() << "no real data in " << folder;
  std::size_t count = 0;
  for (const auto& entry : fs::directory_iterator(folder)) {
    std::ifstream stream(entry.path(), std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(stream), {}};
    if (entry.path().extension() != ".html" || content.empty()) continue;
    SCOPED_TRACE(entry.path().filename());
    auto input = data(content);
    const std::string text = visibleText(content);
    for (const std::string& word : wordsShown(markupText(input).text)) {
      ++count;
      EXPECT_NE(text.find(word), text.npos) << word;
    }
  }
  EXPECT_GT(count, 1000U);
}

}  // namespace
}  // namespace kbx
