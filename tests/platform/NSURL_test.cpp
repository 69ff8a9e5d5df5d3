#include "platform/files/NSURL.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSError.h"
#include "tests/support/FakeFiles.h"
#include "tests/support/FakeMimeTypes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

Ref<NSURL> file(std::string_view path) { return NSURL::fileURLWithPath(string(path), false); }

TEST(NSURL, APathBecomesALocationWithoutTrailingSlashes) {
  struct Case {
    const char *path, *stored;
  };
  for (auto [path, stored] : {Case{"/", "/"},
                              {"///", "/"},
                              {"/a", "/a"},
                              {"/a/", "/a"},
                              {"/a//b.eml//", "/a//b.eml"},
                              {"/é/日本.eml", "/é/日本.eml"}}) {
    SCOPED_TRACE(path);
    EXPECT_EQ(file(path)->fileSystemRepresentation(), stored);
    EXPECT_EQ(text(file(path)->path()), stored);
  }
}

TEST(NSURL, ARelativePathStartsFromTheWorkingFolder) {
  EXPECT_EQ(file("a.eml")->fileSystemRepresentation(),
            (std::filesystem::current_path() / "a.eml").string());
}

TEST(NSURL, WhatNoFileCanBeCalledHasNoLocation) {
  EXPECT_EQ(NSURL::fileURLWithPath(nullptr), nullptr);
  EXPECT_EQ(NSURL::fileURLWithPath(nullptr, true), nullptr);
  EXPECT_EQ(NSURL::fileURLWithPath(""_ns), nullptr);
  EXPECT_EQ(NSURL::fileURLWithPath(""_ns, true), nullptr);
  EXPECT_EQ(file(std::string_view("/a\0b", 4)), nullptr);
  EXPECT_EQ(NSURL::fileURLWithPath(NSString::stringWithUTF16(u"/\xD800"), false), nullptr);
}

TEST(NSURL, TheOneArgumentFormAsksTheFileSystemForFolders) {
  TemporaryFolder folder;
  folder.write("a.eml", "");
  EXPECT_TRUE(NSURL::fileURLWithPath(string(folder.path().string()))->hasDirectoryPath());
  EXPECT_FALSE(NSURL::fileURLWithPath(string((folder / "a.eml").string()))->hasDirectoryPath());
  EXPECT_TRUE(NSURL::fileURLWithPath("/no/such/place/"_ns)->hasDirectoryPath());
  EXPECT_FALSE(NSURL::fileURLWithPath("/no/such/place"_ns)->hasDirectoryPath());
}

TEST(NSURL, TheFolderMarkShowsInTheURLAndNeverInThePath) {
  auto url = NSURL::fileURLWithPath("/a b/ü?.eml"_ns, true);
  EXPECT_EQ(text(url), "file:///a%20b/%C3%BC%3F.eml/");
  EXPECT_EQ(text(url->path()), "/a b/ü?.eml");
  EXPECT_EQ(text(file("/")), "file:///");
}

TEST(NSURL, ANameThatIsNotUTF8KeepsItsBytes) {
  auto url = NSURL::fileURLWithFileSystemRepresentation("/m/caf\xE9.eml", false);
  EXPECT_FALSE(url->path()->UTF8String());
  EXPECT_EQ(NSURL::fileURLWithPath(url->path(), false)->fileSystemRepresentation(),
            "/m/caf\xE9.eml");
  EXPECT_EQ(url->URLByDeletingLastPathComponent()
                ->URLByAppendingPathComponent(url->lastPathComponent())
                ->fileSystemRepresentation(),
            "/m/caf\xE9.eml");
  EXPECT_EQ(text(url), "file:///m/caf%E9.eml");
}

