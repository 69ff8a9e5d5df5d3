#include "host/import/Staging.h"

#include <gtest/gtest.h>

#include "host/console/FerncaseErrors.h"
#include "host/import/FileImporter.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/FakeImporter.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;

class StagingTest : public testing::Test {
 protected:
  StagingTest() {
    for (auto name : {"mail", "memory", "disk"}) fs::create_directory(_folder / name);
    _environment.entries = {"XDG_RUNTIME_DIR=" + (_folder / "memory").string(),
                            "TMPDIR=" + (_folder / "disk").string()};
  }
  /// What an importer that does `import` answers for a staged message.
  Ref<NSDictionary> import(Ref<NSURL> file, FakeImporter::Import import) {
    FakeImporter fake(std::move(import));
    std::string reason;
    auto bundle = ImporterBundle::load(fake.bundle(), &reason);
    if (!bundle) throw std::runtime_error(reason);
    return FileImporter(*bundle, true, &_staging.value()).attributesOfFile(file, nullptr, &_error);
  }

  TemporaryFolder _folder;
  FakeEnvironment _environment;
  ScopedService<Environment> _installed{_environment};
  Ref<NSError> _error;
  ImportLog _log{nullptr};
  ScopedService<ClassicLog> _installedLog{_log};
  std::optional<Staging> _staging;
};

TEST_F(StagingTest, AMessageIsSeenUnderItsNameInAPrivateFolder) {
  _staging.emplace();
  auto file = _folder.write("mail/a b\xE9.eml", "text");
  EXPECT_TRUE(import(file, [&](NSMutableDictionary*, NSString* type, NSURL* url) {
    const fs::path path = url->fileSystemRepresentation();
    EXPECT_EQ(path.filename(), "a b\xE9.eml");
    EXPECT_EQ(path.parent_path().parent_path(), _folder / "memory");
    EXPECT_EQ(fs::status(path.parent_path()).permissions(), fs::perms::owner_all);
    EXPECT_EQ(text(type), "com.apple.mail.email") << "a link has the type of its name";
    EXPECT_EQ(text(NSData::dataWithContentsOfURL(url, NSDataReadingNone, nullptr)), "text");
    return true;
  }));
  EXPECT_FALSE(_error);
}

TEST_F(StagingTest, WhatAnImporterWritesBesideAMessageIsGoneBeforeTheNext) {
  _staging.emplace();
  auto file = _folder.write("mail/a.eml", "text");
  for (bool succeeds : {true, false, true}) {
    import(file, [&](NSMutableDictionary*, NSString*, NSURL* url) {
      const fs::path folder = fs::path(url->fileSystemRepresentation()).parent_path();
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
    std::ofstream(folder / ".temp-KBXEMLXFile-1.emlx") << "left";
    return succeeds;
  });
  EXPECT_EQ(std::distance(fs::directory_iterator(_folder / "mail"), {}), 1);
}
EXPECT_EQ(_folder.read("mail/a.eml"), "text");
_staging.reset();
EXPECT_TRUE(fs::is_empty(_folder / "memory"));
}  // namespace

TEST_F(StagingTest, PathsInAttributesAndErrorsAreTheUsers) {
  _staging.emplace();
  auto file = _folder.write("mail/a.eml", "text");
  auto attributes = import(file, [](NSMutableDictionary* found, NSString*, NSURL* url) {
    found->setObjectForKey(url->path(), "path"_ns);
    found->setObjectForKey("/elsewhere"_ns, "other"_ns);
    return true;
  });
  ASSERT_TRUE(attributes);
  EXPECT_EQ(text(attributes->objectForKey("path"_ns)), (_folder / "mail/a.eml").string());
  EXPECT_EQ(text(attributes->objectForKey("other"_ns)), "/elsewhere");
  EXPECT_FALSE(import(file, [](NSMutableDictionary*, NSString*, NSURL* url) {
    NSLog("failed at %@"_ns, url->path());
    return false;
  }));
  EXPECT_EQ(text(_error->localizedDescription()), "failed at " + (_folder / "mail/a.eml").string());
}

TEST_F(StagingTest, AMessageThatWouldTakeMuchOfTheMemoryIsStagedOnDisk) {
  _staging.emplace();
  EXPECT_EQ(fs::path(_staging->folderForSize(0).path()).parent_path(), _folder / "memory");
  EXPECT_EQ(fs::path(_staging->folderForSize(UINT64_MAX).path()).parent_path(), _folder / "disk");
}

TEST_F(StagingTest, AFolderThatIsGoneIsReplacedByTheOneOnDisk) {
  _staging.emplace();
  fs::remove_all(_staging->folderForSize(0).path());
  EXPECT_TRUE(import(_folder.write("mail/a.eml", "text"), [&](auto, auto, NSURL* url) {
    return fs::path(url->fileSystemRepresentation()).parent_path().parent_path() ==
           _folder / "disk";
  }));
}

TEST_F(StagingTest, ALinkThatCannotBeMadeIsAnErrorOfTheMessage) {
  _staging.emplace();
  fs::create_directory(_staging->folderForSize(0).path() + "/a.eml");
  EXPECT_FALSE(import(_folder.write("mail/a.eml", "text"),
                      [](auto...) -> bool { throw std::logic_error("called"); }));
  ASSERT_TRUE(_error);
  EXPECT_EQ(_error->code(), FerncaseStagingFailedError);
  EXPECT_EQ(text(_error->localizedDescription()),
            "The message can’t be shown to the importer in a private folder: File exists.");
}

}  // namespace kbx
}  // namespace kbx
