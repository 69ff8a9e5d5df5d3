#include "host/results/Results.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/console/FerncaseErrors.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using nlohmann::json;

const char kHostilePath[] = "a\n== b\x1B\xE9.eml";

/// Two files and a failure between them.
void fill(Results& results) {
  auto first = NSDictionary::dictionaryWithPairs({{"b"_ns, "1"_ns}, {"a"_ns, "2"_ns}});
  results.begin();
  results.delivered("1.eml", first);
  results.failed(kHostilePath, ferncaseError(FerncaseNoMessagesError, "Nothing\nhere"));
  results.delivered("2.eml", NSDictionary::dictionary());
  results.end();
}

TEST(TextResults, OneFileHasNoHeading) {
  StringOutput output;
  makeTextResults(output, false)
      ->delivered("1.eml", NSDictionary::dictionaryWithPairs({{"a"_ns, "2"_ns}}));
  EXPECT_EQ(output.text(), "a = \"2\"\n");
}

TEST(TextResults, SeveralFilesHaveHeadingsAndFailuresNothing) {
  StringOutput output;
  fill(*makeTextResults(output, true));
  EXPECT_EQ(output.text(),
            "== 1.eml\n"
            "a = \"2\"\n"
            "b = \"1\"\n"
            "\n"
            "== 2.eml\n");
}

TEST(TextResults, APathCannotFakeAHeading) {
  StringOutput output;
  makeTextResults(output, true)->delivered(kHostilePath, NSDictionary::dictionary());
  EXPECT_EQ(output.text(), "== a\\n== b\\u001b\\xe9.eml\n");
}

TEST(LineResults, EachInputIsOneLine) {
  StringOutput output;
  fill(*makeLineResults(output));
  EXPECT_EQ(output.text(),
            "{\"path\": \"1.eml\", \"attributes\": {\"a\": \"2\", \"b\": \"1\"}}\n"
            "{\"path\": \"a\\n== b\\u001b\\udce9.eml\", \"error\": {\"domain\": "
            "\"FerncaseErrorDomain\", \"code\": 2, \"description\": \"Nothing\\nhere\"}}\n"
            "{\"path\": \"2.eml\", \"attributes\": {}}\n");
}

TEST(JSONResults, AllInputsAreOneArray) {
  StringOutput output;
  auto results = makeJSONResults(output);
  results->begin();
  results->delivered("1.eml", NSDictionary::dictionaryWithPairs({{"a"_ns, "2"_ns}}));
  results->failed("2.eml", ferncaseError(FerncaseNoMessagesError, "None"));
  results->end();
  EXPECT_EQ(output.text(),
            "[\n"
            "  {\n"
            "    \"path\": \"1.eml\",\n"
            "    \"attributes\": {\n"
            "      \"a\": \"2\"\n"
            "    }\n"
            "  },\n"
            "  {\n"
            "    \"path\": \"2.eml\",\n"
            "    \"error\": {\n"
            "      \"domain\": \"FerncaseErrorDomain\",\n"
            "      \"code\": 2,\n"
            "      \"description\": \"None\"\n"
            "    }\n"
            "  }\n"
            "]\n");
  EXPECT_EQ(json::parse(output.text()).size(), 2u);
}

TEST(JSONResults, NoInputsAreAnEmptyArray) {
  StringOutput output;
  auto results = makeJSONResults(output);
  results->begin();
  results->end();
  EXPECT_EQ(output.text(), "[]\n");
}

}  // namespace
}  // namespace kbx
