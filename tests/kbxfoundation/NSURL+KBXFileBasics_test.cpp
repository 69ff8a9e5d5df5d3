#include "NSURL+KBXFileBasics.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/objects/NSException.h"
#include "tests/support/FakeOperatingSystem.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

Ref<NSURL> file(std::string_view path) {
  return NSURL::fileURLWithFileSystemRepresentation(path, false);
}

TEST(NSURLKBXFileBasics, TheAbsolutePathIsStandardized) {
  for (const char* path : {"/a/./b//../c", "/a/c"}) {
    EXPECT_EQ(text(kbxAbsolutePath(file(path))), "/a/c");
    EXPECT_EQ(text(kbxStandardizedFileURL(file(path))), "file:///a/c");
  }
  EXPECT_EQ(text(kbxAbsolutePath(file("/.."))), "/");
  EXPECT_EQ(kbxAbsolutePath(nullptr), nullptr);
  EXPECT_EQ(kbxStandardizedFileURL(nullptr), nullptr);
}

TEST(NSURLKBXFileBasics, TheFileSystemFormIsTheSameBeforeAndFrom10_9) {
  for (const double foundation : {945.0, 1056.0}) {
    FakeOperatingSystem system(foundation, {10, 9, 0});
    ScopedService<OperatingSystem> installed(system);
    EXPECT_EQ(kbxFileSystemRepresentation(file("/é/b ")), "/é/b ");
    EXPECT_EQ(kbxFileSystemRepresentation(file("/caf\xE9")), "/caf\xE9");
    EXPECT_EQ(kbxFileSystemRepresentation(nullptr), "");
  }
}

TEST(NSURLKBXFileBasics, TheFileSystemFormNeedsRoomForItsZero) {
  char buffer[8];
  ASSERT_TRUE(kbxGetFileSystemRepresentation(file("/caf\xE9"), buffer, 6 + 1));
  EXPECT_STREQ(buffer, "/caf\xE9");
  EXPECT_TRUE(kbxGetFileSystemRepresentation(file("/abc"), buffer, 5));
  EXPECT_FALSE(kbxGetFileSystemRepresentation(file("/abc"), buffer, 4));
  EXPECT_FALSE(kbxGetFileSystemRepresentation(file("/abc"), buffer, 0));
  EXPECT_TRUE(kbxGetFileSystemRepresentation(file("/abc"), buffer, SIZE_MAX));
  EXPECT_FALSE(kbxGetFileSystemRepresentation(file("/abc"), nullptr, 8));
  EXPECT_FALSE(kbxGetFileSystemRepresentation(nullptr, buffer, 8));
}

TEST(NSURLKBXFileBasics, BytesBecomeALocationThatIsNoFolders) {
  auto url = kbxURLWithFileSystemRepresentation("/a/caf\xE9/");
  EXPECT_EQ(url->fileSystemRepresentation(), "/a/caf\xE9");
  EXPECT_FALSE(url->hasDirectoryPath());
  EXPECT_EQ(kbxURLWithFileSystemRepresentation(""), nullptr);
  EXPECT_EQ(kbxURLWithFileSystemRepresentation(nullptr), nullptr);
}

TEST(NSURLKBXFileBasics, PartsOfALocation) {
  struct Case {
    const char *path, *parent, *name, *basenameURL, *basename, *extension;
  };
  for (auto [path, parent, name, basenameURL, basename, extension] :
       {Case{"/a/b.eml", "/a", "b.eml", "/a/b", "b", "eml"},
        {"/a/b.tar.gz", "/a", "b.tar.gz", "/a/b.tar", "b.tar", "gz"},
        {"/a/b", "/a", "b", "/a/b", "b", ""},
        {"/a/.hidden", "/a", ".hidden", "/a/.hidden", ".hidden", ""},
        {"/a/my file.v 2", "/a", "my file.v 2", "/a/my file", "my file", "v 2"},
        {"/a", "/", "a", "/a", "a", ""},
        {"/", "/", "/", "/", "/", ""}}) {
    SCOPED_TRACE(path);
    auto url = file(path);
    EXPECT_EQ(text(kbxParent(url)->path()), parent);
    EXPECT_EQ(text(kbxName(url)), name);
    EXPECT_EQ(text(kbxBasenameURL(url)->path()), basenameURL);
    EXPECT_EQ(text(kbxBasename(url)), basename);
    EXPECT_EQ(text(kbxPathExtension(url)), extension);
  }
}

