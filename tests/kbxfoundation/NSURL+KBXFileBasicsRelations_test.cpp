#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "NSURL+KBXFileBasics.h"
#include "platform/objects/NSException.h"
#include "tests/support/FailingFiles.h"
#include "tests/support/FakeFiles.h"
#include "tests/support/FakeOperatingSystem.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

Ref<NSURL> file(std::string_view path) {
  return NSURL::fileURLWithFileSystemRepresentation(path, false);
}

bool contains(std::string_view folder, std::string_view item) {
  return kbxContainsFileURL(file(folder), file(item));
}

struct ContainmentCase {
  const char *rule, *folder, *item;
  bool isContained;
};
constexpr ContainmentCase kContainment[] = {
    {"a file in a sub-sub-folder", "/a", "/a/b/c/f", true},
    {"a child", "/a/b", "/a/b/c", true},
    {"the folder itself", "/a/b", "/a/b", false},
    {"its parent", "/a/b", "/a", false},
    {"a name that only begins the same", "/a/b", "/a/bc", false},
    {"below such a name", "/a/b", "/a/bc/f", false},
    {"everything is in the root", "/", "/a/b", true},
    {"but not the root", "/", "/", false},
    {"dots are taken out", "/a/./b", "/a/bc/../b/c", true},
    {"and lead out", "/a/b", "/a/b/../bc", false},
    {"the folder is a link", "/link", "/a/b/c", true},
    {"the item is behind a link", "/a", "/link/c", true},
    {"the item is a link to a place inside", "/a/b", "/inward", true},
    {"a link inside leads out", "/a/b", "/a/b/outward", false},
    {"a link to the folder is the folder", "/a/b", "/link", false},
};

class NSURLKBXContainment : public testing::Test {
 protected:
  NSURLKBXContainment() {
    for (const char* path : {"/a", "/a/b", "/a/b/c", "/a/bc", "/x"}) files.folder(path);
    for (const char* path : {"/a/b/c/f", "/a/bc/f"}) files.file(path);
    files.link("/link", "a/b");
    files.link("/inward", "/a/b/c");
    files.link("/a/b/outward", "/x");
    files.link("/loop", "loop");
  }
  void check() {
    for (auto [rule, folder, item, isContained] : kContainment)
      EXPECT_EQ(contains(folder, item), isContained) << rule;
  }

  FakeFiles files;
};

TEST_F(NSURLKBXContainment, From10_10TheSystemTellsWhatLiesWhere) {
  check();
  files.folder("/again");
  files.same("/again", "/a/b");
  EXPECT_TRUE(contains("/again", "/a/b/c")) << "one folder in two places";
  EXPECT_FALSE(contains("/again", "/a/b"));
}

TEST_F(NSURLKBXContainment, Before10_10PathsAreCompared) {
  FakeOperatingSystem system(1056.13, {10, 9, 0});
  ScopedService<OperatingSystem> installed(system);
  check();
  files.folder("/again");
  files.same("/again", "/a/b");
  EXPECT_FALSE(contains("/again", "/a/b/c"));
}

TEST_F(NSURLKBXContainment, WhatDoesNotExistIsComparedByItsPath) {
  EXPECT_TRUE(contains("/none", "/none/x/y"));
  EXPECT_TRUE(contains("/a/b", "/link/none"));
  EXPECT_FALSE(contains("/none", "/none"));
  EXPECT_FALSE(contains("/none", "/nonesuch"));
  EXPECT_FALSE(contains("/none/x", "/none"));
  EXPECT_TRUE(contains("/", "/none"));
}

TEST_F(NSURLKBXContainment, LoopsOfLinksHaveOnlyTheirNames) {
  EXPECT_TRUE(contains("/loop", "/loop/x"));
  EXPECT_FALSE(contains("/loop", "/a"));
  EXPECT_TRUE(contains("/", "/loop"));
}

TEST_F(NSURLKBXContainment, AFolderThatVanishesMeanwhileStillHasItsPath) {
  files.beforeQuestion = [this](const std::string& path) {
    if (path == "/a/b/c/f") files.vanish(path);
  };
  EXPECT_TRUE(contains("/a", "/a/b/c/f"));
}

TEST_F(NSURLKBXContainment, NamesThatAreNotUTF8AreComparedByTheirBytes) {
  for (const bool exists : {false, true}) {
    if (exists)
      for (const char* path : {"/m\xE9", "/m\xE9/x", "/m\xE8", "/m\xE8/x"}) files.folder(path);
    EXPECT_TRUE(contains("/m\xE9", "/m\xE9/x"));
    EXPECT_FALSE(contains("/m\xE9", "/m\xE8/x"));
  }
}

