// WatchTest: a folder on the disk, and a watcher that tells what a test says.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "tests/support/FakeFolderWatcher.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {

class WatchTest : public testing::Test {
 protected:
  using Kind = FolderNotice::Kind;

  void SetUp() override { std::filesystem::create_directory(_root); }
  /// Of what is in the watched folder; its own for an empty name.
  std::string path(std::string_view name) const {
    return name.empty() ? _root.string() : (_root / name).string();
  }

  TemporaryFolder _folder;
  const std::filesystem::path _root = _folder / "mail";
  FakeFolderWatcher _watcher;
};

}  // namespace kbx
