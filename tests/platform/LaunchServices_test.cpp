#include "platform/resources/LaunchServices.h"

#include <gtest/gtest.h>

#include "platform/files/NSURL.h"
#include "platform/plugins/Bridge.h"
#include "tests/support/FakeFiles.h"
#include "tests/support/FakeLaunchServices.h"
#include "tests/support/FakeMountTable.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

OSStatus ask(std::string_view path, LSItemInfoRecord* info,
             LSRequestedInfo what = kLSRequestBasicFlagsOnly) {
  return LSCopyItemInfoForURL(toCF(NSURL::fileURLWithPath(string(path), false).get()), what, info);
}

TEST(LaunchServices, TheFlagsSayWhatAnItemIs) {
  FakeFiles files;
  for (const char* path : {"/a", "/T.app", "/T.app/Contents", "/T.app/Contents/MacOS", "/x.rtfd"})
    files.folder(path);
  files.file("/T.app/Contents/Info.plist");
  files.file("/f");
  files.link("/link.app", "T.app");
  FakeMountTable volumes{{{"/", "8:1", ""}}};
  struct Case {
    const char* path;
    LSItemInfoFlags flags;
  };
  for (auto [path, flags] :
       {Case{"/a", kLSItemInfoIsContainer},
        {"/", kLSItemInfoIsContainer | kLSItemInfoIsVolume},
        {"/T.app", kLSItemInfoIsContainer | kLSItemInfoIsPackage | kLSItemInfoIsApplication},
        {"/x.rtfd", kLSItemInfoIsContainer | kLSItemInfoIsPackage},
        {"/f", kLSItemInfoIsPlainFile},
        {"/link.app", kLSItemInfoIsSymlink}}) {
    LSItemInfoRecord info;
    EXPECT_EQ(ask(path, &info), 0) << path;
    EXPECT_EQ(info.flags, flags) << path;
  }
}

TEST(LaunchServices, AFailureLeavesTheRecordAlone) {
  FakeFiles files;
  LSItemInfoRecord info{77};
  EXPECT_EQ(ask("/none", &info), fnfErr);
  EXPECT_EQ(ask("/", &info, 1), paramErr);
  EXPECT_EQ(ask("/", nullptr), paramErr);
  EXPECT_EQ(LSCopyItemInfoForURL(nullptr, kLSRequestBasicFlagsOnly, &info), paramErr);
  FakeLaunchServices services;
  services.status = -50;
  EXPECT_EQ(ask("/", &info), -50);
  EXPECT_EQ(info.flags, 77u);
}

}  // namespace
}  // namespace kbx
