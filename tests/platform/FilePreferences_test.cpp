#include "platform/preferences/FilePreferences.h"

#include <cerrno>

#include "platform/files/FileLock.h"
#include "platform/objects/NSNull.h"
#include "tests/support/FailingFiles.h"
#include "tests/support/PropertyLists.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using test::read;

Ref<NSDictionary> pair(NSString* key, NSObject* value) {
  return NSDictionary::dictionaryWithPairs({{key, value}});
}

/// The domains of one process on the folder "p", which is made when it is needed.
class FilePreferencesTest : public testing::Test {
 protected:
  FilePreferences process() const {
    return FilePreferences(folder / "p", std::chrono::milliseconds(0));
  }
  std::string file(const std::string& name) const { return folder.read("p/" + name); }
  void write(const std::string& name, std::string_view bytes) const {
    fs::create_directory(folder / "p");
    folder.write("p/" + name, bytes);
  }
  Ref<NSObject> stored(const std::string& name) const { return read(file(name)); }
  bool exists(const std::string& name) const { return fs::exists(folder / ("p/" + name)); }
  /// Names in the folder besides the lock.
  std::size_t count() const { return folder.count() ? countIn(folder / "p") : 0; }

  TemporaryFolder folder;
  RecordingLog log;

 private:
  static std::size_t countIn(const fs::path& path) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(path), {})) - 1;
  }
};

