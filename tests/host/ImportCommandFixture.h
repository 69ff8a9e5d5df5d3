// ImportCommandTest: `ferncase import` as a user runs it, with the importer that the build made.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/JSONLines.h"
#include "tests/support/Process.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {

constexpr char kImporter[] = FERNCASE_SPOTLIGHT_DIR "/FerncaseSpotlightImporter.mdimporter";
constexpr char kMessage[] = "Subject: Hello\n\nGood morning\n";

class ImportCommandTest : public testing::Test {
 protected:
  using json = nlohmann::json;

  void SetUp() override {
    if (!std::filesystem::exists(kImporter)) GTEST_SKIP() << "no importer is built";
  }

  Process command(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {FERNCASE_BINARY, "import"});
    return Process(std::move(arguments));
  }
  /// In the folder of the test's files; the answers are the raw text.
  Finished run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "--raw-fallback");
    return command(std::move(arguments)).folder(_folder.path()).run();
  }
  std::vector<json> runLines(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "--ndjson");
    return jsonLines(run(std::move(arguments)).output);
  }
  static std::string textOf(const json& result) {
    return result.at("attributes").at("kMDItemTextContent").get<std::string>();
  }

  TemporaryFolder _folder;
};

}  // namespace kbx
