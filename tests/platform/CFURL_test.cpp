#include <gtest/gtest.h>

#include "platform/CoreFoundation.h"
#include "platform/objects/NSNumber.h"
#include "platform/plugins/Bridge.h"
#include "tests/support/FakeFiles.h"

using namespace kbx;

namespace {

Ref<NSURL> created(CFStringRef path, CFURLPathStyle style, bool isDirectory) {
  return adoptCF(CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path, style, isDirectory));
}

}  // namespace

TEST(CFURL, TheDirectoryFlagIsKeptWithoutAQuestionToTheFileSystem) {
  EXPECT_TRUE(created(CFSTR("/a/b.eml"), kCFURLPOSIXPathStyle, true)->hasDirectoryPath());
  EXPECT_FALSE(created(CFSTR("/a/b.eml"), kCFURLPOSIXPathStyle, false)->hasDirectoryPath());
  EXPECT_EQ(created(CFSTR("/a/b.eml"), kCFURLPOSIXPathStyle, true)->absoluteString()->lossyUTF8(),
            "file:///a/b.eml/");
}

TEST(CFURL, AnAbsentPathAnEmptyOneAndAnotherStyleGiveNone) {
  EXPECT_FALSE(created(nullptr, kCFURLPOSIXPathStyle, true));
  EXPECT_FALSE(created(CFSTR(""), kCFURLPOSIXPathStyle, true));
  EXPECT_FALSE(created(CFSTR("/a"), 1, true));
}

TEST(CFURL, ThePathComesBackWithoutATrailingSlash) {
  auto url = created(CFSTR("/a/b.eml"), kCFURLPOSIXPathStyle, true);
  auto path = adoptCF(CFURLCopyFileSystemPath(toCF(url), kCFURLPOSIXPathStyle));
  EXPECT_EQ(path->lossyUTF8(), "/a/b.eml");
  EXPECT_EQ(CFURLCopyFileSystemPath(toCF(url), 1), nullptr);
  EXPECT_EQ(CFURLCopyFileSystemPath(nullptr, kCFURLPOSIXPathStyle), nullptr);
}

TEST(CFURL, TheFileSystemRepresentationNeedsRoomForItsZero) {
  auto url = created(CFSTR("/a/b"), kCFURLPOSIXPathStyle, false);
  UInt8 buffer[5];
  ASSERT_TRUE(CFURLGetFileSystemRepresentation(toCF(url), true, buffer, 5));
  EXPECT_STREQ(reinterpret_cast<char*>(buffer), "/a/b");
  EXPECT_FALSE(CFURLGetFileSystemRepresentation(toCF(url), true, buffer, 4));
  EXPECT_FALSE(CFURLGetFileSystemRepresentation(toCF(url), true, nullptr, 5));
  EXPECT_FALSE(CFURLGetFileSystemRepresentation(nullptr, true, buffer, 5));
}

TEST(CFURL, BytesBecomeALocation) {
  const auto* bytes = reinterpret_cast<const UInt8*>("/caf\xE9/x");
  auto url = adoptCF(CFURLCreateFromFileSystemRepresentation(nullptr, bytes, 5, true));
  EXPECT_EQ(url->fileSystemRepresentation(), "/caf\xE9");
  EXPECT_TRUE(url->hasDirectoryPath());
  for (CFIndex length : {0, -1})
    EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(nullptr, bytes, length, true), nullptr);
  EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(nullptr, nullptr, 5, true), nullptr);
  EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(nullptr, bytes, 9, true), nullptr) << "a NUL";
}

TEST(CFURL, AClearedResourceValueIsReadAgain) {
  FakeFiles files;
  files.folder("/a.app");
  auto url = NSURL::fileURLWithPath("/a.app"_ns, true);
  auto isPackage = [&] {
    Ref<NSObject> value = url->resourceValueForKey(NSURLIsPackageKey(), nullptr);
    return cast<NSNumber>(value)->boolValue();
  };
  EXPECT_TRUE(isPackage());
  files.file("/a.app");
  EXPECT_TRUE(isPackage());
  CFURLClearResourcePropertyCacheForKey(toCF(url.get()), toCF(NSURLIsPackageKey()));
  EXPECT_FALSE(isPackage());
  CFURLClearResourcePropertyCacheForKey(nullptr, nullptr);
}
