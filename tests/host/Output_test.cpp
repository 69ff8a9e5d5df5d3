#include "host/console/Output.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "tests/support/FailingFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

using Call = FailingFiles::Call;

/// Keeps what is delivered, one string for each delivery.
class Deliveries final : public Output {
 public:
  std::vector<std::string> list;
  int answer = 0;

 private:
  int deliver(std::string_view bytes) override {
    list.emplace_back(bytes);
    return answer;
  }
};

TEST(Output, SmallWritesAreDeliveredTogether) {
  Deliveries output;
  output.write("a");
  output.write('b');
  output.write("");
  EXPECT_TRUE(output.list.empty());
  EXPECT_TRUE(output.flush());
  EXPECT_EQ(output.list, std::vector<std::string>{"ab"});
}

TEST(Output, FlushingNothingDeliversNothing) {
  Deliveries output;
  EXPECT_TRUE(output.flush());
  EXPECT_TRUE(output.list.empty());
}

TEST(Output, LargeWritesKeepTheirOrder) {
  Deliveries output;
  const std::string large(200'000, 'x'), half(40'000, 'y');
  for (std::string_view piece : {std::string_view("a"), std::string_view(large),
                                 std::string_view(half), std::string_view(half)})
    output.write(piece);
  output.flush();
  std::string all;
  for (const auto& piece : output.list) all += piece;
  EXPECT_EQ(all, "a" + large + half + half);
}

TEST(Output, AFailureIsKeptAndNothingMoreIsDelivered) {
  Deliveries output;
  output.answer = -ENOSPC;
  output.write("a");
  EXPECT_FALSE(output.flush());
  output.answer = 0;
  output.write(std::string(200'000, 'x'));
  EXPECT_FALSE(output.flush());
  EXPECT_EQ(output.failure(), ENOSPC);
  EXPECT_EQ(output.list.size(), 1u);
}

TEST(Output, AnyNumberOfBlanks) {
  for (std::size_t count : {0u, 1u, 31u, 32u, 33u, 64u, 100u}) {
    StringOutput output;
    output.writeBlanks(count);
    EXPECT_EQ(output.text(), std::string(count, ' '));
  }
}

TEST(DescriptorOutput, ShortWritesGoOn) {
  TemporaryFolder folder;
  FailingFiles files;
  files.largestWrite = 3;
  ScopedService<FileSystem> installed(files);
  const int descriptor = files.open(folder / "out", FileSystem::Opening::Replacing);
  {
    DescriptorOutput output(descriptor);
    output.write("0123456789");
  }
  files.close(descriptor);
  EXPECT_EQ(folder.read("out"), "0123456789");
}

TEST(DescriptorOutput, AFullDiskIsAFailure) {
  TemporaryFolder folder;
  FailingFiles files;
  files.largestWrite = 3;
  files.fail(Call::Write, ENOSPC, 2);
  ScopedService<FileSystem> installed(files);
  const int descriptor = files.open(folder / "out", FileSystem::Opening::Replacing);
  DescriptorOutput output(descriptor);
  output.write("0123456789");
  EXPECT_FALSE(output.flush());
  EXPECT_EQ(output.failure(), ENOSPC);
  files.close(descriptor);
}

}  // namespace
}  // namespace kbx
