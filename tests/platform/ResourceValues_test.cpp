// Resource values, asked for through the location.
#include <gtest/gtest.h>

#include <cerrno>

#include "platform/files/NSURL.h"
#include "platform/objects/NSError.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/FakeFiles.h"
#include "tests/support/FakeMimeTypes.h"
#include "tests/support/FakeMountTable.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

class ResourceValues : public testing::Test {
 protected:
  ResourceValues() {
    for (const char* path :
         {"/a", "/a/Tool.app", "/a/Tool.app/Contents", "/a/Tool.app/Contents/Linux",
          "/a/letter.rtfd", "/media", "/media/ada", "/media/ada/BACKUP", "/media/ada/BACKUP/old"})
      files.folder(path);
    for (const char* path : {"/a/Tool.app/Contents/Info.plist", "/a/b.eml", "/a/noext",
                             "/media/ada/BACKUP/old/a.eml", "/a/Tool.app.zip"})
      files.file(path);
    files.link("/a/link.eml", "b.eml");
    files.link("/a/to application", "Tool.app");
    files.link("/a/to volume", "/media/ada/BACKUP");
    files.link("/a/dangling.eml", "gone");
    files.link("/a/loop", "loop");
  }
  static Ref<NSObject> value(const char* path, NSString* key, Ref<NSError>* error = nullptr) {
    return NSURL::fileURLWithPath(string(path), false)->resourceValueForKey(key, error);
  }
  static bool yes(const char* path, NSString* key) {
    auto found = value(path, key);
    auto* number = cast<NSNumber>(found);
    EXPECT_TRUE(number && number->isBoolean()) << path;
    return number && number->boolValue();
  }

  FakeFiles files;
  FakeMimeTypes types{{{"noext", "image/x-odd"}}};
  FakeMountTable volumes{{{"/", "8:1", "/dev/sda1"}, {"/media/ada/BACKUP", "8:17", "/dev/sdb1"}}};
};

TEST_F(ResourceValues, AnApplicationIsAPackageToo) {
  EXPECT_TRUE(yes("/a/Tool.app", NSURLIsApplicationKey()));
  EXPECT_TRUE(yes("/a/Tool.app", NSURLIsPackageKey()));
  EXPECT_FALSE(yes("/a/letter.rtfd", NSURLIsApplicationKey()));
  EXPECT_TRUE(yes("/a/letter.rtfd", NSURLIsPackageKey()));
  for (const char* path : {"/a", "/a/b.eml", "/a/Tool.app.zip"}) {
    EXPECT_FALSE(yes(path, NSURLIsApplicationKey())) << path;
    EXPECT_FALSE(yes(path, NSURLIsPackageKey())) << path;
  }
}

TEST_F(ResourceValues, ALinkIsNotWhatItLeadsTo) {
  EXPECT_FALSE(yes("/a/to application", NSURLIsApplicationKey()));
  EXPECT_FALSE(yes("/a/to application", NSURLIsPackageKey()));
  EXPECT_FALSE(yes("/a/to volume", NSURLIsVolumeKey()));
  EXPECT_EQ(text(value("/a/to volume", NSURLVolumeIdentifierKey())), "8:1");
  EXPECT_EQ(text(value("/a/to volume", NSURLLocalizedNameKey())), "to volume");
}

TEST_F(ResourceValues, AVolumeBeginsWhereItIsMounted) {
  EXPECT_TRUE(yes("/", NSURLIsVolumeKey()));
  EXPECT_TRUE(yes("/media/ada/BACKUP", NSURLIsVolumeKey()));
  EXPECT_FALSE(yes("/media/ada/BACKUP/old", NSURLIsVolumeKey()));
  EXPECT_FALSE(yes("/a", NSURLIsVolumeKey()));
  volumes.entries.push_back({"/a/b.eml", "8:1", "/dev/sda1"});
  EXPECT_FALSE(yes("/a/b.eml", NSURLIsVolumeKey())) << "a file can be mounted, but is no volume";
}