TEST_F(NSURLKBXContainment, AnAbsentLocationIsNowhere) {
  EXPECT_FALSE(kbxContainsFileURL(file("/a"), nullptr));
  EXPECT_FALSE(kbxContainsFileURL(nullptr, file("/a")));
}

TEST(NSURLKBXFileBasicsRelations, EqualityIsByName) {
  struct Case {
    const char *rule, *first, *second;
    bool isEqual;
  };
  for (auto [rule, first, second, isSameFile] :
       {Case{"the same path", "/a/b", "/a/b", true},
        {"standardised paths", "/a/./x/../b", "/a/b", true},
        {"a doubled slash", "/a//b", "/a/b", true},
        {"another name", "/a/b", "/a/c", false},
        {"another folder", "/a/b", "/c/b", false},
        {"case counts", "/a/B", "/a/b", false},
        {"the name before it is standardised", "/a/b/.", "/a/b", false},
        {"composed and decomposed", "/\xC3\xA9", "/e\xCC\x81", false},
        {"foreign bytes", "/\xE9", "/\xE9", true},
        {"other foreign bytes", "/\xE9", "/\xE8", false}}) {
    EXPECT_EQ(kbxIsEqualToFileURL(file(first), file(second)), isSameFile) << rule;
    EXPECT_EQ(kbxIsEqualToFileURL(file(second), file(first)), isSameFile) << rule;
  }
}

TEST(NSURLKBXFileBasicsRelations, AFoldersMarkMakesNoDifference) {
  auto folder = NSURL::fileURLWithPath("/a/b"_ns, true);
  EXPECT_FALSE(isEqual(folder, file("/a/b")));
  EXPECT_TRUE(kbxIsEqualToFileURL(folder, file("/a/b")));
}

TEST(NSURLKBXFileBasicsRelations, LinksAreNotFollowedForEquality) {
  FakeFiles files;
  files.folder("/a");
  files.folder("/a/x");
  files.link("/link", "/a");
  EXPECT_FALSE(kbxIsEqualToFileURL(file("/link/x"), file("/a/x")));
}

TEST(NSURLKBXFileBasicsRelations, AnAbsentLocationEqualsNothing) {
  EXPECT_FALSE(kbxIsEqualToFileURL(file("/a"), nullptr));
  EXPECT_FALSE(kbxIsEqualToFileURL(nullptr, file("/a")));
  EXPECT_FALSE(kbxIsEqualToFileURL(nullptr, nullptr));
}

// ---- A similar location ---------------------------------------------------------------------

/// So many of one letter. A loop, because g++ 12 takes texts of known length for overflows.
std::string times(std::size_t count, char letter) {
  std::string text;
  while (text.size() < count) text += letter;
  return text;
}

std::string similar(std::string_view path) {
  return kbxFileSystemRepresentation(kbxSimilarNonExistentURL(file(path)));
}

TEST(NSURLKBXSimilar, ALocationWhereNothingExistsIsAnsweredItself) {
  FakeFiles files;
  auto url = file("/Report.txt");
  EXPECT_TRUE(isSame(kbxSimilarNonExistentURL(url).get(), url.get()));
  EXPECT_EQ(kbxSimilarNonExistentURL(nullptr), nullptr);
}

TEST(NSURLKBXSimilar, ANumberGoesBeforeTheExtension) {
  struct Case {
    const char *path, *similar;
  };
  for (auto [path, expected] : {Case{"/Report.txt", "/Report-1.txt"},
                                {"/archive.tar.gz", "/archive-1.tar.gz"},
                                {"/Foo.app.zip", "/Foo-1.app.zip"},
                                {"/my file.v 2", "/my file.v 2-1"},
                                {"/Notes", "/Notes-1"},
                                {"/a.b.c", "/a.b-1.c"},
                                {"/archive.tar", "/archive-1.tar"},
                                {"/Tool.app", "/Tool-1.app"},
                                {"/a.tar.tar.gz", "/a.tar-1.tar.gz"},
                                {"/a.TAR.gz", "/a.TAR-1.gz"},
                                {"/.hidden", "/.hidden-1"},
                                {"/.tar.gz", "/.tar-1.gz"},
                                {"/dot.", "/dot.-1"},
                                {"/a.tar.v 2", "/a.tar.v 2-1"},
                                {"/caf\xE9.\xE9", "/caf\xE9-1.\xE9"}}) {
    FakeFiles files;
    files.file(path);
    EXPECT_EQ(similar(path), expected);
  }
}

