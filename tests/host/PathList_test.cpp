#include "host/import/PathList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <thread>

#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

using testing::ElementsAre;
using namespace std::string_view_literals;

TEST(PathList, EachPathEndsInTheSeparatorTheLastOnePerhapsNot) {
  EXPECT_THAT(pathsIn("a b\n\xE9\n", '\n'), ElementsAre("a b", "\xE9"));
  EXPECT_THAT(pathsIn("a\nb", '\n'), ElementsAre("a", "b"));
  EXPECT_THAT(pathsIn("a\nb\0\0c"sv, '\0'), ElementsAre("a\nb", "c"));
}

TEST(PathList, EmptyPathsAreLeftOut) {
  EXPECT_TRUE(pathsIn("", '\n').empty());
  EXPECT_TRUE(pathsIn("\n\n", '\n').empty());
}

TEST(PathList, ADashIsAFileOfThatName) {
  EXPECT_THAT(pathsIn("-\n--\n", '\n'), ElementsAre("./-", "--"));
}

TEST(PathList, TheListIsAddedToWhatIsThere) {
  TemporaryFolder folder;
  folder.write("list", "b\nc\n");
  std::vector<std::string> paths{"a"};
  Ref<NSError> error;
  EXPECT_TRUE(addPathsFrom((folder / "list").string(), '\n', paths, &error));
  EXPECT_THAT(paths, ElementsAre("a", "b", "c"));
  EXPECT_FALSE(addPathsFrom((folder / "gone").string(), '\n', paths, &error));
  EXPECT_EQ(error->code(), 260);
}

TEST(PathList, APipeIsReadUntilItsWriterIsDone) {
  TemporaryFolder folder;
  const std::string pipe = (folder / "pipe").string();
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  std::string list;
  for (int i = 0; i < 20'000; ++i) list += "path " + std::to_string(i) + "\n";
  std::thread writer([&] { std::ofstream(pipe) << list; });
  std::vector<std::string> paths;
  Ref<NSError> error;
  EXPECT_TRUE(addPathsFrom(pipe, '\n', paths, &error));
  writer.join();
  ASSERT_EQ(paths.size(), 20'000u);
  EXPECT_EQ(paths.back(), "path 19999");
}

TEST(PathList, AnEmptyDeviceListsNothing) {
  std::vector<std::string> paths;
  Ref<NSError> error;
  EXPECT_TRUE(addPathsFrom("/dev/null", '\n', paths, &error));
  EXPECT_TRUE(paths.empty());
}

}  // namespace
}  // namespace kbx
