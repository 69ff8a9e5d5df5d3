// `ferncase import` over messages that others wrote.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>

#include "platform/text/TextDetection.h"
#include "tests/host/ImportCommandFixture.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

/// The messages that others wrote, where they are at hand.
class RealMessagesTest : public ImportCommandTest {
 protected:
  void SetUp() override {
    ImportCommandTest::SetUp();
    if (!IsSkipped() && !std::filesystem::exists(messages()))
      GTEST_SKIP() << "no messages in " << messages();
  }
  static std::filesystem::path messages() { return FERNCASE_SOURCE_DIR "/../shared/data/eml"; }
};

std::string bytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The text of bytes that are not UTF-8: what the platform takes them for, or nothing.
std::string guessedText(std::string_view bytes) {
  auto guessed = stringByDetectingEncoding(data(bytes), nullptr);
  return guessed ? *guessed->UTF8String() : "";
}

TEST_F(RealMessagesTest, AllAreDeliveredAndTheirTextIsTheirBytes) {
  auto [code, output, complaints] = run({"--ndjson", messages().string()});
  EXPECT_EQ(code, 0);
  EXPECT_EQ(complaints, "");
  auto results = jsonLines(output);
  EXPECT_EQ(results.size(), 200u);
  std::size_t exact = 0;
  for (const auto& result : results) {
    const std::string path = result.at("path"), bytes = bytesOf(path);
    const bool isUTF8 = NSString::stringWithUTF8(bytes) != nullptr;
    exact += isUTF8;
    EXPECT_TRUE(textOf(result) == (isUTF8 ? bytes : guessedText(bytes))) << path;
  }
  EXPECT_EQ(exact, 182u);
}

/// The names and bytes of the files in a folder.
std::map<std::string, std::string> filesIn(const std::filesystem::path& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    files[entry.path().filename().string()] = bytesOf(entry.path().string());
  return files;
}

TEST_F(RealMessagesTest, EveryMessageIsImportedAndItsFolderStaysAsItIs) {
  const auto before = filesIn(messages());
  auto [code, output, complaints] = command({"--ndjson", messages().string()}).run();
  EXPECT_EQ(code, 0);
  EXPECT_EQ(complaints, "");
  auto results = jsonLines(output);
  EXPECT_EQ(results.size(), 200u);
  for (const auto& result : results) {
    const auto& attributes = result.at("attributes");
    EXPECT_EQ(attributes.at("kMDItemKind"), "Mail Message");
    EXPECT_TRUE(attributes.contains("kMDItemTextContent")) << result.at("path");
  }
  EXPECT_TRUE(filesIn(messages()) == before);
  for (auto way : {"--stage=beside", "--isolate=none",
                   "--importer=" FERNCASE_BUNDLES_DIR "/LegacyDoor.mdimporter"}) {
    auto other = command({way, "--ndjson", messages().string()}).run();
    EXPECT_TRUE(other.output == output) << way << " changed the answer";
  }
}

TEST_F(RealMessagesTest, TheArrayIsValid) {
  auto finished = run({"--json", messages().string()});
  EXPECT_EQ(json::parse(finished.output).size(), 200u);
}

TEST_F(RealMessagesTest, TheTextFormHoldsNoControlCharacter) {
  auto finished = run({messages().string()});
  EXPECT_EQ(finished.exitCode, 0);
  EXPECT_TRUE(std::ranges::all_of(finished.output, [](char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return byte == '\n' || (value >= 0x20 && value != 0x7F);
  }));
}

}  // namespace
}  // namespace kbx
