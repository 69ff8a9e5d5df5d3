#include "host/import/ImportersCommand.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/support/Bundles.h"
#include "tests/support/CommandRun.h"
#include "tests/support/FakeEnvironment.h"

namespace kbx {
namespace {

/// One importer that can be loaded and one that cannot.
class ImportersCommandTest : public testing::Test {
 protected:
  ImportersCommandTest() {
    std::filesystem::create_directories(_folder / "Library");
    std::filesystem::create_directory_symlink(FERNCASE_BUNDLES_DIR, _folder / "Library/Spotlight");
    writeBundle(_folder, "data/ferncase/Library/Spotlight/Odd",
                "<plist version=\"1.0\"><dict><key>CFBundleDocumentTypes</key><array><dict>"
                "<key>LSItemContentTypes</key><array><string>x.y</string></array></dict>"
                "</array></dict></plist>");
  }
  std::string run(std::vector<std::string> arguments) {
    FakeEnvironment environment({"XDG_DATA_HOME=" + (_folder / "data").string(),
                                 "KBX_SYSTEM_ROOT=" + _folder.path().string()});
    ScopedService<Environment> installed(environment);
    arguments.insert(arguments.begin(), "importers");
    auto [code, output, complaints] = answerTo(arguments);
    _code = code;
    return output;
  }

  TemporaryFolder _folder;
  ExitCode _code = kBroken;
};

TEST_F(ImportersCommandTest, EachBundleIsListedWithItsTypesAndWhetherItCanBeLoaded) {
  const std::string output = run({});
  EXPECT_EQ(_code, kDone);
  const std::string odd = (_folder / "data/ferncase/Library/Spotlight/Odd.mdimporter").string();
  EXPECT_TRUE(output.starts_with(odd + "\n    takes x.y")) << output;
  EXPECT_NE(output.find("\n    cannot be loaded: the bundle holds no metadata importer\n"),
            std::string::npos)
      << output;
  const std::string recorder = (_folder / "Library/Spotlight/Recorder.mdimporter").string();
  EXPECT_NE(output.find("\n" + recorder + "\n    can be loaded\n"), std::string::npos) << output;
}

TEST_F(ImportersCommandTest, TheArrayHoldsTheSame) {
  auto array = nlohmann::json::parse(run({"--json"}));
  ASSERT_GE(array.size(), 2u);
  EXPECT_EQ(array[0].at("types").size(), 1u);
  EXPECT_TRUE(array[0].at("failure").is_string());
  EXPECT_TRUE(
      std::ranges::any_of(array, [](const auto& each) { return each.at("failure").is_null(); }));
}

TEST_F(ImportersCommandTest, AnOperandIsWrongUsage) {
  EXPECT_EQ(run({"x"}), "");
  EXPECT_EQ(_code, kMisused);
}

}  // namespace
}  // namespace kbx
