#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <limits>

#include "NSError+KBX.h"
#include "NSError+KBXKeys.h"
#include "NSURL+KBXFileBasics.h"
#include "platform/objects/NSNumber.h"
#include "platform/system/Clock.h"
#include "tests/support/FakeFiles.h"
#include "tests/support/FakeLaunchServices.h"
#include "tests/support/FakeMountTable.h"
#include "tests/support/FakeOperatingSystem.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

Ref<NSURL> file(std::string_view path) {
  return NSURL::fileURLWithFileSystemRepresentation(path, false);
}

/// So many of one letter. A loop, because g++ 12 takes texts of known length for overflows.
std::string times(std::size_t count, char letter) {
  std::string text;
  while (text.size() < count) text += letter;
  return text;
}

TEST(NSURLKBXFileBasicsExistence, EachKindIsSeenForWhatItIs) {
  TemporaryFolder folder;
  folder.write("file", "x");
  std::filesystem::create_directory(folder / "folder");
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  for (const char* target : {"file", "folder", "gone", "loop"})
    std::filesystem::create_symlink(target, folder / ("to " + std::string(target)));
  std::filesystem::create_symlink("loop", folder / "loop");
  struct Case {
    const char* name;
    bool path, file, folder, link;
  };
  for (auto [name, isPath, isFile, isFolder, isLink] : {Case{"file", true, true, false, false},
                                                        {"folder", true, false, true, false},
                                                        {"pipe", true, false, false, false},
                                                        {"to file", true, true, false, true},
                                                        {"to folder", true, false, true, true},
                                                        {"to gone", false, false, false, true},
                                                        {"loop", false, false, false, true},
                                                        {"to loop", false, false, false, true},
                                                        {"none", false, false, false, false},
                                                        {"file/x", false, false, false, false}}) {
    SCOPED_TRACE(name);
    auto url = folder.url(name);
    EXPECT_EQ(kbxPathExists(url), isPath);
    EXPECT_EQ(kbxFileExists(url), isFile);
    EXPECT_EQ(kbxDirectoryExists(url), isFolder);
    EXPECT_EQ(kbxSymbolicLinkExists(url), isLink);
  }
}

TEST(NSURLKBXFileBasicsExistence, AnAbsentLocationIsNothing) {
  EXPECT_FALSE(kbxPathExists(nullptr));
  EXPECT_FALSE(kbxFileExists(nullptr));
  EXPECT_FALSE(kbxDirectoryExists(nullptr));
  EXPECT_FALSE(kbxSymbolicLinkExists(nullptr));
  EXPECT_FALSE(kbxPackageExists(nullptr));
  EXPECT_FALSE(kbxApplicationExists(nullptr));
  EXPECT_FALSE(kbxVolumeExists(nullptr));
  EXPECT_FALSE(kbxBOOLForResourceKey(nullptr, NSURLIsVolumeKey(), true));
  EXPECT_FALSE(kbxWaitUntilPathExistsWithTimeout(nullptr, 1e9));
  EXPECT_EQ(kbxResourceValueForKey(nullptr, NSURLIsVolumeKey(), nullptr), nullptr);
  kbxRemoveCachedResourceValueForKey(nullptr, NSURLIsVolumeKey());
}

