// Documents on many threads at once: nothing is shared between them but constants.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "KBXLogger.h"
#include "NSString+KBXHTML.h"
#include "platform/xml/VisibleText.h"
#include "tests/support/Markup.h"
#include "tests/support/RandomMarkup.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace test;

constexpr int kThreads = 8;

std::vector<std::string> mixedDocuments() {
  std::mt19937 random(20250105);
  std::vector<std::string> documents = {"<meta charset=shift_jis>\x82\xA0", "\xFF\xFEx"};
  for (int i = 0; i < 60; ++i)
    documents.push_back(i % 3 == 0 ? randomXML(random) : randomHTML(random));
  return documents;
}

template <class Work>
void onAllThreads(Work work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
}

TEST(HTMLThreads, EveryRoadAnswersOnEveryThreadAsOnOne) {
  KBXLogger::setSharedLogger(KBXLogger::initWithDefaultsDictionary(nullptr));
  const std::vector<std::string> documents = mixedDocuments();
  std::vector<std::string> expected;
  for (const std::string& html : documents) expected.push_back(visibleText(html));
  onAllThreads([&] {
    for (std::size_t i = 0; i < documents.size(); ++i) {
      EXPECT_EQ(visibleText(documents[i]), expected[i]);
      EXPECT_EQ(text(kbx::visibleText(data(documents[i]))), expected[i]);
      EXPECT_EQ(text(kbxStringWithHTMLData(data(documents[i]), nullptr)), expected[i]);
    }
  });
  KBXLogger::setSharedLogger(nullptr);
}

TEST(HTMLThreads, ADocumentIsReadByAllThreadsAtOnce) {
  auto document = parsed("<p>a<p>b<ul><li>c");
  const std::string form = canonical(document);
  onAllThreads([&] {
    for (int i = 0; i < 50; ++i) {
      EXPECT_EQ(canonical(document), form);
      EXPECT_EQ(textBy(kVisibleText, document), "a\nb\nc");
      EXPECT_EQ(document->rootElement()->children()->count(), 2U);
    }
  });
}

TEST(HTMLThreads, TheXSLTLibraryTransformsOnAllThreadsAtOnce) {
  const std::string copying =
      std::string(kVisibleText)
          .replace(kVisibleText.find("match='h:head'"), 14, "match='h:none/h:one'");
  auto document = parsed("<title>t</title><p>a<p>b");
  onAllThreads([&] {
    for (int i = 0; i < 20; ++i) EXPECT_EQ(textBy(copying, document), "ta\nb");
  });
}

}  // namespace
}  // namespace kbx