TEST(NSURL, PartsOfALocation) {
  struct Case {
    const char *path, *name, *extension, *parent;
  };
  for (auto [path, name, extension, parent] : {Case{"/a/b.eml", "b.eml", "eml", "/a"},
                                               {"/b.eml", "b.eml", "eml", "/"},
                                               {"/", "/", "", "/"},
                                               {"/a/b/", "b", "", "/a"},
                                               {"/a//b", "b", "", "/a"},
                                               {"/a/.hidden", ".hidden", "", "/a"},
                                               {"/a/.hidden.eml", ".hidden.eml", "eml", "/a"},
                                               {"/a/b.", "b.", "", "/a"},
                                               {"/a.d/b", "b", "", "/a.d"},
                                               {"/a/my file.v 2", "my file.v 2", "v 2", "/a"}}) {
    SCOPED_TRACE(path);
    EXPECT_EQ(text(file(path)->lastPathComponent()), name);
    EXPECT_EQ(text(file(path)->pathExtension()), extension);
    EXPECT_EQ(text(file(path)->URLByDeletingLastPathComponent()->path()), parent);
  }
}

TEST(NSURL, AChildLiesBelowItsParent) {
  EXPECT_EQ(text(file("/a")->URLByAppendingPathComponent("b"_ns)->path()), "/a/b");
  EXPECT_EQ(text(file("/")->URLByAppendingPathComponent("b"_ns)->path()), "/b");
  EXPECT_EQ(text(file("/a")->URLByAppendingPathComponent("/b/"_ns)), "file:///a/b/");
  EXPECT_EQ(text(file("/a")->URLByAppendingPathComponent(""_ns)->path()), "/a");
  EXPECT_EQ(file("/a")->URLByAppendingPathComponent(nullptr), nullptr);
}

TEST(NSURL, StandardizingTakesDotsOut) {
  struct Case {
    const char *path, *standardized;
  };
  for (auto [path, standardized] : {Case{"/a/./b//c", "/a/b/c"},
                                    {"/a/../b", "/b"},
                                    {"/../..", "/"},
                                    {"/a/b/..", "/a"},
                                    {"/...", "/..."}}) {
    SCOPED_TRACE(path);
    EXPECT_EQ(text(file(path)->URLByStandardizingPath()->path()), standardized);
  }
}

TEST(NSURL, AnExtensionIsPutBehindTheName) {
  EXPECT_EQ(text(file("/a/b")->URLByAppendingPathExtension("eml"_ns)->path()), "/a/b.eml");
  EXPECT_EQ(text(file("/a/b.tar")->URLByAppendingPathExtension("gz"_ns)->path()), "/a/b.tar.gz");
  EXPECT_EQ(text(file("/a/b")->URLByAppendingPathExtension(""_ns)->path()), "/a/b");
  EXPECT_EQ(text(file("/")->URLByAppendingPathExtension("eml"_ns)->path()), "/");
  EXPECT_TRUE(NSURL::fileURLWithPath("/a"_ns, true)
                  ->URLByAppendingPathExtension("app"_ns)
                  ->hasDirectoryPath());
}

TEST(NSURL, WhatCannotBeAnExtensionGivesNoLocation) {
  EXPECT_EQ(file("/a")->URLByAppendingPathExtension(nullptr), nullptr);
  EXPECT_EQ(file("/a")->URLByAppendingPathExtension("b/c"_ns), nullptr);
  EXPECT_EQ(file("/a")->URLByAppendingPathExtension(string({"a\0", 2})), nullptr);
  EXPECT_EQ(file("/a")->URLByAppendingPathExtension(NSString::stringWithUTF16(u"\xD800")), nullptr);
}

