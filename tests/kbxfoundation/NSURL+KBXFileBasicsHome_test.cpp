#include <gmock/gmock.h>

#include "KBXLogger.h"
#include "NSURL+KBXFileBasics.h"
#include "RealHomeDirectory.h"
#include "platform/objects/NSException.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/FakeFiles.h"
#include "tests/support/FakeMountTable.h"
#include "tests/support/FakeProcessIdentity.h"
#include "tests/support/FakeUserAccounts.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// The line that a message makes.
std::string logged(int line, const std::string& selector, const std::string& message) {
  return "NSURL+KBXFileBasics:" + std::to_string(line) + " +[NSURL(KBXFileBasics) " + selector +
         "] " + message;
}

std::string passwordLine(int line, const std::string& message) {
  return logged(line, "kbxGetpwuidRealHomeDirectoryURL", message);
}

class NSURLKBXHome : public testing::Test {
 protected:
  NSURLKBXHome() {
    Ref<NSNumber> yes = NSNumber::numberWithBool(true);
    KBXLogger::setSharedLogger(KBXLogger::initWithDefaultsDictionary(
        NSDictionary::dictionaryWithPairs({{"KBXLoggerIncludeFile"_ns, yes},
                                           {"KBXLoggerIncludeLine"_ns, yes},
                                           {"KBXLoggerIncludeFunction"_ns, yes}})));
    files.folder("/home");
    files.folder("/home/ada");
  }
  ~NSURLKBXHome() override { KBXLogger::setSharedLogger(nullptr); }

  void enter(std::optional<std::string> homeDirectory) {
    accounts.entries[501] = {"ada", std::move(homeDirectory)};
  }
  std::string home() { return text(directory.url()); }

  RecordingLog log;
  FakeFiles files;
  FakeProcessIdentity process;
  ScopedService<ProcessIdentity> installedProcess{process};
  FakeUserAccounts accounts;
  ScopedService<UserAccounts> installedAccounts{accounts};
  RealHomeDirectory directory;
};