TEST(NSURLKBXFileBasicsExistence, NamesOf255BytesAndOfBytesThatAreNotUTF8Exist) {
  TemporaryFolder folder;
  for (const std::string& name : {times(255, 'n'), std::string("caf\xE9\xFF")}) {
    folder.write(name, "x");
    EXPECT_TRUE(kbxFileExists(folder.url(name)));
  }
  EXPECT_FALSE(kbxPathExists(folder.url(times(256, 'n'))));
  EXPECT_FALSE(kbxPathExists(folder.url(times(100'000, '/') + "x")));
}

/// An application, a package, a volume, and links to each.
class NSURLKBXFileBasicsResources : public testing::Test {
 protected:
  NSURLKBXFileBasicsResources() {
    for (const char* path : {"/Tool.app", "/Tool.app/Contents", "/Tool.app/Contents/MacOS",
                             "/x.rtfd", "/disk", "/Volumes", "/plain"})
      files.folder(path);
    files.file("/Tool.app/Contents/Info.plist");
    files.link("/to tool", "Tool.app");
    files.link("/to package", "x.rtfd");
    files.link("/to disk", "disk");
    files.link("/loop", "loop");
  }

  FakeFiles files;
  FakeMountTable volumes{{{"/", "8:1", "/dev/sda1"}, {"/disk", "8:17", "/dev/sdb1"}}};
  FakeOperatingSystem system;
  ScopedService<OperatingSystem> installed{system};
};

TEST_F(NSURLKBXFileBasicsResources, APackageIsFoundBehindALink) {
  for (const char* path : {"/Tool.app", "/to tool", "/x.rtfd", "/to package"})
    EXPECT_TRUE(kbxPackageExists(file(path))) << path;
  for (const char* path : {"/plain", "/none.rtfd", "/loop", "/Tool.app/Contents/Info.plist"})
    EXPECT_FALSE(kbxPackageExists(file(path))) << path;
}

TEST_F(NSURLKBXFileBasicsResources, From10_11AnApplicationIsFoundBehindALink) {
  FakeLaunchServices services;
  services.answer = kLSItemInfoIsApplication;
  EXPECT_TRUE(kbxApplicationExists(file("/Tool.app")));
  EXPECT_TRUE(kbxApplicationExists(file("/to tool")));
  EXPECT_FALSE(kbxApplicationExists(file("/x.rtfd")));
  EXPECT_FALSE(kbxApplicationExists(file("/none.app")));
  EXPECT_EQ(services.questions, 0);
}

TEST_F(NSURLKBXFileBasicsResources, Before10_11LaunchServicesSayWhatAnApplicationIs) {
  system = FakeOperatingSystem(1152.0, {10, 10, 5});
  FakeLaunchServices services;
  services.answer = kLSItemInfoIsApplication | kLSItemInfoIsPackage;
  EXPECT_TRUE(kbxApplicationExists(file("/plain")));
  services.answer = kLSItemInfoIsPackage;
  EXPECT_FALSE(kbxApplicationExists(file("/Tool.app")));
  services.answer = kLSItemInfoIsApplication;
  services.status = fnfErr;
  EXPECT_FALSE(kbxApplicationExists(file("/Tool.app"))) << "an error is no";
  EXPECT_EQ(services.questions, 3);
}

TEST_F(NSURLKBXFileBasicsResources, Before10_11TheSystemsOwnAnswersLeaveLinksAlone) {
  system = FakeOperatingSystem(1152.0, {10, 10, 5});
  EXPECT_TRUE(kbxApplicationExists(file("/Tool.app")));
  EXPECT_FALSE(kbxApplicationExists(file("/to tool")));
}

TEST_F(NSURLKBXFileBasicsResources, AVolumeIsMountedOrHasItsPlaceInVolumes) {
  for (const char* path : {"/", "/disk", "/to disk"}) EXPECT_TRUE(kbxVolumeExists(file(path)));
  EXPECT_TRUE(kbxVolumeExists(file("/Volumes/Gone"))) << "not mounted, but still counted";
  for (const char* path : {"/plain", "/none", "/Volumes", "/Volumes/Gone/x", "/a/Volumes/x"})
    EXPECT_FALSE(kbxVolumeExists(file(path))) << path;
}

TEST_F(NSURLKBXFileBasicsResources, LinksAreFollowedOnlyWhenAsked) {
  EXPECT_TRUE(kbxBOOLForResourceKey(file("/to disk"), NSURLIsVolumeKey(), true));
  EXPECT_FALSE(kbxBOOLForResourceKey(file("/to disk"), NSURLIsVolumeKey(), false));
}

TEST_F(NSURLKBXFileBasicsResources, From10_9ABooleanIsReadAfresh) {
  auto url = file("/x.rtfd");
  EXPECT_TRUE(kbxBOOLForResourceKey(url, NSURLIsPackageKey(), false));
  files.vanish("/x.rtfd");
  EXPECT_FALSE(kbxBOOLForResourceKey(url, NSURLIsPackageKey(), false)) << "an error is no";
}

TEST_F(NSURLKBXFileBasicsResources, Before10_9ABooleanIsReadOnce) {
  system = FakeOperatingSystem(945.0, {10, 8, 5});
  auto url = file("/x.rtfd");
  EXPECT_TRUE(kbxBOOLForResourceKey(url, NSURLIsPackageKey(), false));
  files.vanish("/x.rtfd");
  EXPECT_TRUE(kbxBOOLForResourceKey(url, NSURLIsPackageKey(), false));
  EXPECT_FALSE(kbxBOOLForResourceKey(url, NSURLIsPackageKey(), true)) << "another object";
}

TEST_F(NSURLKBXFileBasicsResources, OtherValuesCountAsTheirBooleans) {
  EXPECT_FALSE(kbxBOOLForResourceKey(file("/disk"), "NSURLNoSuchKey"_ns, false));
  EXPECT_TRUE(kbxBOOLForResourceKey(file("/disk"), NSURLVolumeIdentifierKey(), false)) << "8:17";
  EXPECT_FALSE(kbxBOOLForResourceKey(file("/disk"), NSURLLocalizedNameKey(), false)) << "disk";
}

TEST_F(NSURLKBXFileBasicsResources, AKeptValueIsForgottenBeforeAndFrom10_9) {
  for (const double foundation : {945.0, 1677.104}) {
    system.foundationNumber = foundation;
    files.folder("/x.rtfd");
    auto url = file("/x.rtfd");
    auto isPackage = [&] {
      return text(kbxResourceValueForKey(url, NSURLIsPackageKey(), nullptr));
    };
    EXPECT_EQ(isPackage(), "1");
    files.file("/x.rtfd");
    EXPECT_EQ(isPackage(), "1");
    kbxRemoveCachedResourceValueForKey(url, NSURLIsVolumeKey());
    EXPECT_EQ(isPackage(), "1");
    kbxRemoveCachedResourceValueForKey(url, NSURLIsPackageKey());
    EXPECT_EQ(isPackage(), "0");
  }
}

TEST_F(NSURLKBXFileBasicsResources, ThePlatformsErrorIsPassedOnUnchanged) {
  Ref<NSError> error, platforms;
  EXPECT_EQ(kbxResourceValueForKey(file("/none"), NSURLIsPackageKey(), &error), nullptr);
  file("/none")->resourceValueForKey(NSURLIsPackageKey(), &platforms);
  EXPECT_TRUE(isEqual(error, platforms));
  EXPECT_EQ(error->code(), 260);
  EXPECT_EQ(kbxResourceValueForKey(file("/none"), NSURLIsPackageKey(), nullptr), nullptr);
}

TEST_F(NSURLKBXFileBasicsResources, AMissingValueIsAnUnsupportedKeyWithAFrame) {
  Ref<NSError> error;
  auto url = file("/disk");
  EXPECT_EQ(kbxResourceValueForKey(url, "NSURLNoSuchKey"_ns, &error), nullptr);
  EXPECT_TRUE(isEqual(error, kbxErrorByAddingStackFrame(
                                 kbxErrorWithUnsupportedKey("NSURLNoSuchKey"_ns, url),
                                 "-[NSURL(KBXFileBasics) kbxResourceValueForKey:error:]", 389)));
  EXPECT_EQ(error->code(), 1001);
  EXPECT_EQ(kbxResourceValueForKey(url, "NSURLNoSuchKey"_ns, nullptr), nullptr);
}

TEST_F(NSURLKBXFileBasicsResources, AValueLeavesTheErrorAlone) {
  Ref<NSError> error;
  EXPECT_EQ(text(kbxResourceValueForKey(file("/x.rtfd"), NSURLIsPackageKey(), &error)), "1");
  EXPECT_EQ(error, nullptr);
}

/// A clock that goes on by one second with every question.
class TickingClock final : public Clock {
 public:
  double secondsSince1970() override { return 1000.0 + questions++; }
  int questions = 0;

 private:
  ScopedService<Clock> _installed{*this};
};

TEST(NSURLKBXFileBasicsWaiting, WithoutTimeThereIsNoAnswerEvenForAnExistingFile) {
  FakeFiles files;
  files.file("/a");
  for (const double timeout : {0.0, -1.0, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_FALSE(kbxWaitUntilPathExistsWithTimeout(file("/a"), timeout)) << timeout;
    TickingClock clock;
    EXPECT_FALSE(kbxWaitUntilPathExistsWithTimeout(file("/a"), timeout)) << timeout;
  }
  EXPECT_EQ(files.questions, 0) << "the path is not looked at";
}

TEST(NSURLKBXFileBasicsWaiting, WhatExistsIsSeenAtOnce) {
  FakeFiles files;
  files.file("/a");
  TickingClock clock;
  EXPECT_TRUE(kbxWaitUntilPathExistsWithTimeout(file("/a"), 2));
  EXPECT_EQ(clock.questions, 2);
}

TEST(NSURLKBXFileBasicsWaiting, ThePathIsAskedForUntilItAppears) {
  FakeFiles files;
  TickingClock clock;
  files.beforeQuestion = [&](const std::string& path) {
    if (files.questions == 5) files.file(path);
  };
  EXPECT_TRUE(kbxWaitUntilPathExistsWithTimeout(file("/a"), 100));
  EXPECT_EQ(files.questions, 5);
}

TEST(NSURLKBXFileBasicsWaiting, TheDeadlineEndsTheWait) {
  FakeFiles files;
  TickingClock clock;
  EXPECT_FALSE(kbxWaitUntilPathExistsWithTimeout(file("/a"), 10));
  EXPECT_EQ(files.questions, 9) << "after 1 to 9 seconds; at 10 no time is left";
}

}  // namespace
}  // namespace kbx