TEST(NSURLKBXFileBasics, ExtensionsAreAddedAndChanged) {
  EXPECT_EQ(text(kbxWithExtension(file("/a/b"), "eml"_ns)), "file:///a/b.eml");
  EXPECT_EQ(text(kbxWithExtension(file("/a/b.tar"), "gz"_ns)), "file:///a/b.tar.gz");
  EXPECT_EQ(text(kbxChangeToExtension(file("/a/b.eml"), "emlx"_ns)), "file:///a/b.emlx");
  EXPECT_EQ(text(kbxChangeToExtension(file("/a/b"), "emlx"_ns)), "file:///a/b.emlx");
  EXPECT_EQ(kbxWithExtension(file("/a"), nullptr), nullptr);
  EXPECT_EQ(kbxChangeToExtension(file("/a.x"), nullptr), nullptr);
}

TEST(NSURLKBXFileBasics, AnExtensionIsComparedInAnyCase) {
  EXPECT_TRUE(kbxHasExtension(file("/a.EML"), "eml"_ns));
  EXPECT_TRUE(kbxHasExtension(file("/a.eml"), "Eml"_ns));
  EXPECT_TRUE(kbxHasExtension(file("/a.Ü"), "ü"_ns));
  EXPECT_FALSE(kbxHasExtension(file("/a.eml"), ".eml"_ns));
  EXPECT_FALSE(kbxHasExtension(file("/a.emlx"), "eml"_ns));
  EXPECT_TRUE(kbxHasExtension(file("/a"), ""_ns));
  EXPECT_FALSE(kbxHasExtension(file("/a"), nullptr));
  EXPECT_FALSE(kbxHasExtension(nullptr, "eml"_ns));
}

TEST(NSURLKBXFileBasics, AChildLiesBelowItsParent) {
  EXPECT_EQ(text(kbxChild(file("/a"), "b c.eml"_ns)->path()), "/a/b c.eml");
  EXPECT_EQ(kbxChild(nullptr, "b"_ns), nullptr);
  EXPECT_EQ(kbxChild(nullptr, nullptr), nullptr);
}

TEST(NSURLKBXFileBasics, AChildNeedsAName) {
  RecordingLog log;
  auto raised = raisedBy([] { kbxChild(file("/a"), nullptr); });
  ASSERT_NE(raised, nullptr);
  EXPECT_EQ(text(raised->name()), "KBXAssertionFailedException");
  ASSERT_EQ(log.lines().size(), 1u);
  EXPECT_EQ(log.lines()[0],
            "NSURL+KBXFileBasics:180 -kbxChild:: Assertion Failed: Precondition Failed: name");
}

TEST(NSURLKBXFileBasics, AnAbsentLocationHasNoParts) {
  EXPECT_EQ(kbxParent(nullptr), nullptr);
  EXPECT_EQ(kbxName(nullptr), nullptr);
  EXPECT_EQ(kbxBasenameURL(nullptr), nullptr);
  EXPECT_EQ(kbxBasename(nullptr), nullptr);
  EXPECT_EQ(kbxPathExtension(nullptr), nullptr);
  EXPECT_EQ(kbxWithExtension(nullptr, "x"_ns), nullptr);
  EXPECT_EQ(kbxChangeToExtension(nullptr, "x"_ns), nullptr);
}

TEST(NSURLKBXFileBasics, NamesThatAreNotUTF8KeepTheirBytes) {
  auto url = file("/m\xFF/caf\xE9.\xE9");
  EXPECT_EQ(kbxFileSystemRepresentation(kbxChild(kbxParent(url), kbxName(url))),
            "/m\xFF/caf\xE9.\xE9");
  EXPECT_EQ(kbxFileSystemRepresentation(kbxChangeToExtension(url, kbxPathExtension(url))),
            "/m\xFF/caf\xE9.\xE9");
  EXPECT_TRUE(kbxHasExtension(url, kbxPathExtension(url)));
}

}  // namespace
}  // namespace kbx
