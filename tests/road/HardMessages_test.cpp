// Hard messages on the whole road, through the command: what is planted at the end of each is
// found, and no message takes more memory than a few times its size.
//
// FERNCASE_HARD_SCALE=1 in the environment makes them as large as they are meant to be; then the
// time is looked at too. Any other number makes them so many times as large.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "tests/generators/HardMessages.h"
#include "tests/support/Process.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

constexpr bool kIsMemoryTelling = !kIsSanitized;  // its own memory is many times ours

constexpr double kQuickScale = 0.2;
constexpr double kMostSeconds = 2;  // of CPU, at full size
constexpr std::size_t kMostCopies = 3;
constexpr double kMostBesides = 35000000;  // at full size, and besides what any message takes

double scale() {
  const char* wanted = std::getenv("FERNCASE_HARD_SCALE");
  return wanted ? std::strtod(wanted, nullptr) : kQuickScale;
}

/// Whether a file has the planted word. Read in pieces: what this process once had in memory would
/// count for the next program that it measures.
bool hasPlantedWord(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::string piece;
  char bytes[1 << 16];
  while (file.read(bytes, sizeof bytes), file.gcount() > 0) {
    piece.append(bytes, static_cast<std::size_t>(file.gcount()));
    if (piece.find(kPlantedWord) != std::string::npos) return true;
    piece.erase(0, piece.size() - std::min(piece.size(), kPlantedWord.size()));
  }
  return false;
}

class HardMessages : public testing::TestWithParam<HardMessage> {
 protected:
  void SetUp() override {
    std::ofstream file(_folder / "hard.eml", std::ios::binary);
    GetParam().write(
        [&](std::string_view bytes) {
          file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        },
        scale());
  }

  Measured import() { return import(_folder / "hard.eml"); }
  /// What a message takes that is not hard.
  std::size_t leastBytes() {
    _folder.write("easy.eml", "Subject: easy\n\nA text.\n");
    return import(_folder / "easy.eml").peakBytes;
  }

  std::filesystem::path outputPath() const { return _folder / "output"; }
  std::size_t messageSize() const { return std::filesystem::file_size(_folder / "hard.eml"); }

 private:
  Measured import(const std::filesystem::path& message) {
    const int output = ::open(outputPath().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    Measured finished =
        Process({FERNCASE_BINARY, "import", "--name", std::string(GetParam().attribute), "--raw",
                 "--extra", message.string()})
            .outputTo(output)
            .measure();
    ::close(output);
    return finished;
  }

  TemporaryFolder _folder;
};

TEST_P(HardMessages, AreReadToTheirEndInBoundedMemoryAndTime) {
  const Measured finished = import();
  EXPECT_EQ(finished.exitCode, 0);
  EXPECT_EQ(finished.complaints, "");
  EXPECT_TRUE(hasPlantedWord(outputPath()));
  if (kIsMemoryTelling) {
    const auto besides = static_cast<std::size_t>(std::min(scale(), 1.0) * kMostBesides);
    EXPECT_LE(finished.peakBytes, leastBytes() + kMostCopies * messageSize() + besides);
  }
  if (scale() >= 1) {
    EXPECT_LE(finished.cpuSeconds, kMostSeconds);
  }
}

std::vector<HardMessage> messages() {
  std::vector<HardMessage> all;
  std::ranges::copy_if(hardMessages(), std::back_inserter(all),
                       [](const HardMessage& message) { return !message.isOnDemand; });
  return all;
}

INSTANTIATE_TEST_SUITE_P(Generated, HardMessages, testing::ValuesIn(messages()),
                         [](const auto& one) {
                           std::string name(one.param.name);
                           std::ranges::replace(name, '-', '_');
                           return name;
                         });

}  // namespace
}  // namespace kbx
