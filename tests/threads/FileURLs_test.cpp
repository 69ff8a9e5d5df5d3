// What locations share between threads: kept resource values, and the search for a free name.
#include <gtest/gtest.h>

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "NSURL+KBXFileBasics.h"
#include "RealHomeDirectory.h"
#include "platform/files/SystemFiles.h"
#include "platform/system/ProcessIdentity.h"
#include "tests/support/FakeUserAccounts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

void onThreads(const std::function<void()>& work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
}

TEST(FileURLsAndThreads, KeptValuesAreReadAndDroppedAtOnce) {
  TemporaryFolder folder;
  const Ref<NSURL> url = folder.write("a.eml", "x");
  onThreads([&] {
    for (int round = 0; round < 200; ++round) {
      EXPECT_EQ(text(url->resourceValueForKey(NSURLTypeIdentifierKey(), nullptr)),
                "com.apple.mail.email");
      EXPECT_FALSE(kbxBOOLForResourceKey(url, NSURLIsPackageKey(), false));
      if (round % 3 == 0) kbxRemoveCachedResourceValueForKey(url, NSURLTypeIdentifierKey());
      if (round % 7 == 0) url->removeAllCachedResourceValues();
    }
  });
}

/// The disk, with a list of who asked it whether something exists.
class ListeningFiles final : public SystemFiles {
 public:
  int statusOfPath(const std::string& path, FileStatus* status) override {
    {
      const std::lock_guard held(_lock);
      _askers.push_back(std::this_thread::get_id());
    }
    std::this_thread::yield();
    return SystemFiles::statusOfPath(path, status);
  }
  /// How often another thread asked than the one before.
  int turns() const {
    int count = 0;
    for (std::size_t i = 1; i < _askers.size(); ++i) count += _askers[i] != _askers[i - 1];
    return count;
  }

 private:
  std::mutex _lock;
  std::vector<std::thread::id> _askers;
  ScopedService<FileSystem> _installed{*this};
};

TEST(FileURLsAndThreads, OneSearchForAFreeNameRunsAtATime) {
  TemporaryFolder folder;
  const Ref<NSURL> url = folder.write("a.eml", "x");
  for (int i = 1; i < 40; ++i) folder.write("a-" + std::to_string(i) + ".eml", "x");
  ListeningFiles files;
  onThreads([&] { EXPECT_EQ(text(kbxName(kbxSimilarNonExistentURL(url))), "a-40.eml"); });
  EXPECT_LE(files.turns(), 3) << "four searches, none begun before another had ended";
}

TEST(FileURLsAndThreads, TheHomeFolderIsLookedUpOnce) {
  FakeUserAccounts accounts;
  accounts.entries[ProcessIdentity::current().realUserIdentifier()] = {"ada", "/home/ada"};
  ScopedService<UserAccounts> installed(accounts);
  RealHomeDirectory directory;
  onThreads([&] { EXPECT_EQ(text(directory.url()->path()), "/home/ada"); });
  EXPECT_EQ(accounts.lookups, 1);
}

}  // namespace
}  // namespace kbx
