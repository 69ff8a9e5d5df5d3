#include "platform/files/NSFileManager.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "platform/objects/NSError.h"
#include "platform/objects/NSException.h"
#include "tests/support/FailingFiles.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/FakeFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

bool remove(NSURL* url, Ref<NSError>* error) {
  return NSFileManager::defaultManager()->removeItemAtURL(url, error);
}

TEST(NSFileManager, AFileIsRemoved) {
  TemporaryFolder folder;
  EXPECT_TRUE(remove(folder.write("a", "x"), nullptr));
  EXPECT_EQ(folder.count(), 0u);
}

TEST(NSFileManager, RemovingFailsWithTheCodeThatFitsTheSystemsReason) {
  struct Case {
    int number;
    std::int64_t code;
  };
  for (auto [number, code] : {Case{ENOENT, 4}, {EACCES, 513}, {EROFS, 642}, {EBUSY, 512}}) {
    SCOPED_TRACE(number);
    TemporaryFolder folder;
    FailingFiles files;
    files.fail(FailingFiles::Call::Remove, number);
    ScopedService<FileSystem> installed(files);
    Ref<NSError> error;
    EXPECT_FALSE(remove(folder.write("a", "x"), &error));
    EXPECT_EQ(error->code(), code);
    EXPECT_FALSE(remove(folder.url("a"), nullptr));
  }
}

TEST(NSFileManager, TheErrorSaysWhatCouldNotBeRemoved) {
  TemporaryFolder folder;
  Ref<NSError> error;
  EXPECT_FALSE(remove(folder.url("none"), &error));
  EXPECT_EQ(text(error->localizedDescription()),
            "The file “none” couldn’t be removed because there is no such file or folder.");
}

TEST(NSFileManager, AnAbsentLocationRaises) { EXPECT_THROW(remove(nullptr, nullptr), Raised); }

TEST(NSFileManager, APathsBytesBecomeItsText) {
  auto* manager = NSFileManager::defaultManager();
  EXPECT_EQ(text(manager->stringWithFileSystemRepresentation("/tmp/é.eml", 8)), "/tmp/é.");
  EXPECT_EQ(text(manager->stringWithFileSystemRepresentation("/tmp", 0)), "");
  EXPECT_EQ(manager->stringWithFileSystemRepresentation("\xFF", 1)->characterAtIndex(0), 0xDCFF);
  EXPECT_EQ(manager->stringWithFileSystemRepresentation(nullptr, 4), nullptr);
  EXPECT_EQ(manager->stringWithFileSystemRepresentation("a\0b", 3), nullptr) << "no path has a NUL";
}

/// "contains", "same", "other", or the code of the error.
std::string relationship(const char* folder, const char* item) {
  auto answer = static_cast<NSURLRelationship>(77);
  Ref<NSError> error;
  const bool isAnswered = NSFileManager::defaultManager()->getRelationship(
      &answer, NSURL::fileURLWithPath(string(folder), true),
      NSURL::fileURLWithPath(string(item), false), &error);
  if (!isAnswered) {
    EXPECT_EQ(answer, static_cast<NSURLRelationship>(77)) << "untouched";
    return std::to_string(error->code());
  }
  constexpr const char* kNames[] = {"contains", "same", "other"};
  return kNames[answer];
}

TEST(NSFileManager, AnItemIsRelatedToTheFoldersOnItsPath) {
  FakeFiles files;
  for (const char* path : {"/a", "/a/b", "/a/b/c", "/a/bc", "/again"}) files.folder(path);
  files.file("/a/b/c/f");
  files.link("/link", "/a/b");
  files.link("/loop", "loop");
  files.same("/again", "/a/b");
  struct Case {
    const char *folder, *item, *answer;
  };
  for (auto [folder, item, answer] : {Case{"/a", "/a/b/c/f", "contains"},
                                      {"/", "/a", "contains"},
                                      {"/a/b", "/a/b", "same"},
                                      {"/a/b/c/f", "/a/b/c/f", "same"},
                                      {"/a/b", "/a/bc", "other"},
                                      {"/a/b", "/a", "other"},
                                      {"/link", "/a/b", "same"},
                                      {"/link", "/a/b/c", "contains"},
                                      {"/a/b", "/link/c", "contains"},
                                      {"/again", "/a/b/c/f", "contains"},
                                      {"/again", "/a/b", "same"},
                                      {"/a/b/c/f", "/a/b/c", "other"},
                                      {"/a/none", "/a/b", "260"},
                                      {"/a", "/a/none", "260"},
                                      {"/a", "/loop", "256"}})
    EXPECT_EQ(relationship(folder, item), answer) << folder << " " << item;
}

TEST(NSFileManager, RelatingAnAbsentLocationRaises) {
  auto* manager = NSFileManager::defaultManager();
  auto url = NSURL::fileURLWithPath("/"_ns, true);
  NSURLRelationship answer;
  EXPECT_THROW(manager->getRelationship(&answer, nullptr, url, nullptr), Raised);
  EXPECT_THROW(manager->getRelationship(&answer, url, nullptr, nullptr), Raised);
}

std::string applications(NSSearchPathDomainMask domain) {
  Ref<NSError> error;
  auto url =
      NSFileManager::defaultManager()->URLForDirectory(NSApplicationDirectory, domain, &error);
  return url ? text(url) : std::to_string(error->code());
}

TEST(NSFileManager, TheMachinesApplicationsHaveAPlace) {
  FakeFiles files;
  EXPECT_EQ(applications(NSLocalDomainMask), "260");
  for (const char* path : {"/opt", "/usr", "/usr/share"}) files.folder(path);
  EXPECT_EQ(applications(NSLocalDomainMask), "file:///opt/");
  files.file("/usr/share/applications");
  EXPECT_EQ(applications(NSLocalDomainMask), "file:///opt/");
  files.folder("/usr/share/applications");
  EXPECT_EQ(applications(NSLocalDomainMask), "file:///usr/share/applications/");
}

TEST(NSFileManager, TheUsersApplicationsLieInTheSharedData) {
  FakeFiles files;
  FakeEnvironment environment{{"XDG_DATA_HOME=/data"}};
  ScopedService<Environment> installed(environment);
  EXPECT_EQ(applications(NSUserDomainMask), "260");
  files.folder("/data");
  files.folder("/data/applications");
  EXPECT_EQ(applications(NSUserDomainMask), "file:///data/applications/");
  environment.entries.clear();
  EXPECT_EQ(applications(NSUserDomainMask), "260");
}

}  // namespace
}  // namespace kbx
