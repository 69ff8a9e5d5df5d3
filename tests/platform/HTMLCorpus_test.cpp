// Real bodies and pages: what two other parsers saw is there, what is hidden is not.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/support/Markup.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace test;
namespace fs = std::filesystem;
using Json = nlohmann::json;

const fs::path kFolder = FERNCASE_SOURCE_DIR "/../shared/data/html";

std::string contentOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

class HTMLCorpus : public testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists(kFolder / "expected.json")) GTEST_SKIP() << "no real data in " << kFolder;
  }
};

void expectWords(const Json& expected, const char* list, const std::string& text, bool isThere) {
  const auto words = expected.find(list);
  if (words == expected.end() || words->is_null()) return;
  for (const std::string word : *words)
    EXPECT_EQ(text.find(word) != text.npos, isThere) << list << ": " << word;
}

TEST_F(HTMLCorpus, WhatAReaderSeesIsThereAndWhatIsHiddenIsNot) {
  const Json files = Json::parse(contentOf(kFolder / "expected.json"));
  std::size_t count = 0;
  for (const auto& [name, expected] : files.items()) {
    SCOPED_TRACE(name);
    const std::string content = contentOf(kFolder / name);
    const std::string text = content.empty() ? "" : visibleText(content);
    expectWords(expected, "must_contain", text, true);
    expectWords(expected, "must_contain_non_ascii", text, true);
    expectWords(expected, "must_not_contain", text, false);
    if (expected.value("expect_blank_text", false)) {
      EXPECT_EQ(text.find_first_not_of(" \n\t\u00A0"), text.npos) << text;
    }
    ++count;
  }
  EXPECT_EQ(count, 98U);
}

TEST_F(HTMLCorpus, TheCanonicalFormParsesBackToItself) {
  for (const auto& entry : fs::directory_iterator(kFolder)) {
    const std::string content = contentOf(entry.path());
    if (entry.path().extension() != ".html" || content.empty()) continue;
    SCOPED_TRACE(entry.path().filename());
    const std::string first = canonical(content, kTidyHTML);
    EXPECT_EQ(canonical(first, kTidyHTML), first);
    EXPECT_EQ(canonical(first, kTidyBoth), first);
  }
}

}  // namespace
}  // namespace kbx