TEST(NSURL, TheExtensionIsTakenOff) {
  struct Case {
    const char *path, *without;
  };
  for (auto [path, without] : {Case{"/a/b.eml", "/a/b"},
                               {"/a/b.tar.gz", "/a/b.tar"},
                               {"/a/.hidden", "/a/.hidden"},
                               {"/a/.hidden.eml", "/a/.hidden"},
                               {"/a/b.", "/a/b."},
                               {"/a/b..eml", "/a/b."},
                               {"/a.d/b", "/a.d/b"},
                               {"/a/my file.v 2", "/a/my file"},
                               {"/", "/"}})
    EXPECT_EQ(text(file(path)->URLByDeletingPathExtension()->path()), without) << path;
  auto foreign = NSURL::fileURLWithFileSystemRepresentation("/caf\xE9.\xFF", false);
  EXPECT_EQ(foreign->URLByDeletingPathExtension()->fileSystemRepresentation(), "/caf\xE9");
}

TEST(NSURL, TheComponentsBeginWithTheRoot) {
  auto components = [](const char* path) {
    return text(file(path)->pathComponents()->componentsJoinedByString("|"_ns));
  };
  EXPECT_EQ(components("/"), "/");
  EXPECT_EQ(components("/a/b"), "/|a|b");
  EXPECT_EQ(components("/a//b/"), "/|a|b");
  EXPECT_EQ(components("/a/./.."), "/|a|.|..");
}

TEST(NSURL, ResolvingFollowsLinksAsFarAsTheyLead) {
  FakeFiles files;
  files.folder("/real");
  files.link("/link", "real");
  files.link("/loop", "loop");
  auto resolved = [](const char* path) {
    return text(file(path)->URLByResolvingSymlinksInPath()->path());
  };
  EXPECT_EQ(resolved("/link/a"), "/real/a");
  EXPECT_EQ(resolved("/loop/./a"), "/loop/a") << "a loop stays as it is";
  EXPECT_EQ(resolved("/none/../link"), "/real");
  EXPECT_TRUE(
      NSURL::fileURLWithPath("/link"_ns, true)->URLByResolvingSymlinksInPath()->hasDirectoryPath());
}

TEST(NSURL, TheTypeOfAFileComesFromItsName) {
  TemporaryFolder folder;
  FakeMimeTypes types;
  struct Case {
    const char *name, *identifier;
  };
  for (auto [name, identifier] : {Case{"a.eml", "com.apple.mail.email"},
                                  {"A.EML", "com.apple.mail.email"},
                                  {"1.emlx", "com.apple.mail.emlx"},
                                  {"1.partial.emlx", "com.apple.mail.emlx.part"},
                                  {"eml", "public.data"},
                                  {".eml", "public.data"},
                                  {"a.xyz", "public.data"}}) {
    SCOPED_TRACE(name);
    auto type = folder.write(name, "")->resourceValueForKey(NSURLTypeIdentifierKey(), nullptr);
    EXPECT_EQ(text(type), identifier);
  }
  EXPECT_EQ(text(folder.url()->resourceValueForKey(NSURLTypeIdentifierKey(), nullptr)),
            "public.folder");
}

TEST(NSURL, AMissingFileHasNoTypeButAnError) {
  TemporaryFolder folder;
  Ref<NSError> error;
  EXPECT_EQ(folder.url("none.eml")->resourceValueForKey(NSURLTypeIdentifierKey(), &error), nullptr);
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(text(error->domain()), "NSCocoaErrorDomain");
  EXPECT_EQ(error->code(), 260);
}

TEST(NSURL, AnUnknownResourceKeyHasNeitherValueNorError) {
  TemporaryFolder folder;
  Ref<NSError> error;
  EXPECT_EQ(folder.url()->resourceValueForKey("NSURLNoSuchKey"_ns, &error), nullptr);
  EXPECT_EQ(error, nullptr);
}

TEST(NSURL, EqualLocationsAreEqual) {
  EXPECT_TRUE(isEqual(file("/a/b"), file("/a/b")));
  EXPECT_EQ(file("/a/b")->hash(), file("/a/b")->hash());
  EXPECT_FALSE(isEqual(file("/a/b"), file("/a/c")));
  EXPECT_FALSE(isEqual(file("/a/b"), NSURL::fileURLWithPath("/a/b"_ns, true)));
}

}  // namespace
}  // namespace kbx
