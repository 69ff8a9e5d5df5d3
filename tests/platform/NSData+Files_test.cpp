#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <thread>

#include "platform/files/LeftoverFile.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSError.h"
#include "platform/objects/NSException.h"
#include "tests/support/FailingFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

std::int64_t underlyingCode(NSError* error) {
  auto* cause = cast<NSError>(error->userInfo()->objectForKey(NSUnderlyingErrorKey()));
  return cause && isEqual(cause->domain(), NSPOSIXErrorDomain()) ? cause->code() : -1;
}

Ref<NSData> read(NSURL* url, Ref<NSError>* error) {
  return NSData::dataWithContentsOfURL(url, NSDataReadingNone, error);
}

TEST(NSDataFiles, AFileIsReadWhole) {
  TemporaryFolder folder;
  const std::string bytes = std::string(70000, 'x') + std::string("\0\xFF", 2);
  for (const auto& content : {std::string(), std::string("a"), bytes}) {
    Ref<NSError> error;
    EXPECT_EQ(text(read(folder.write("a", content), &error)), content);
    EXPECT_EQ(error, nullptr);
  }
}

TEST(NSDataFiles, ShortReadsAndWritesAreGoneOnWith) {
  TemporaryFolder folder;
  FailingFiles files;
  files.largestRead = 7, files.largestWrite = 3;
  ScopedService<FileSystem> installed(files);
  auto url = folder.url("a");
  EXPECT_TRUE(data("twenty bytes of text")->writeToURL(url, NSDataWritingNone, nullptr));
  EXPECT_EQ(text(read(url, nullptr)), "twenty bytes of text");
}

TEST(NSDataFiles, AFileThatSaysItIsEmptyIsReadToItsEnd) {
  // Files of the process file system have no size.
  auto status = read(NSURL::fileURLWithPath("/proc/self/status"_ns), nullptr);
  ASSERT_NE(status, nullptr);
  EXPECT_TRUE(status->view().starts_with("Name:"));
}

TEST(NSDataFiles, AMissingFileSaysSo) {
  TemporaryFolder folder;
  Ref<NSError> error;
  EXPECT_EQ(read(folder.url("none.eml"), &error), nullptr);
  EXPECT_EQ(text(error->domain()), "NSCocoaErrorDomain");
  EXPECT_EQ(error->code(), 260);
  EXPECT_EQ(underlyingCode(error), ENOENT);
  EXPECT_EQ(text(error->userInfo()->objectForKey(NSFilePathErrorKey())),
            (folder / "none.eml").string());
  EXPECT_EQ(text(error->localizedDescription()),
            "The file “none.eml” couldn’t be opened because there is no such file.");
}

TEST(NSDataFiles, ReadingFailsWithTheCodeThatFitsTheSystemsReason) {
  struct Case {
    int number;
    std::int64_t code;
  };
  for (auto [number, code] : {Case{ENOENT, 260},
                              {ENOTDIR, 260},
                              {EACCES, 257},
                              {EPERM, 257},
                              {EFBIG, 263},
                              {EOVERFLOW, 263},
                              {EIO, 256},
                              {EMFILE, 256}}) {
    SCOPED_TRACE(number);
    TemporaryFolder folder;
    auto url = folder.write("a", "text");
    FailingFiles files;
    files.fail(FailingFiles::Call::Open, number);
    ScopedService<FileSystem> installed(files);
    Ref<NSError> error;
    EXPECT_EQ(read(url, &error), nullptr);
    EXPECT_EQ(error->code(), code);
    EXPECT_EQ(underlyingCode(error), number);
  }
}

TEST(NSDataFiles, AFaultInTheMiddleOfReadingLosesTheResult) {
  TemporaryFolder folder;
  auto url = folder.write("a", "text");
  FailingFiles files;
  files.fail(FailingFiles::Call::Read, EIO, 1);
  ScopedService<FileSystem> installed(files);
  Ref<NSError> error;
  EXPECT_EQ(read(url, &error), nullptr);
  EXPECT_EQ(error->code(), 256);
  EXPECT_EQ(text(error->localizedDescription()),
            "The file “a” couldn’t be opened: Input/output error.");
}

