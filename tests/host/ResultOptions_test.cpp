#include "host/results/ResultOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>

#include "platform/objects/NSDictionary.h"
#include "tests/support/CommandRun.h"

namespace kbx {
namespace {

using testing::HasSubstr;

/// What is printed of one message.
std::string printed(std::vector<std::string> arguments) {
  CLI::App app;
  ResultOptions options;
  options.declareOn(app);
  std::ranges::reverse(arguments);  // the parser takes the last one first
  app.parse(arguments);
  options.check();
  auto attributes = NSDictionary::dictionaryWithPairs({{"kMDItemSubject"_ns, "Plans"_ns},
                                                       {"kMDItemTextContent"_ns, "body"_ns},
                                                       {"org_ferncase_mail_size"_ns, "7"_ns}});
  StringOutput output;
  const auto results = options.makeResults(output, false);
  results->begin();
  results->delivered("a", options.filter().wantedOf(attributes));
  results->end();
  return output.text();
}

TEST(ResultOptions, TheFormIsTextUnlessAnotherIsChosen) {
  EXPECT_EQ(printed({}), "kMDItemSubject     = \"Plans\"\nkMDItemTextContent = \"body\"\n");
  EXPECT_THAT(printed({"--json"}), testing::StartsWith("[\n"));
  EXPECT_THAT(printed({"--ndjson"}), testing::StartsWith("{\"path\""));
  EXPECT_THAT(printed({"--plist"}), testing::StartsWith("<?xml"));
  EXPECT_EQ(printed({"--raw", "--name", "kMDItemSubject"}), std::string("Plans\0", 6));
}

TEST(ResultOptions, AttributesAreChosenByNameAndKind) {
  EXPECT_EQ(printed({"--name", "kMDItemSubject"}), "kMDItemSubject = \"Plans\"\n");
  EXPECT_EQ(printed({"--no-text"}), "kMDItemSubject = \"Plans\"\n");
  EXPECT_THAT(printed({"--extra"}), HasSubstr("org_ferncase_mail_size"));
}

TEST(ResultOptions, TheMarkerStandsForWhatAMessageHasNot) {
  EXPECT_EQ(printed({"--raw", "--name", "x"}), std::string("(null)\0", 7));
  EXPECT_EQ(printed({"--raw", "--name", "x", "--null-marker", "-"}), std::string("-\0", 2));
  EXPECT_EQ(printed({"--raw", "--name", "x", "--null-marker", ""}), std::string("\0", 1));
}

TEST(ResultOptions, WhatMeansNothingIsRefusedByEachCommand) {
  const char kForms[] = "--json, --ndjson, --plist and --raw exclude each other";
  expectRefused({"import", "show"},
                {{{"--json", "--ndjson"}, kForms},
                 {{"--json", "--plist"}, kForms},
                 {{"--plist", "--raw", "--name=x"}, kForms},
                 {{"--raw"}, "--raw needs --name"},
                 {{"--name="}, "--name needs an ATTRIBUTE"},
                 {{"--raw", "--name=x", "--name="}, "--name needs an ATTRIBUTE"},
                 {{"--null-marker=-"}, "--null-marker needs --raw"},
                 {{"--null-marker=", "--name=x"}, "--null-marker needs --raw"}});
}

}  // namespace
}  // namespace kbx
