#include "platform/files/NSFileManager.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "platform/objects/NSError.h"
#include "platform/objects/NSException.h"
#include "tests/support/FailingFiles.h"
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
}

}  // namespace
}  // namespace kbx