TEST(NSURLKBXSimilar, TheFirstFreeNumberIsTaken) {
  FakeFiles files;
  for (const char* path : {"/Report.txt", "/Report-1.txt", "/Report-2.txt", "/Report-4.txt"})
    files.file(path);
  EXPECT_EQ(similar("/Report.txt"), "/Report-3.txt");
  for (int i = 1; i < 1500; ++i) files.file("/Report-" + std::to_string(i) + ".txt");
  EXPECT_EQ(similar("/Report.txt"), "/Report-1500.txt");
}

TEST(NSURLKBXSimilar, ADanglingLinkAndALoopAreNoExistingPath) {
  FakeFiles files;
  files.link("/a", "gone");
  files.link("/b", "b");
  EXPECT_EQ(similar("/a"), "/a");
  EXPECT_EQ(similar("/b"), "/b");
}

TEST(NSURLKBXSimilar, AFileThatVanishesMeanwhileLeavesItsPlace) {
  FakeFiles files;
  for (const char* path : {"/a", "/a-1", "/a-2"}) files.file(path);
  files.beforeQuestion = [&](const std::string& path) {
    if (path == "/a-1") files.vanish(path);
  };
  EXPECT_EQ(similar("/a"), "/a-1");
}

TEST(NSURLKBXSimilar, ALongNameIsCutAtItsStem) {
  TemporaryFolder folder;
  const std::string name = times(251, 'n') + ".txt";  // 255 bytes, the most there can be
  folder.write(name, "x");
  const std::string first = times(249, 'n') + "-1.txt";
  EXPECT_EQ(text(kbxName(kbxSimilarNonExistentURL(folder.url(name)))), first);
  folder.write(first, "x");
  EXPECT_EQ(text(kbxName(kbxSimilarNonExistentURL(folder.url(name)))), times(249, 'n') + "-2.txt");
}

TEST(NSURLKBXSimilar, ForeignBytesAreCutOneByOne) {
  TemporaryFolder folder;
  const std::string name(255, '\xE9');
  folder.write(name, "x");
  EXPECT_EQ(kbxFileSystemRepresentation(kbxSimilarNonExistentURL(folder.url(name))),
            (folder / (times(253, '\xE9') + "-1")).string());
}

TEST(NSURLKBXSimilar, AnExtensionThatLeavesNoRoomRaisesAndReleasesTheLock) {
  RecordingLog log;
  FakeFiles files;
  const std::string path = "/n." + times(253, 'x');
  files.file(path);
  EXPECT_EQ(nameRaisedBy([&] { similar(path); }), "KBXAssertionFailedException");
  EXPECT_EQ(similar("/free"), "/free");
}

TEST(NSURLKBXSimilar, AFullDiskLeavesTheFreeNameFree) {
  TemporaryFolder folder;
  auto url = folder.write("a.eml", "x");
  FailingFiles files;
  ScopedService<FileSystem> installed(files);
  files.fail(FailingFiles::Call::Write, ENOSPC);
  auto free = kbxSimilarNonExistentURL(url);
  EXPECT_FALSE(data("a message")->writeToURL(free, NSDataWritingAtomic, nullptr));
  EXPECT_TRUE(isEqual(kbxSimilarNonExistentURL(url), free));
  EXPECT_EQ(folder.count(), 1u);
}

TEST(NSURLKBXSimilar, TheRootHasItsSimilarsInIt) {
  FakeFiles files;
  EXPECT_EQ(similar("/"), "/-1");
}

TEST(NSURLKBXSimilar, AnotherFolderIsSearchedForTheSameName) {
  TemporaryFolder folder;
  std::filesystem::create_directory(folder / "in");
  auto directory = folder.url("in");
  auto found = [&] {
    return text(kbxSimilarNonExistentURLInDirectory(file("/else/a.eml"), directory)->path());
  };
  EXPECT_EQ(found(), (folder / "in/a.eml").string());
  folder.write("in/a.eml", "x");
  EXPECT_EQ(found(), (folder / "in/a-1.eml").string());
  EXPECT_EQ(kbxSimilarNonExistentURLInDirectory(nullptr, nullptr), nullptr);
}

TEST(NSURLKBXSimilar, TheOtherFolderMustBeOne) {
  TemporaryFolder folder;
  folder.write("file", "x");
  for (auto& directory : {folder.url("file"), folder.url("none"), Ref<NSURL>()}) {
    RecordingLog log;
    EXPECT_EQ(nameRaisedBy([&] { kbxSimilarNonExistentURLInDirectory(file("/a"), directory); }),
              "KBXAssertionFailedException");
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0],
              "NSURL+KBXFileBasics:377 -kbxSimilarNonExistentURLInDirectory:: Assertion Failed: "
              "Precondition Failed: [directory kbxDirectoryExists]");
  }
}

}  // namespace
}  // namespace kbx