TEST_F(ResourceValues, AnItemLiesOnTheVolumeAroundIt) {
  EXPECT_TRUE(isEqual(value("/a/b.eml", NSURLVolumeIdentifierKey()),
                      value("/media", NSURLVolumeIdentifierKey())));
  EXPECT_FALSE(isEqual(value("/a", NSURLVolumeIdentifierKey()),
                       value("/media/ada/BACKUP/old/a.eml", NSURLVolumeIdentifierKey())));
  EXPECT_EQ(text(value("/media/ada/BACKUP/old", NSURLVolumeLocalizedNameKey())), "BACKUP");
  volumes.labels["/dev/sdb1"] = "Old Letters";
  EXPECT_EQ(text(value("/media/ada/BACKUP/old", NSURLVolumeLocalizedNameKey())), "Old Letters");
}

TEST_F(ResourceValues, WithoutAMountTableVolumesHaveNeitherValueNorError) {
  volumes.entries.clear();
  for (NSString* key : {NSURLVolumeIdentifierKey(), NSURLVolumeLocalizedNameKey()}) {
    Ref<NSError> error;
    EXPECT_EQ(value("/a", key, &error), nullptr);
    EXPECT_EQ(error, nullptr);
  }
  EXPECT_FALSE(yes("/", NSURLIsVolumeKey()));
}

TEST_F(ResourceValues, TheTypeSaysWhatAFolderIs) {
  struct Case {
    const char *path, *type;
  };
  for (auto [path, type] : {Case{"/a", "public.folder"},
                            {"/", "public.volume"},
                            {"/media/ada/BACKUP", "public.volume"},
                            {"/a/Tool.app", "com.apple.application-bundle"},
                            {"/a/letter.rtfd", "com.apple.package"},
                            {"/a/to application", "com.apple.package"},
                            {"/a/b.eml", "com.apple.mail.email"},
                            {"/a/link.eml", "com.apple.mail.email"},
                            {"/a/noext", "public.image"},
                            {"/a/dangling.eml", "public.symlink"},
                            {"/a/loop", "public.symlink"}})
    EXPECT_EQ(text(value(path, NSURLTypeIdentifierKey())), type) << path;
}

TEST_F(ResourceValues, WhatIsNotThereHasAnErrorForEveryKey) {
  for (NSString* key :
       {NSURLLocalizedNameKey(), NSURLIsPackageKey(), NSURLIsApplicationKey(), NSURLIsVolumeKey(),
        NSURLVolumeIdentifierKey(), NSURLVolumeLocalizedNameKey(), NSURLTypeIdentifierKey(),
        "NSURLNoSuchKey"_ns}) {
    Ref<NSError> error;
    EXPECT_EQ(value("/a/none", key, &error), nullptr);
    ASSERT_NE(error, nullptr) << text(key);
    EXPECT_EQ(error->code(), 260);
    EXPECT_EQ(value("/a/none", key), nullptr) << "nobody wants the error";
  }
}

TEST_F(ResourceValues, AValueIsKeptUntilItsKeyIsRemoved) {
  auto url = NSURL::fileURLWithPath("/a/letter.rtfd"_ns, true);
  auto isPackage = [&] {
    Ref<NSError> error;
    auto found = url->resourceValueForKey(NSURLIsPackageKey(), &error);
    return error ? "error" : text(found);
  };
  EXPECT_EQ(isPackage(), "1");
  files.vanish("/a/letter.rtfd");
  EXPECT_EQ(isPackage(), "1");
  url->removeCachedResourceValueForKey(NSURLIsVolumeKey());
  EXPECT_EQ(isPackage(), "1") << "another key";
  url->removeCachedResourceValueForKey(NSURLIsPackageKey());
  EXPECT_EQ(isPackage(), "error");
  files.file("/a/letter.rtfd");
  EXPECT_EQ(isPackage(), "0") << "an error is not kept";
  files.folder("/a/letter.rtfd");
  url->removeAllCachedResourceValues();
  EXPECT_EQ(isPackage(), "1");
}

TEST_F(ResourceValues, AnotherObjectOfTheSameLocationKnowsNothingOfIt) {
  EXPECT_TRUE(yes("/a/letter.rtfd", NSURLIsPackageKey()));
  files.file("/a/letter.rtfd");
  EXPECT_FALSE(yes("/a/letter.rtfd", NSURLIsPackageKey()));
}

TEST_F(ResourceValues, AFileThatVanishesBetweenTwoQuestionsIsNoApplication) {
  files.beforeQuestion = [this](const std::string& path) {
    if (path.ends_with("Info.plist")) files.vanish(path);
  };
  EXPECT_FALSE(yes("/a/Tool.app", NSURLIsApplicationKey()));
}

}  // namespace
}  // namespace kbx