TEST(NSDataFiles, AFolderIsNoFile) {
  TemporaryFolder folder;
  Ref<NSError> error;
  EXPECT_EQ(read(folder.url(), &error), nullptr);
  EXPECT_EQ(error->code(), 256);
  EXPECT_EQ(underlyingCode(error), EISDIR);
}

TEST(NSDataFiles, APipeIsRefusedAndNotWaitedFor) {
  TemporaryFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  for (auto url : {folder.url("pipe"), NSURL::fileURLWithPath("/dev/zero"_ns)}) {
    Ref<NSError> error;
    EXPECT_EQ(read(url, &error), nullptr);
    EXPECT_EQ(error->code(), 256);
    EXPECT_EQ(underlyingCode(error), ENOTSUP);
  }
}

TEST(NSDataFiles, AFileBeyondTwoGigabytesIsTooLarge) {
  TemporaryFolder folder;
  auto url = folder.write("large", "");
  std::filesystem::resize_file(folder / "large", std::uintmax_t{1} << 31);  // a hole: no blocks
  Ref<NSError> error;
  EXPECT_EQ(read(url, &error), nullptr);
  EXPECT_EQ(error->code(), 263);
  EXPECT_EQ(underlyingCode(error), EFBIG);
}

TEST(NSDataFiles, NothingIsMadeWithoutAnOutParameter) {
  TemporaryFolder folder;
  EXPECT_EQ(read(folder.url("none"), nullptr), nullptr);
  EXPECT_FALSE(data("x")->writeToURL(folder.url("none/a"), NSDataWritingNone, nullptr));
}

TEST(NSDataFiles, AnAbsentLocationRaises) {
  EXPECT_THROW(read(nullptr, nullptr), Raised);
  EXPECT_THROW(data("x")->writeToURL(nullptr, NSDataWritingNone, nullptr), Raised);
}

TEST(NSDataFiles, WritingReplacesWhatIsThere) {
  TemporaryFolder folder;
  auto url = folder.write("a", "a longer text than the new one");
  for (auto options : {NSDataWritingNone, NSDataWritingAtomic}) {
    EXPECT_TRUE(data("new")->writeToURL(url, options, nullptr));
    EXPECT_EQ(folder.read("a"), "new");
    EXPECT_EQ(folder.count(), 1u);
  }
}

TEST(NSDataFiles, WritingFailsWithTheCodeThatFitsTheSystemsReason) {
  struct Case {
    FailingFiles::Call call;
    int number;
    std::int64_t code;
  };
  using Call = FailingFiles::Call;
  for (auto [call, number, code] : {Case{Call::Open, ENOENT, 4},
                                    {Call::Open, EACCES, 513},
                                    {Call::Open, EROFS, 642},
                                    {Call::Write, ENOSPC, 640},
                                    {Call::Write, EDQUOT, 640},
                                    {Call::Write, EIO, 512},
                                    {Call::Close, EIO, 512}}) {
    for (auto options : {NSDataWritingNone, NSDataWritingAtomic}) {
      SCOPED_TRACE(number);
      TemporaryFolder folder;
      FailingFiles files;
      files.fail(call, number);
      ScopedService<FileSystem> installed(files);
      Ref<NSError> error;
      EXPECT_FALSE(data("x")->writeToURL(folder.url("a"), options, &error));
      EXPECT_EQ(error->code(), code);
      EXPECT_EQ(underlyingCode(error), number);
    }
  }
}

TEST(NSDataFiles, AFailedAtomicWriteLeavesTheOldFileAndNoOther) {
  using Call = FailingFiles::Call;
  for (auto call : {Call::Open, Call::Write, Call::Flush, Call::Close, Call::Rename}) {
    TemporaryFolder folder;
    auto url = folder.write("a", "old");
    {
      FailingFiles files;
      files.fail(call, ENOSPC);
      ScopedService<FileSystem> installed(files);
      EXPECT_FALSE(data("new")->writeToURL(url, NSDataWritingAtomic, nullptr));
    }
    EXPECT_EQ(folder.read("a"), "old");
    EXPECT_EQ(folder.count(), 1u);
  }
}

