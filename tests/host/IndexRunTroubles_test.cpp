#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>

#include "tests/host/IndexRunFixture.h"
#include "tests/support/FakeFolders.h"
#include "tests/support/OwnChildren.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using End = IndexRun::End;

TEST_F(IndexRunTest, ARootThatIsNotThereKeepsItsMessages) {
  write("in/a.eml", "one");
  write("b.eml", "two");
  index();
  fs::rename(mail() / "in", _folder / "away");
  EXPECT_THAT(index({path("in")}), ElementsAre("kept in"));
  EXPECT_EQ(end, End::Futile);
  EXPECT_THAT(index({path("b.eml"), path("in")}), ElementsAre("kept in"));
  EXPECT_EQ(end, End::Done);
  EXPECT_TRUE(hasTroubles);
  EXPECT_EQ(messages().size(), 2u);
}

TEST_F(IndexRunTest, AFolderThatCannotBeReadKeepsItsMessages) {
  for (auto name : {"a/1.eml", "b/2.eml", "b/in/3.eml", "b-/4.eml", "c/5.eml"}) write(name, name);
  index();
  fs::remove(mail() / "b/2.eml");
  fs::remove(mail() / "b-/4.eml");
  FakeFolders folders;
  for (int failure : {EACCES, EIO, ENOTCONN, ESTALE}) {
    folders.fail(path("b"), failure);
    const auto events = index();
    EXPECT_THAT(events, testing::Contains("kept b"));
    EXPECT_EQ(messages().size(), 4u);
    EXPECT_TRUE(hasTroubles);
  }
  folders.fail(path("b"), 0);
  EXPECT_THAT(index(), ElementsAre("removed b/2.eml"));
}

TEST_F(IndexRunTest, AVolumeThatIsMissingKeepsItsMessages) {
  write("disk/in/1.eml", "one");
  write("disk/2.eml", "two");
  write("3.eml", "three");
  FakeFolders folders;
  folders.mount(path("disk"), 1000);
  folders.mount(path("disk/in"), 1000);
  index();
  folders.unmountAll();
  fs::remove_all(mail() / "disk");
  fs::create_directory(mail() / "disk");
  EXPECT_THAT(index(), ElementsAre("kept disk"));
  EXPECT_THAT(reasons, ElementsAre(HasSubstr("keeps 2 of its messages")));
  fs::remove(mail() / "disk");  // the place of the mount is gone as well
  EXPECT_THAT(index(), ElementsAre("kept ."));
  EXPECT_EQ(messages().size(), 3u);
}

TEST_F(IndexRunTest, ADeviceWithAnotherNumberIsTheSame) {
  for (auto name : {"1.eml", "2.eml"}) write(name, name);
  FakeFolders folders;
  folders.mount(mail().string(), 1000);
  index();
  folders.mount(mail().string(), 2000);
  fs::remove(mail() / "1.eml");
  EXPECT_THAT(index(), ElementsAre("removed 1.eml"));
  EXPECT_EQ(imports, 0);
  EXPECT_THAT(index(), IsEmpty());
}