TEST_F(NSURLKBXHome, ThePasswordDatabaseIsAskedForTheRealUser) {
  enter("/home/ada");
  EXPECT_EQ(text(kbxGetpwuidRealHomeDirectoryURL()), "file:///home/ada/");
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(NSURLKBXHome, EachWayToHaveNoHomeIsLoggedWithItsLine) {
  struct Case {
    const char* rule;
    std::optional<PasswordEntry> entry;
    std::string line;
  };
  for (const auto& [rule, entry, line] :
       {Case{"no entry", std::nullopt, passwordLine(46, "getpwuid returned NULL.")},
        {"no field", PasswordEntry{"ada", std::nullopt},
         passwordLine(51, "userInfo->pw_dir is NULL.")},
        {"no path", PasswordEntry{"ada", "/a\0b"s},
         passwordLine(57, "Home directory path is nil.")},
        {"an empty path", PasswordEntry{"ada", ""},
         passwordLine(62, "Home directory URL is nil.")}}) {
    SCOPED_TRACE(rule);
    RecordingLog own;
    accounts.entries.clear();
    if (entry) accounts.entries[501] = *entry;
    EXPECT_EQ(kbxGetpwuidRealHomeDirectoryURL(), nullptr);
    EXPECT_THAT(own.lines(), ElementsAre(line));
  }
}

TEST_F(NSURLKBXHome, AHomeThatIsNotUTF8IsAHome) {
  enter("/home/ren\xE9");
  EXPECT_EQ(kbxFileSystemRepresentation(kbxGetpwuidRealHomeDirectoryURL()), "/home/ren\xE9");
}

TEST_F(NSURLKBXHome, TheDatabasesAnswerIsKept) {
  enter("/home/ada");
  auto first = directory.url();
  EXPECT_EQ(text(first), "file:///home/ada/");
  accounts.entries.clear();
  EXPECT_TRUE(isSame(directory.url().get(), first.get()));
  EXPECT_EQ(accounts.lookups, 1);
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(NSURLKBXHome, OutsideASandboxTheProcessIsToldTheRealHome) {
  EXPECT_EQ(home(), "file:///home/ada/");
  EXPECT_THAT(log.lines(),
              ElementsAre(passwordLine(46, "getpwuid returned NULL."),
                          logged(28, "kbxRealHomeDirectoryURL",
                                 "Fallback home directory since doesn't appear to be sandboxed: "
                                 "/home/ada")));
}

TEST_F(NSURLKBXHome, AFallbackIsNotKept) {
  EXPECT_EQ(home(), "file:///home/ada/");
  EXPECT_EQ(home(), "file:///home/ada/");
  EXPECT_EQ(accounts.lookups, 2);
  enter("/data/ada");
  EXPECT_EQ(home(), "file:///data/ada");
  accounts.entries.clear();
  EXPECT_EQ(home(), "file:///data/ada");
}

TEST_F(NSURLKBXHome, InASandboxTheHomeLiesFourLevelsUp) {
  accounts.home = "/home/ada/Library/Containers/com.example.app/Data";
  EXPECT_EQ(text(directory.url()->path()), "/home/ada");
  EXPECT_THAT(log.lines(), ElementsAre(passwordLine(46, "getpwuid returned NULL."),
                                       logged(35, "kbxRealHomeDirectoryURL",
                                              "Fallback constructed home directory: /home/ada")));
}

TEST_F(NSURLKBXHome, AnUnknownLayoutRaisesAndReleasesTheLock) {
  for (const char* unknown :
       {"/home/eve/Library/Containers/com.example.app/Data", "/home/ada/a/b/c/Other",
        "/home/ada/Library/Containers/Data", "/", "/somewhere"}) {
    SCOPED_TRACE(unknown);
    accounts.home = unknown;
    auto raised = raisedBy([this] { directory.url(); });
    ASSERT_NE(raised, nullptr);
    EXPECT_EQ(text(raised->name()), "KBXAssertionFailedException");
    EXPECT_EQ(log.lines().back(),
              "NSURL+KBXFileBasics:38 +kbxRealHomeDirectoryURL: Assertion Failed: "
              "Precondition Failed: NO");
  }
  // Another thread gets the lock, so it was released.
  accounts.home = "/home/ada";
  std::string answer;
  std::thread([&] { answer = home(); }).join();
  EXPECT_EQ(answer, "file:///home/ada/");
}

TEST_F(NSURLKBXHome, TheProcessKeepsOneAnswer) {
  enter("/home/ada");
  auto first = kbxRealHomeDirectoryURL();
  ASSERT_NE(first, nullptr);
  accounts.entries.clear();
  EXPECT_TRUE(isSame(kbxRealHomeDirectoryURL().get(), first.get()));
}

class NSURLKBXHomeVolume : public NSURLKBXHome {
 protected:
  NSURLKBXHomeVolume() { files.folder("/opt"); }

  FakeMountTable volumes{{{"/", "8:1", ""}, {"/home", "8:2", ""}}};
};

TEST_F(NSURLKBXHomeVolume, TheHomeMayLieOnAVolumeOfItsOwn) {
  EXPECT_TRUE(kbxIsHomeDirectoryOnSeparateVolume());
  volumes.entries.pop_back();
  EXPECT_FALSE(kbxIsHomeDirectoryOnSeparateVolume());
  volumes.entries.push_back({"/home", "8:1", "another mount of the same volume"});
  EXPECT_FALSE(kbxIsHomeDirectoryOnSeparateVolume());
}

TEST_F(NSURLKBXHomeVolume, WhereAVolumeIsUnknownTheAnswerIsNo) {
  files.vanish("/opt");
  EXPECT_FALSE(kbxIsHomeDirectoryOnSeparateVolume()) << "no folder of applications";
  files.folder("/opt");
  files.vanish("/home/ada");
  EXPECT_FALSE(kbxIsHomeDirectoryOnSeparateVolume()) << "no home folder";
  files.folder("/home/ada");
  volumes.entries.erase(volumes.entries.begin());
  EXPECT_FALSE(kbxIsHomeDirectoryOnSeparateVolume()) << "no volume for one of them";
}

}  // namespace
}  // namespace kbx