/// A write of "a" that ends as if the process had died: what it wrote beside stays.
void dieWhileWriting(const TemporaryFolder& folder) {
  FailingFiles files;
  files.fail(FailingFiles::Call::Rename, EIO);
  files.fail(FailingFiles::Call::Remove, EIO);
  ScopedService<FileSystem> installed(files);
  EXPECT_FALSE(data("half")->writeToURL(folder.url("a"), NSDataWritingAtomic, nullptr));
}

/// As if nothing in the folder had been changed for so long.
void age(const TemporaryFolder& folder, std::chrono::minutes time) {
  for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
    std::filesystem::last_write_time(entry, std::filesystem::file_time_type::clock::now() - time);
}

TEST(NSDataFiles, AnAtomicWriteRemovesWhatADeadOneLeft) {
  TemporaryFolder folder;
  for (int death = 0; death < 3; ++death) dieWhileWriting(folder);
  EXPECT_EQ(folder.count(), 3u);
  age(folder, std::chrono::minutes(61));
  EXPECT_TRUE(data("new")->writeToURL(folder.url("a"), NSDataWritingAtomic, nullptr));
  EXPECT_EQ(folder.read("a"), "new");
  EXPECT_EQ(folder.count(), 1u);
}

TEST(NSDataFiles, AnAtomicWriteLeavesAloneWhatMayBeAnothers) {
  TemporaryFolder folder;
  dieWhileWriting(folder);
  age(folder, std::chrono::minutes(59));  // somebody may still be writing
  EXPECT_TRUE(data("new")->writeToURL(folder.url("a"), NSDataWritingAtomic, nullptr));
  EXPECT_EQ(folder.count(), 2u);
  age(folder, std::chrono::minutes(61));
  EXPECT_TRUE(data("new")->writeToURL(folder.url("b"), NSDataWritingAtomic, nullptr));
  EXPECT_EQ(folder.count(), 3u) << "another file's";
  EXPECT_TRUE(data("new")->writeToURL(folder.url("a"), NSDataWritingAtomic, nullptr));
  EXPECT_EQ(folder.count(), 2u);
}

TEST(NSDataFiles, AnAtomicWriteFindsAPlaceHoweverManyAreTaken) {
  TemporaryFolder folder;
  for (int death = 0; death < 12; ++death) dieWhileWriting(folder);
  EXPECT_EQ(folder.count(), 12u);
  EXPECT_TRUE(data("new")->writeToURL(folder.url("a"), NSDataWritingAtomic, nullptr));
  EXPECT_EQ(folder.read("a"), "new");
  EXPECT_EQ(folder.count(), 13u);
}

TEST(NSDataFiles, NoLeftoverIsAFolderALinkOrAFileWithTwoNames) {
  TemporaryFolder folder;
  std::filesystem::create_directory(folder / "folder");
  folder.write("file", "x");
  std::filesystem::create_hard_link(folder / "file", folder / "again");
  folder.write("target", "x");
  std::filesystem::create_symlink("target", folder / "link");
  age(folder, std::chrono::minutes(61));
  for (const char* name : {"folder", "file", "link", "none"})
    EXPECT_FALSE(removeLeftover(folder / name)) << name;
  EXPECT_TRUE(removeLeftover(folder / "target"));
  EXPECT_EQ(folder.count(), 4u);
}

TEST(NSDataFiles, AnAtomicWriteKeepsTheModeOfTheFile) {
  TemporaryFolder folder;
  auto url = folder.write("a", "old");
  std::filesystem::permissions(folder / "a", std::filesystem::perms(0640));
  EXPECT_TRUE(data("new")->writeToURL(url, NSDataWritingAtomic, nullptr));
  EXPECT_EQ(std::filesystem::status(folder / "a").permissions(), std::filesystem::perms(0640));
}

}  // namespace
}  // namespace kbx
