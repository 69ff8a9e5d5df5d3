#include "platform/files/SymbolicLinks.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/FakeFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

TEST(SymbolicLinks, EveryLinkIsReplacedByWhereItLeads) {
  FakeFiles files;
  files.folder("/real");
  files.folder("/real/deep");
  files.file("/real/deep/a.eml");
  files.link("/absolute", "/real");
  files.link("/relative", "real/deep");
  files.link("/real/up", "../real/deep/..");
  files.link("/chain", "absolute/up");
  files.link("/empty", "");
  struct Case {
    const char *path, *resolved;
  };
  for (auto [path, resolved] : {Case{"/", "/"},
                                {"/real/deep/a.eml", "/real/deep/a.eml"},
                                {"/absolute/deep", "/real/deep"},
                                {"/relative/a.eml", "/real/deep/a.eml"},
                                {"/chain/deep/", "/real/deep"},
                                {"//real/./deep//", "/real/deep"},
                                {"/relative/../up", "/real"},
                                {"/../..", "/"},
                                {"/empty/x", "/empty/x"}}) {
    SCOPED_TRACE(path);
    EXPECT_EQ(pathByResolvingLinks(path), resolved);
  }
}

TEST(SymbolicLinks, WhatDoesNotExistStaysAsItIs) {
  FakeFiles files;
  files.folder("/real");
  files.link("/link", "/real");
  files.link("/dangling", "/gone/far");
  EXPECT_EQ(pathByResolvingLinks("/link/none/x"), "/real/none/x");
  EXPECT_EQ(pathByResolvingLinks("/dangling/x"), "/gone/far/x");
  EXPECT_EQ(pathByResolvingLinks("/none/../link/x"), "/real/x");
}

TEST(SymbolicLinks, NothingIsAskedBelowWhatIsMissing) {
  FakeFiles files;
  EXPECT_EQ(pathByResolvingLinks("/a/b/c/d/e"), "/a/b/c/d/e");
  EXPECT_EQ(files.questions, 2) << "the root and the first name";
}

TEST(SymbolicLinks, ALoopOfLinksHasNoEnd) {
  FakeFiles files;
  files.link("/a", "/b");
  files.link("/b", "a");
  files.link("/self", "self");
  files.link("/growing", "/growing/x");
  for (const char* path : {"/a", "/self/x", "/growing"})
    EXPECT_EQ(pathByResolvingLinks(path), std::nullopt) << path;
}

TEST(SymbolicLinks, FortyLinksAreFollowedAndNoMore) {
  FakeFiles files;
  files.folder("/0");
  for (int i = 1; i <= 41; ++i) files.link("/" + std::to_string(i), "/" + std::to_string(i - 1));
  EXPECT_EQ(pathByResolvingLinks("/40"), "/0");
  EXPECT_EQ(pathByResolvingLinks("/41"), std::nullopt);
}

TEST(SymbolicLinks, TheRealDiskAnswersTheSame) {
  TemporaryFolder folder;
  const auto root = std::filesystem::canonical(folder.path());
  std::filesystem::create_directories(root / "real/caf\xE9");
  std::filesystem::create_symlink("real", root / "link");
  EXPECT_EQ(pathByResolvingLinks((root / "link/caf\xE9").string()),
            std::filesystem::canonical(root / "link/caf\xE9").string());
}

}  // namespace
}  // namespace kbx