TEST_F(FilePreferencesTest, WhatIsNotStoredIsAbsentAndMakesNoFolder) {
  auto first = process();
  EXPECT_EQ(first.domain("d"_ns), nullptr);
  EXPECT_TRUE(first.synchronize());
  EXPECT_EQ(folder.count(), 0u);
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(FilePreferencesTest, WhatIsChangedIsInTheFileAndFoundByTheNextProcess) {
  auto first = process();
  EXPECT_TRUE(first.change("d"_ns, pair("a"_ns, "1"_ns)));
  EXPECT_TRUE(first.change("d"_ns, pair("b"_ns, NSArray::array())));
  auto expected = NSDictionary::dictionaryWithPairs({{"a"_ns, "1"_ns}, {"b"_ns, NSArray::array()}});
  EXPECT_TRUE(isEqual(first.domain("d"_ns), expected));
  EXPECT_EQ(file("d.plist"), test::written(expected, test::kXML));
  EXPECT_TRUE(isEqual(process().domain("d"_ns), expected));
  EXPECT_EQ(count(), 1u);
  EXPECT_EQ(fs::status(folder / "p").permissions(), fs::perms::owner_all);
}

TEST_F(FilePreferencesTest, TheNullMarkerRemovesAKey) {
  auto first = process();
  first.change("d"_ns, pair("a"_ns, "1"_ns));
  first.change("d"_ns, pair("b"_ns, "2"_ns));
  EXPECT_TRUE(first.change("d"_ns, pair("a"_ns, NSNull::null())));
  EXPECT_TRUE(isEqual(process().domain("d"_ns), pair("b"_ns, "2"_ns)));
  EXPECT_TRUE(first.change("d"_ns, pair("b"_ns, NSNull::null())));
  EXPECT_TRUE(isEqual(process().domain("d"_ns), NSDictionary::dictionary()));
}

TEST_F(FilePreferencesTest, RemovingFromNothingStoresNothing) {
  auto first = process();
  EXPECT_TRUE(first.change("d"_ns, pair("a"_ns, NSNull::null())));
  EXPECT_EQ(first.domain("d"_ns), nullptr);
  EXPECT_FALSE(exists("d.plist"));
}

TEST_F(FilePreferencesTest, AReplacedDomainHasItsNewValuesOnly) {
  auto first = process();
  first.change("d"_ns, pair("a"_ns, "1"_ns));
  EXPECT_TRUE(first.replace("d"_ns, pair("b"_ns, "2"_ns)));
  EXPECT_TRUE(isEqual(process().domain("d"_ns), pair("b"_ns, "2"_ns)));
  EXPECT_TRUE(first.replace("d"_ns, NSDictionary::dictionary()));
  EXPECT_TRUE(isEqual(first.domain("d"_ns), NSDictionary::dictionary()));
  EXPECT_TRUE(isEqual(process().domain("d"_ns), NSDictionary::dictionary()));
}

TEST_F(FilePreferencesTest, ARemovedDomainHasNoFile) {
  auto first = process();
  first.change("d"_ns, pair("a"_ns, "1"_ns));
  EXPECT_TRUE(first.replace("d"_ns, nullptr));
  EXPECT_EQ(first.domain("d"_ns), nullptr);
  EXPECT_FALSE(exists("d.plist"));
  EXPECT_TRUE(first.replace("d"_ns, nullptr));
  EXPECT_TRUE(first.change("d"_ns, pair("a"_ns, "2"_ns)));
  EXPECT_TRUE(isEqual(process().domain("d"_ns), pair("a"_ns, "2"_ns)));
}

TEST_F(FilePreferencesTest, AChangeKeepsWhatAnotherProcessStored) {
  auto first = process();
  auto second = process();
  first.change("d"_ns, pair("a"_ns, "1"_ns));
  second.domain("d"_ns);
  first.change("d"_ns, pair("b"_ns, "2"_ns));
  EXPECT_TRUE(second.change("d"_ns, pair("c"_ns, "3"_ns)));
  auto expected =
      NSDictionary::dictionaryWithPairs({{"a"_ns, "1"_ns}, {"b"_ns, "2"_ns}, {"c"_ns, "3"_ns}});
  EXPECT_TRUE(isEqual(stored("d.plist"), expected));
  EXPECT_TRUE(isEqual(second.domain("d"_ns), expected));
}

TEST_F(FilePreferencesTest, WhatOthersStoredIsSeenAfterSynchronizing) {
  auto first = process();
  auto second = process();
  EXPECT_EQ(second.domain("d"_ns), nullptr);
  first.change("d"_ns, pair("a"_ns, "1"_ns));
  EXPECT_EQ(second.domain("d"_ns), nullptr);
  EXPECT_TRUE(second.synchronize());
  EXPECT_TRUE(isEqual(second.domain("d"_ns), pair("a"_ns, "1"_ns)));
}

TEST_F(FilePreferencesTest, AFileThatNeedsNoChangeIsNotWritten) {
  write("d.plist", "<dict><key>a</key><string>1</string></dict>");
  EXPECT_TRUE(process().change("d"_ns, pair("a"_ns, "1"_ns)));
  EXPECT_EQ(file("d.plist"), "<dict><key>a</key><string>1</string></dict>");
}

TEST_F(FilePreferencesTest, AnotherKindOfAnEqualNumberIsStored) {
  const Ref<NSNumber> kinds[] = {NSNumber::numberWithInteger(1), NSNumber::numberWithBool(true),
                                 NSNumber::numberWithDouble(1), NSNumber::numberWithInteger(1)};
  for (const auto& number : kinds) {
    EXPECT_TRUE(process().change("d"_ns, pair("a"_ns, number)));
    EXPECT_EQ(file("d.plist"), test::written(pair("a"_ns, number), test::kXML));
  }
}

TEST_F(FilePreferencesTest, WhatXMLCannotHoldGoesIntoABinaryFile) {
  EXPECT_TRUE(process().change("d"_ns, pair("a"_ns, "\x01"_ns)));
  EXPECT_TRUE(file("d.plist").starts_with("bplist00"));
  EXPECT_TRUE(isEqual(process().domain("d"_ns), pair("a"_ns, "\x01"_ns)));
}

TEST_F(FilePreferencesTest, PartsOfASecondGoIntoABinaryFile) {
  auto whole = NSDate::dateWithTimeIntervalSinceReferenceDate(806996160);
  auto part = NSDate::dateWithTimeIntervalSinceReferenceDate(806996160.25);
  EXPECT_TRUE(process().change("d"_ns, pair("a"_ns, whole)));
  EXPECT_TRUE(file("d.plist").starts_with("<?xml"));
  EXPECT_TRUE(process().change("d"_ns, pair("a"_ns, part)));
  EXPECT_TRUE(file("d.plist").starts_with("bplist00"));
  EXPECT_TRUE(isEqual(process().domain("d"_ns), pair("a"_ns, part)));
}

TEST_F(FilePreferencesTest, ADamagedFileCountsAsEmptyAndIsKeptAside) {
  for (std::string_view damage : {"", "<dict>", "<array/>", "bplist00"}) {
    SCOPED_TRACE(damage);
    const auto before = log.lines().size();
    write("d.plist", damage);
    auto first = process();
    EXPECT_EQ(first.domain("d"_ns), nullptr);
    EXPECT_EQ(file("d.plist"), damage);
    ASSERT_EQ(log.lines().size(), before + 1);
    EXPECT_NE(log.lines().back().find("d.plist is not used: "), std::string::npos);
    EXPECT_TRUE(first.change("d"_ns, pair("a"_ns, "1"_ns)));
    EXPECT_TRUE(isEqual(process().domain("d"_ns), pair("a"_ns, "1"_ns)));
    EXPECT_EQ(file("d.plist.corrupt"), damage);
    ASSERT_EQ(log.lines().size(), before + 2);
    EXPECT_NE(log.lines().back().find("d.plist.corrupt"), std::string::npos);
    fs::remove(folder / "p/d.plist.corrupt");
  }
}

TEST_F(FilePreferencesTest, EveryDamagedFileIsKept) {
  for (const char* damage : {"one", "two", "three"}) {
    write("d.plist", damage);
    process().change("d"_ns, pair("a"_ns, "1"_ns));
  }
  EXPECT_EQ(file("d.plist.corrupt"), "one");
  EXPECT_EQ(file("d.plist.corrupt-2"), "two");
  EXPECT_EQ(file("d.plist.corrupt-3"), "three");
}

TEST_F(FilePreferencesTest, ADamagedFileIsKeptAlsoWhenItsDomainIsRemovedOrReplaced) {
  write("d.plist", "one");
  EXPECT_TRUE(process().replace("d"_ns, nullptr));
  EXPECT_FALSE(exists("d.plist"));
  write("d.plist", "two");
  EXPECT_TRUE(process().replace("d"_ns, pair("a"_ns, "1"_ns)));
  EXPECT_EQ(file("d.plist.corrupt"), "one");
  EXPECT_EQ(file("d.plist.corrupt-2"), "two");
}

TEST_F(FilePreferencesTest, AFolderInPlaceOfAFileIsSetAside) {
  fs::create_directories(folder / "p/d.plist");
  EXPECT_TRUE(process().change("d"_ns, pair("a"_ns, "1"_ns)));
  EXPECT_TRUE(fs::is_directory(folder / "p/d.plist.corrupt"));
  EXPECT_TRUE(isEqual(process().domain("d"_ns), pair("a"_ns, "1"_ns)));
}

TEST_F(FilePreferencesTest, AFileThatIsALinkIsWrittenWhereItLeads) {
  fs::create_directory(folder / "kept");
  fs::create_directory(folder / "p");
  fs::create_symlink("../kept/d.plist", folder / "p/d.plist");
  for (auto* value : {"1"_ns, "2"_ns}) {  // the first has no file yet
    EXPECT_TRUE(process().change("d"_ns, pair("a"_ns, value)));
    EXPECT_TRUE(fs::is_symlink(folder / "p/d.plist"));
    EXPECT_TRUE(isEqual(read(folder.read("kept/d.plist")), pair("a"_ns, value)));
    EXPECT_TRUE(isEqual(process().domain("d"_ns), pair("a"_ns, value)));
  }
  EXPECT_EQ(count(), 1u);
}

TEST_F(FilePreferencesTest, AFileThatMayNotBeReadIsSetAside) {
  write("d.plist", "<dict/>");
  auto first = process();
  {
    FailingFiles files;
    files.fail(FailingFiles::Call::Open, EACCES);
    ScopedService<FileSystem> installed(files);
    EXPECT_EQ(first.domain("d"_ns), nullptr);
    EXPECT_FALSE(first.change("d"_ns, pair("a"_ns, "1"_ns)));  // nor may it be written
  }
  EXPECT_EQ(file("d.plist.corrupt"), "<dict/>");
  EXPECT_TRUE(first.synchronize());
  EXPECT_TRUE(isEqual(process().domain("d"_ns), pair("a"_ns, "1"_ns)));
}

TEST_F(FilePreferencesTest, WhileTheSystemFailsAFileIsLeftAlone) {
  write("d.plist", "<dict><key>old</key><true/></dict>");
  auto first = process();
  for (auto call :
       {FailingFiles::Call::Open, FailingFiles::Call::Read, FailingFiles::Call::Write,
        FailingFiles::Call::Flush, FailingFiles::Call::Close, FailingFiles::Call::Rename}) {
    FailingFiles files;
    files.fail(call, EIO);
    ScopedService<FileSystem> installed(files);
    EXPECT_FALSE(first.change("d"_ns, pair("a"_ns, "1"_ns)));
    EXPECT_FALSE(first.synchronize());
    EXPECT_EQ(file("d.plist"), "<dict><key>old</key><true/></dict>");
    EXPECT_EQ(count(), 1u);
  }
  // What could not be stored is in force here, and stored as soon as that is possible.
  EXPECT_TRUE(isEqual(first.domain("d"_ns)->objectForKey("a"_ns), "1"_ns));
  EXPECT_TRUE(first.synchronize());
  auto list = stored("d.plist");
  auto* values = cast<NSDictionary>(list);
  ASSERT_TRUE(values);
  EXPECT_EQ(values->count(), 2u);
  EXPECT_FALSE(log.lines().empty());
}

TEST_F(FilePreferencesTest, AProcessThatHoldsTheLockIsNotWaitedForForEver) {
  auto first = process();
  EXPECT_TRUE(first.change("d"_ns, pair("a"_ns, "1"_ns)));
  {
    FileLock other(folder / "p/.lock", std::chrono::milliseconds(0));
    EXPECT_FALSE(first.change("d"_ns, pair("b"_ns, "2"_ns)));
    ASSERT_FALSE(log.lines().empty());
    EXPECT_NE(log.lines().back().find("cannot be locked"), std::string::npos);
    EXPECT_TRUE(isEqual(stored("d.plist"), pair("a"_ns, "1"_ns)));
  }
  EXPECT_TRUE(first.change("d"_ns, pair("c"_ns, "3"_ns)));
  EXPECT_EQ(cast<NSDictionary>(stored("d.plist"))->count(), 3u);
}

TEST_F(FilePreferencesTest, AFolderThatCannotBeMadeIsToldAndNothingIsLostHere) {
  folder.write("p", "a file");
  auto first = process();
  EXPECT_FALSE(first.change("d"_ns, pair("a"_ns, "1"_ns)));
  EXPECT_TRUE(isEqual(first.domain("d"_ns), pair("a"_ns, "1"_ns)));
  ASSERT_FALSE(log.lines().empty());
  EXPECT_NE(log.lines().back().find("cannot be made"), std::string::npos);
  EXPECT_EQ(folder.read("p"), "a file");
}

TEST_F(FilePreferencesTest, ANameThatIsTooLongOrNoneIsNoDomain) {
  auto first = process();
  auto longName = string(std::string(300, 'x'));
  EXPECT_EQ(first.domain(longName), nullptr);
  EXPECT_FALSE(first.change(longName, pair("a"_ns, "1"_ns)));
  for (NSString* name : {static_cast<NSString*>(nullptr), ""_ns}) {
    EXPECT_EQ(first.domain(name), nullptr);
    EXPECT_FALSE(first.change(name, pair("a"_ns, "1"_ns)));
    EXPECT_FALSE(first.replace(name, nullptr));
  }
  EXPECT_FALSE(first.change("d"_ns, nullptr));
}

TEST_F(FilePreferencesTest, DomainsStayInTheFolder) {
  auto first = process();
  EXPECT_TRUE(first.change("../escaped"_ns, pair("a"_ns, "1"_ns)));
  EXPECT_EQ(folder.count(), 1u);
  EXPECT_TRUE(isEqual(process().domain("../escaped"_ns), pair("a"_ns, "1"_ns)));
}

/// A log that asks for preferences, as the library's logger does.
class AskingLog final : public ClassicLog {
 public:
  explicit AskingLog(Preferences& preferences) : _preferences(preferences) {}
  void write(NSString*) override { _preferences.domain("other"_ns), ++_lines; }
  int lines() const { return _lines; }

 private:
  Preferences& _preferences;
  int _lines = 0;
};

TEST_F(FilePreferencesTest, ALogMayAskForPreferences) {
  write("d.plist", "junk");
  auto first = process();
  AskingLog asking(first);
  ScopedService<ClassicLog> installed(asking);
  first.domain("d"_ns);
  EXPECT_EQ(asking.lines(), 1);
}

}  // namespace
}  // namespace kbx
