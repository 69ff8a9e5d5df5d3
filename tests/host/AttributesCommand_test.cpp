#include "host/import/AttributesCommand.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/results/KnownAttributes.h"
#include "tests/support/CommandRun.h"

namespace kbx {
namespace {

std::string outputOf(const std::vector<std::string>& arguments) {
  const auto [code, output, complaints] = answerTo(arguments);
  EXPECT_EQ(code, kDone);
  return output;
}

TEST(AttributesCommand, ColumnsAreAligned) {
  std::istringstream text(outputOf({"attributes"}));
  std::size_t lines = 0;
  for (std::string line; std::getline(text, line); ++lines) {
    const KnownAttribute& known = knownAttributes()[lines];
    EXPECT_EQ(line.substr(0, known.name.size()), known.name);
    EXPECT_EQ(line.substr(48, known.type.size()), known.type);
    EXPECT_EQ(line.substr(66), known.meaning);
  }
  EXPECT_EQ(lines, knownAttributes().size());
}

TEST(AttributesCommand, TheArrayHoldsTheWholeTable) {
  const auto array = nlohmann::json::parse(outputOf({"attributes", "--json"}));
  ASSERT_EQ(array.size(), knownAttributes().size());
  for (std::size_t i = 0; i < array.size(); ++i) {
    const KnownAttribute& known = knownAttributes()[i];
    const nlohmann::json expected{
        {"name", known.name}, {"type", known.type}, {"meaning", known.meaning}};
    EXPECT_EQ(array[i], expected);
  }
}

}  // namespace
}  // namespace kbx
