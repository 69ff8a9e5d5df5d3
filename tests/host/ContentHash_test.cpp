#include "host/index/ContentHash.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/support/FailingFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

constexpr HashKey kKey{1, 2};

TEST(ContentHash, TellsContentsApart) {
  const TemporaryFolder folder;
  std::set<ContentHash> hashes;
  const std::string piece(1 << 16, 'x');
  for (const auto& content : {std::string(), std::string("a"), std::string("b"), piece, piece + "a",
                              piece + "b", "a" + piece, piece + piece}) {
    folder.write("a", content);
    const auto hash = contentHashOf((folder / "a").string(), kKey, nullptr);
    ASSERT_TRUE(hash);
    EXPECT_TRUE(hashes.insert(*hash).second) << content.size();
    EXPECT_EQ(contentHashOf((folder / "a").string(), kKey, nullptr), hash);
  }
}

TEST(ContentHash, DependsOnTheKey) {
  const TemporaryFolder folder;
  folder.write("a", "content");
  const std::string path = (folder / "a").string();
  EXPECT_NE(contentHashOf(path, {1, 2}, nullptr), contentHashOf(path, {1, 3}, nullptr));
  EXPECT_NE(contentHashOf(path, {1, 2}, nullptr), contentHashOf(path, {2, 2}, nullptr));
}

TEST(ContentHash, ShortReadsChangeNothing) {
  const TemporaryFolder folder;
  folder.write("a", std::string(200'000, 'x'));
  const std::string path = (folder / "a").string();
  const auto hash = contentHashOf(path, kKey, nullptr);
  FailingFiles files;
  files.largestRead = 1000;
  const ScopedService<FileSystem> installed(files);
  EXPECT_EQ(contentHashOf(path, kKey, nullptr), hash);
}

TEST(ContentHash, WhatCannotBeReadHasNone) {
  const TemporaryFolder folder;
  Ref<NSError> error;
  EXPECT_FALSE(contentHashOf((folder / "missing").string(), kKey, &error));
  EXPECT_EQ(error->code(), NSFileReadNoSuchFileError);
  folder.write("a", std::string(200'000, 'x'));
  FailingFiles files;
  files.fail(FailingFiles::Call::Read, EIO, 1);
  const ScopedService<FileSystem> installed(files);
  EXPECT_FALSE(contentHashOf((folder / "a").string(), kKey, &error));
}

TEST(ContentHash, BytesFindTheirWayBack) {
  EXPECT_EQ(bytesOf(0x0102030405060708), "\1\2\3\4\5\6\7\b");
  EXPECT_EQ(contentHashIn(bytesOf(0xFFEEDDCCBBAA9988)), 0xFFEEDDCCBBAA9988);
  EXPECT_FALSE(contentHashIn("1234567"));
  EXPECT_FALSE(contentHashIn(""));
}

}  // namespace
}  // namespace kbx