TEST_F(IndexRunTest, AFileThatGivesNoMessageIsRememberedAndTriedWhenItChanges) {
  write("a.eml", "broken");
  EXPECT_THAT(index(), ElementsAre("failed a.eml"));
  EXPECT_TRUE(hasTroubles);
  EXPECT_THAT(index(), IsEmpty());
  EXPECT_EQ(counts.stillFailed, 1u);
  EXPECT_EQ(imports, 0);
  EXPECT_FALSE(hasTroubles);
  _settings.retriesFailures = true;
  EXPECT_THAT(index(), ElementsAre("failed a.eml"));
  _settings.retriesFailures = false;
  write("a.eml", "good");
  EXPECT_THAT(index(), ElementsAre("added a.eml"));
  EXPECT_THAT(messages(), ElementsAre("a.eml=good"));
  write("a.eml", "broken");
  EXPECT_THAT(index(), ElementsAre("failed a.eml"));
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(IndexRunTest, AFileThatVanishesMeanwhileIsNoFailure) {
  for (auto name : {"a.eml", "b.eml", "c.eml"}) write(name, name);
  FakeFolders folders;
  folders.beforeState = [&](const std::string& file) {
    if (file == path("a.eml")) fs::remove(file);
  };
  duringImport = [&](const std::string& file) {
    if (file == path("b.eml")) fs::remove(file);
  };
  EXPECT_THAT(index(), ElementsAre("added c.eml"));
  EXPECT_FALSE(hasTroubles);
  EXPECT_THAT(index(), IsEmpty());
}

TEST_F(IndexRunTest, AFileThatChangesDuringItsImportIsImportedAgain) {
  write("a.eml", "one");
  duringImport = [&](const std::string&) { keepingTimes("a.eml", [&] { write("a.eml", "two"); }); };
  index();
  duringImport = nullptr;
  write("a.eml", "two");
  EXPECT_THAT(index(), ElementsAre("changed a.eml"));
  EXPECT_THAT(messages(), ElementsAre("a.eml=two"));
}

TEST_F(IndexRunTest, AFileThatChangesAndChangesBackDuringItsImportIsImportedAgain) {
  write("a.eml", "one");
  duringImport = [&](const std::string&) { keepingTimes("a.eml", [&] { write("a.eml", "two"); }); };
  index();
  EXPECT_THAT(messages(), ElementsAre("a.eml=two"));
  duringImport = nullptr;
  keepingTimes("a.eml", [&] { write("a.eml", "one"); });
  EXPECT_THAT(index(), ElementsAre("changed a.eml"));
  EXPECT_THAT(messages(), ElementsAre("a.eml=one"));
}

TEST_F(IndexRunTest, AStoreThatFailsEndsTheRunAndKeepsWhatWasCommitted) {
  _settings.batch.files = 2;
  for (auto name : {"1.eml", "2.eml", "3.eml", "4.eml", "5.eml"}) write(name, name);
  ASSERT_TRUE(store().database().run(
      "CREATE TEMP TRIGGER full BEFORE INSERT ON file WHEN (SELECT count(*) FROM file) = 3"
      " BEGIN SELECT RAISE(FAIL, 'disk full'); END",
      &_error));
  index();
  EXPECT_EQ(end, End::StoreFailed);
  EXPECT_EQ(counts.added, 2u);  // what was undone does not count
  ASSERT_TRUE(_error);
  EXPECT_THAT(_error->localizedDescription()->lossyUTF8(), HasSubstr("disk full"));
  EXPECT_EQ(messages().size(), 2u);
  ASSERT_TRUE(store().database().run("DROP TRIGGER full", &_error));
  index();
  EXPECT_EQ(end, End::Done);
  EXPECT_EQ(messages().size(), 5u);
}

TEST_F(IndexRunTest, NoOtherProcessHasTheStoreOpen) {
  write("a.eml", "one");
  _settings.imports.isIsolated = true;
  std::size_t processes = 0;
  afterEvent = [&](const std::string&) {
    for (const pid_t process : ownDescendants()) {
      ++processes;
      EXPECT_THAT(openFilesOf(process), testing::Each(testing::Not(HasSubstr("mail.db"))));
    }
    EXPECT_THAT(openFilesOf(::getpid()), testing::Contains(HasSubstr("mail.db")));
  };
  EXPECT_THAT(index(), ElementsAre("added a.eml"));
  EXPECT_GE(processes, 2u);
}

TEST_F(IndexRunTest, WithoutProcessesTheRunEndsAndMarksNothing) {
  constexpr int kMessages = 600;  // more than a worker has in hand
  for (int i = 0; i < kMessages; ++i) write(std::to_string(i) + ".eml", "text");
  _settings.imports.isIsolated = true;
  _settings.imports.workers = 1;
  _settings.batch.files = 1;
  bool isKilled = false;
  afterEvent = [&](const std::string&) {
    if (!std::exchange(isKilled, true)) killChildren();
  };
  const auto events = index();
  EXPECT_EQ(end, End::NoImporter);
  EXPECT_THAT(_error->localizedDescription()->lossyUTF8(),
              HasSubstr("no worker process can be started"));
  EXPECT_THAT(events, testing::Each(testing::StartsWith("added ")));
  EXPECT_EQ(counts.failed, 0u);
  EXPECT_EQ(counts.added, messages().size());
  EXPECT_LT(counts.added, std::uint64_t{kMessages});
  index();
  EXPECT_EQ(end, End::Done);
  EXPECT_EQ(counts.stillFailed, 0u);
  EXPECT_EQ(messages().size(), std::size_t{kMessages});
}

TEST_F(IndexRunTest, WithoutAnImporterNothingIsLost) {
  write("a.eml", "one");
  index();
  write("a.eml", "two!");
  _settings.imports.importer = "/nowhere.mdimporter";
  EXPECT_THAT(index(), IsEmpty());
  EXPECT_EQ(end, End::NoImporter);
  ASSERT_TRUE(_error);
  EXPECT_THAT(_error->localizedDescription()->lossyUTF8(), HasSubstr("/nowhere.mdimporter"));
  EXPECT_THAT(messages(), ElementsAre("a.eml=one"));
}

}  // namespace
}  // namespace kbx
