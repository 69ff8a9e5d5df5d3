#include "platform/preferences/FilePreferences.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/objects/NSNumber.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

constexpr int kThreads = 3;
constexpr int kChanges = 25;

/// Each thread sets keys of its own in the same domain and looks at all of them.
void changeFromThreads(const std::vector<FilePreferences*>& preferences) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread)
    threads.emplace_back([&, thread] {
      auto& mine = *preferences[static_cast<std::size_t>(thread) % preferences.size()];
      for (int i = 0; i < kChanges; ++i) {
        auto key = string(std::to_string(thread) + "." + std::to_string(i));
        mine.change("d"_ns, NSDictionary::dictionaryWithPairs({{key, key}}));
        EXPECT_TRUE(mine.domain("d"_ns)->objectForKey(key));
      }
    });
  for (auto& thread : threads) thread.join();
}

std::size_t countIn(const TemporaryFolder& folder) {
  FilePreferences next(folder.path().string(), std::chrono::seconds(0));
  auto values = next.domain("d"_ns);
  return values ? values->count() : 0;
}

TEST(FilePreferencesThreads, NoChangeOfAThreadIsLost) {
  TemporaryFolder folder;
  FilePreferences one(folder.path().string(), std::chrono::minutes(1));
  changeFromThreads({&one});
  EXPECT_EQ(countIn(folder), static_cast<std::size_t>(kThreads * kChanges));
}

TEST(FilePreferencesThreads, NoChangeOfAProcessIsLost) {
  TemporaryFolder folder;
  const std::string path = folder.path().string();
  FilePreferences first(path, std::chrono::minutes(1)), second(path, std::chrono::minutes(1)),
      third(path, std::chrono::minutes(1));
  changeFromThreads({&first, &second, &third});
  EXPECT_EQ(countIn(folder), static_cast<std::size_t>(kThreads * kChanges));
}

}  // namespace
}  // namespace kbx
