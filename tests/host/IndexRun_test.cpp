#include "host/index/IndexRun.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <set>

#include "host/index/IndexedFolders.h"
#include "host/store/Maintenance.h"
#include "host/store/StoreErrors.h"
#include "platform/objects/NSNumber.h"
#include "platform/plugins/MDImporter.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FakeFolders.h"
#include "tests/support/FakeImporter.h"
#include "tests/support/OwnChildren.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using End = IndexRun::End;

/// Writes down what happened, with paths below the mail folder.
class Recorder final : public IndexListener {
 public:
  explicit Recorder(std::string folder) : _folder(std::move(folder)) {}

  void compared() override {}
  void begins(std::uint64_t files) override { announced = files; }
  void isDone(bool) override { ++done; }
  void added(const std::string& path) override { note("added", path); }
  void changed(const std::string& path) override { note("changed", path); }
  void moved(const std::string& from, const std::string& to) override {
    note("moved", from);
    events.back() += " " + relative(to);
  }
  void removed(const std::string& path) override { note("removed", path); }
  void failed(const std::string& path, NSError* error) override {
    note("failed", path);
    reasons.push_back(error->localizedDescription()->lossyUTF8());
  }
  void kept(const std::string& path, NSError* error) override {
    note("kept", path);
    reasons.push_back(error->localizedDescription()->lossyUTF8());
  }

  std::vector<std::string> events;
  std::vector<std::string> reasons;
  std::uint64_t announced = 0;
  std::uint64_t done = 0;
  std::function<void(const std::string& event)> afterEvent;

 private:
  std::string relative(const std::string& path) const {
    return path == _folder ? "." : path.substr(_folder.size() + 1);
  }
  void note(const char* what, const std::string& path) {
    events.push_back(std::string(what) + " " + relative(path));
    if (afterEvent) afterEvent(events.back());
  }

  const std::string _folder;
};

class IndexRunTest : public testing::Test {
 protected:
  void SetUp() override { fs::create_directory(mail()); }

  fs::path mail() const { return _folder / "mail"; }
  std::string path(std::string_view name) const { return (mail() / name).string(); }
  void write(std::string_view name, std::string_view content) {
    fs::create_directories((mail() / name).parent_path());
    std::ofstream(mail() / name, std::ios::binary) << content;
  }
  void rename(std::string_view from, std::string_view to) {
    fs::create_directories((mail() / to).parent_path());
    fs::rename(mail() / from, mail() / to);
  }

  StoreWriter& store() {
    if (!_store) _store = StoreWriter::open((_folder / "mail.db").string(), &_error);
    EXPECT_TRUE(_store);
    return *_store;
  }
  /// Brings the store up to date and answers what happened.
  std::vector<std::string> index(std::vector<std::string> roots = {}) {
    if (roots.empty()) roots = {mail().string()};
    Recorder recorder(mail().string());
    recorder.afterEvent = afterEvent;
    IndexRun run(store(), _settings, recorder);
    imports = 0;
    _error = nullptr;
    end = run.run(roots, &_error);
    counts = run.counts();
    hasTroubles = run.hasTroubles();
    reasons = recorder.reasons;
    EXPECT_EQ(recorder.done, end == End::Done ? recorder.announced : recorder.done);
    return recorder.events;
  }
  /// "name=text" of each message, with paths below the mail folder, in their order.
  std::vector<std::string> messages() {
    Statement rows(store().database(),
                   "SELECT path, body FROM file JOIN message USING (id) ORDER BY path");
    std::vector<std::string> found;
    while (rows.step(&_error) == Statement::Step::Row)
      found.push_back(std::string(rows.bytes(0)).substr(mail().string().size() + 1) + "=" +
                      std::string(rows.text(1)));
    return found;
  }
  /// "name read flagged replied" of each message; "unknown" where nothing says whether it was read.
  std::vector<std::string> states() {
    Statement rows(store().database(),
                   "SELECT path, CASE is_read WHEN 1 THEN ' read' WHEN 0 THEN ' unread'"
                   " ELSE ' unknown' END || iif(is_flagged, ' flagged', '') ||"
                   " iif(is_replied, ' replied', '') FROM file JOIN message USING (id)"
                   " ORDER BY path");
    std::vector<std::string> found;
    while (rows.step(&_error) == Statement::Step::Row)
      found.push_back(std::string(rows.bytes(0)).substr(mail().string().size() + 1) +
                      std::string(rows.text(1)));
    return found;
  }
  std::int64_t idOf(std::string_view name) {
    return store().idOfPath(path(name), &_error).value_or(0);
  }
  /// Gives a file its former times back after something was done to it.
  template <class Body>
  void keepingTimes(std::string_view name, Body body) {
    struct stat status;
    ASSERT_EQ(::stat(path(name).c_str(), &status), 0);
    body();
    const timespec times[] = {status.st_atim, status.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, path(name).c_str(), times, 0), 0);
  }

  IndexSettings settings() const {
    IndexSettings made;
    made.imports.isIsolated = false;
    made.imports.importer = _importer.bundle()->fileSystemRepresentation();
    made.imports.usesMailImporter = false;
    return made;
  }

  int imports = 0;
  bool saysRead = false;
  std::function<void(const std::string& path)> duringImport;
  std::function<void(const std::string& event)> afterEvent;
  End end = End::Done;
  IndexCounts counts;
  bool hasTroubles = false;
  std::vector<std::string> reasons;

  TemporaryFolder _folder;
  FakeImporter _importer{[this](NSMutableDictionary* attributes, NSString*, NSURL* url) {
    ++imports;
    const std::string path = url->fileSystemRepresentation();
    if (duringImport) duringImport(path);
    std::ifstream file(path, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    if (content == "broken") return false;
    attributes->setObjectForKey(NSString::stringWithLossyUTF8(content), "kMDItemTextContent"_ns);
    if (saysRead)
      attributes->setObjectForKey(NSNumber::numberWithBool(true), "com_apple_mail_read"_ns);
    return true;
  }};
  IndexSettings _settings = settings();
  // Long after all that the tests write, so that times can be trusted.
  FakeClock _clock{1e10};
  ScopedService<Clock> _installedClock{_clock};
  std::unique_ptr<StoreWriter> _store;
  Ref<NSError> _error;
};

TEST_F(IndexRunTest, WhatIsNewIsAddedAndWhatIsTheSameIsLeftAlone) {
  write("a.eml", "one");
  write("in/b.eml", "two");
  EXPECT_THAT(index(), ElementsAre("added a.eml", "added in/b.eml"));
  EXPECT_THAT(messages(), ElementsAre("a.eml=one", "in/b.eml=two"));
  EXPECT_THAT(index(), IsEmpty());
  EXPECT_EQ(imports, 0);
  EXPECT_EQ(counts.unchanged, 2u);
  EXPECT_FALSE(hasTroubles);
}

TEST_F(IndexRunTest, WorkersMakeTheRowsThatAreMadeInPlace) {
  write("a.eml", "one");
  write("b.eml", "broken");
  write("c.eml", std::string(200'000, 'c') + "\xFF");
  write("empty.eml", "");
  const auto rows = [this] {
    Statement all(store().database(),
                  "SELECT path, hex(hash), failure, hex(body), hex(attributes)"
                  " FROM file LEFT JOIN message USING (id) ORDER BY path");
    std::vector<std::string> found;
    while (all.step(&_error) == Statement::Step::Row)
      for (int column = 0; column < 5; ++column) found.emplace_back(all.text(column));
    return found;
  };
  index();
  const auto inPlace = rows();
  ASSERT_EQ(inPlace.size(), 20u);
  EXPECT_THAT(inPlace[1], testing::SizeIs(16));
  for (auto name : {"a.eml", "b.eml", "c.eml", "empty.eml"})
    ASSERT_TRUE(store().remove(path(name), &_error));
  _settings.imports.isIsolated = true;
  index();
  EXPECT_EQ(imports, 0);  // here
  EXPECT_EQ(rows(), inPlace);
}

TEST_F(IndexRunTest, ChangedFilesAreImportedAgainAndGoneOnesRemoved) {
  write("a.eml", "one");
  write("b.eml", "two");
  write("c.eml", "three");
  index();
  const auto id = idOf("a.eml");
  write("a.eml", "another");
  fs::remove(mail() / "b.eml");
  EXPECT_THAT(index(), ElementsAre("changed a.eml", "removed b.eml"));
  EXPECT_EQ(counts.changed, 1u);
  EXPECT_EQ(counts.removed, 1u);
  EXPECT_EQ(counts.unchanged, 1u);
  EXPECT_THAT(messages(), ElementsAre("a.eml=another", "c.eml=three"));
  EXPECT_EQ(imports, 1);
  EXPECT_EQ(idOf("a.eml"), id);
}

TEST_F(IndexRunTest, AFileReplacedWithTheSameSizeAndTimeIsSeen) {
  write("a.eml", "one");
  write("b.eml", "one");
  index();
  keepingTimes("a.eml", [&] { write("a.eml", "two"); });  // in its place
  keepingTimes("b.eml", [&] {
    write("new", "two");
    rename("new", "b.eml");  // by another file
  });
  EXPECT_THAT(index(), ElementsAre("changed a.eml", "changed b.eml"));
  EXPECT_THAT(messages(), ElementsAre("a.eml=two", "b.eml=two"));
}

TEST_F(IndexRunTest, TheSameContentWithOtherTimesOrInAnotherFileIsNotImportedAgain) {
  for (auto name : {"a.eml", "b.eml", "c.eml"}) write(name, "one");
  index();
  const timespec times[] = {{1, 0}, {1, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, path("a.eml").c_str(), times, 0), 0);
  write("new", "one");
  rename("new", "b.eml");
  fs::permissions(mail() / "c.eml", fs::perms::owner_read);
  for (int i = 0; i < 2; ++i) {
    EXPECT_THAT(index(), IsEmpty());
    EXPECT_EQ(imports, 0);
    EXPECT_EQ(counts.unchanged, 3u);
  }
}

TEST_F(IndexRunTest, AChangeWithinTheStepOfAClockIsSeen) {
  // The times of a file that was written this very moment may be those of the next change too.
  write("a.eml", "one");
  struct stat status;
  ASSERT_EQ(::stat(path("a.eml").c_str(), &status), 0);
  _clock.seconds = static_cast<double>(status.st_ctim.tv_sec) + 1.5;
  index();
  Statement forged(store().database(), "UPDATE file SET hash = x'0000000000000000'");
  ASSERT_TRUE(forged.run(&_error));  // as if the content had been another one then
  EXPECT_THAT(index(), ElementsAre("changed a.eml"));
  EXPECT_THAT(index(), IsEmpty());
  _clock.seconds = 1e10;
  index();  // the same content at last; from now on the time tells
  ASSERT_TRUE(forged.run(&_error));
  EXPECT_THAT(index(), IsEmpty());
}

TEST_F(IndexRunTest, RenamedFilesAndFoldersAreFollowedWithoutImporting) {
  write("a.eml", "one");
  write("in/b.eml", "two");
  write("in/deep/c.eml", "three");
  index();
  const auto id = idOf("in/deep/c.eml");
  rename("a.eml", "z.eml");
  rename("in", "out");
  EXPECT_THAT(index(), UnorderedElementsAre("moved a.eml z.eml", "moved in/b.eml out/b.eml",
                                            "moved in/deep/c.eml out/deep/c.eml"));
  EXPECT_EQ(imports, 0);
  EXPECT_EQ(counts.moved, 3u);
  EXPECT_EQ(idOf("out/deep/c.eml"), id);
  EXPECT_THAT(messages(), ElementsAre("out/b.eml=two", "out/deep/c.eml=three", "z.eml=one"));
  EXPECT_THAT(index(), IsEmpty());
}

TEST_F(IndexRunTest, TheStateOfAMessageInAMaildirFollowsItsName) {
  for (auto folder : {"cur", "new", "tmp"}) fs::create_directory(mail() / folder);
  write("new/1.host", "one");
  write("cur/2.host:2,RS", "two");
  write("plain.eml", "three");
  index();
  EXPECT_THAT(states(), ElementsAre("cur/2.host:2,RS read replied", "new/1.host unread",
                                    "plain.eml unknown"));
  rename("new/1.host", "cur/1.host:2,");
  EXPECT_THAT(index(), ElementsAre("moved new/1.host cur/1.host:2,"));
  EXPECT_THAT(states(), testing::Contains("cur/1.host:2, unread"));
  rename("cur/1.host:2,", "cur/1.host:2,FS");
  rename("cur/2.host:2,RS", "cur/2.host:2,R");
  index();
  EXPECT_EQ(counts.moved, 2u);
  EXPECT_EQ(imports, 0);
  EXPECT_THAT(states(), ElementsAre("cur/1.host:2,FS read flagged", "cur/2.host:2,R unread replied",
                                    "plain.eml unknown"));
}

TEST_F(IndexRunTest, AMessageThatLeavesItsMaildirStaysWhatItWas) {
  for (auto folder : {"cur", "new", "tmp"}) fs::create_directory(mail() / folder);
  write("cur/1.host:2,S", "one");
  index();
  rename("cur/1.host:2,S", "archive/1.eml");
  index();
  EXPECT_EQ(imports, 0);
  EXPECT_THAT(states(), ElementsAre("archive/1.eml read"));
}

TEST_F(IndexRunTest, WhatAnImporterSaysOfAStateHoldsOutsideOfMaildirs) {
  saysRead = true;
  for (auto folder : {"box/cur", "box/new"}) fs::create_directories(mail() / folder);
  write("a.emlx", "one");
  write("box/new/b.emlx", "two");
  write("box/new/c.host", "three");
  index();
  EXPECT_THAT(states(), ElementsAre("a.emlx read", "box/new/b.emlx read", "box/new/c.host unread"));
}

TEST_F(IndexRunTest, AFileMovedAcrossVolumesIsKnownByItsContent) {
  write("a.eml", "one");
  index();
  write("b.eml", "one");  // another file with other times
  fs::remove(mail() / "a.eml");
  EXPECT_THAT(index(), ElementsAre("moved a.eml b.eml"));
  EXPECT_EQ(imports, 0);
}

TEST_F(IndexRunTest, ARenameOntoAnotherFileTakesItsPlace) {
  write("a.eml", "one");
  write("b.eml", "two");
  index();
  rename("b.eml", "a.eml");
  EXPECT_THAT(index(), ElementsAre("moved b.eml a.eml"));
  EXPECT_THAT(messages(), ElementsAre("a.eml=two"));
  EXPECT_EQ(imports, 0);
}

TEST_F(IndexRunTest, AFileThatIsReadInAnotherWayUnderItsNewNameIsImported) {
  write("a.emlx", "one");
  index();
  rename("a.emlx", "a.eml");
  EXPECT_THAT(index(), ElementsAre("added a.eml", "removed a.emlx"));
  EXPECT_EQ(imports, 1);
}

TEST_F(IndexRunTest, ARenamedFileThatWasChangedTooIsImported) {
  write("a.eml", "one");
  index();
  rename("a.eml", "b.eml");
  keepingTimes("b.eml", [&] { write("b.eml", "two"); });
  EXPECT_THAT(index(), ElementsAre("added b.eml", "removed a.eml"));
  EXPECT_THAT(messages(), ElementsAre("b.eml=two"));
}

TEST_F(IndexRunTest, MovesBetweenTwoRootsAreFollowed) {
  write("a/1.eml", "one");
  write("b/2.eml", "two");
  const std::vector<std::string> roots{path("a"), path("b")};
  index(roots);
  rename("b/2.eml", "a/2.eml");
  EXPECT_THAT(index(roots), ElementsAre("moved b/2.eml a/2.eml"));
}

TEST_F(IndexRunTest, OnlyWhatLiesBelowTheRootsIsRemoved) {
  for (auto name : {"a/1.eml", "ab/2.eml", "b/3.eml"}) write(name, name);
  index();
  for (auto name : {"a/1.eml", "ab/2.eml", "b/3.eml"}) fs::remove(mail() / name);
  EXPECT_THAT(index({path("a")}), ElementsAre("removed a/1.eml"));
  EXPECT_THAT(messages(), ElementsAre("ab/2.eml=ab/2.eml", "b/3.eml=b/3.eml"));
}

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

TEST_F(IndexRunTest, MuchWorkIsDoneWithoutBeingKept) {
  _settings.mostKept = 3;
  _settings.batch.files = 2;
  for (int i = 0; i < 10; ++i) write("a/" + std::to_string(i) + ".eml", std::to_string(i));
  EXPECT_EQ(index().size(), 10u);
  EXPECT_EQ(counts.added, 10u);
  rename("a", "0");
  for (int i = 0; i < 10; ++i) write("b/" + std::to_string(i) + ".eml", "b" + std::to_string(i));
  index();
  EXPECT_EQ(counts.moved, 10u);
  EXPECT_EQ(counts.added, 10u);
  EXPECT_EQ(counts.removed, 0u);
  EXPECT_EQ(messages().size(), 20u);
  EXPECT_THAT(index(), IsEmpty());
}

TEST_F(IndexRunTest, SearchesSeeWhatWasCommittedWhileTheRunGoesOn) {
  _settings.batch.files = 2;
  for (auto name : {"1.eml", "2.eml", "3.eml", "4.eml", "5.eml"}) write(name, name);
  store();
  auto reader = StoreReader::open((_folder / "mail.db").string(), &_error);
  ASSERT_TRUE(reader);
  std::vector<std::int64_t> seen;
  afterEvent = [&](const std::string&) {
    seen.push_back(reader->database().integer("SELECT count(*) FROM message", &_error).value());
  };
  index();
  EXPECT_THAT(seen, ElementsAre(0, 2, 2, 4, 4));
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

TEST_F(IndexRunTest, ASingleFileOfAnyNameIsARoot) {
  write("letter.txt", "one");
  EXPECT_THAT(index({path("letter.txt")}), ElementsAre("added letter.txt"));
  EXPECT_THAT(index({path("letter.txt")}), IsEmpty());
  fs::remove(mail() / "letter.txt");
  EXPECT_THAT(index({path("letter.txt")}), ElementsAre("kept letter.txt"));
}

TEST_F(IndexRunTest, OddNamesAreStoredByteForByte) {
  const std::vector<std::string> names{"caf\xE9.eml", "line\nfeed.eml", "%s.eml", "'\"\\.eml",
                                       "ä€😀.eml"};
  for (const auto& name : names) write(name, "x");
  EXPECT_EQ(index().size(), names.size());
  for (const auto& name : names) EXPECT_NE(idOf(name), 0) << name;
  EXPECT_THAT(index(), IsEmpty());
}

TEST_F(IndexRunTest, AnySequenceOfChangesEndsInWhatTheFoldersHold) {
  // Whatever happened between two runs, the store holds what the folders hold.
  unsigned random = 1;
  const auto next = [&](unsigned limit) {
    random = random * 1664525 + 1013904223;
    return (random >> 8) % limit;
  };
  const auto name = [&] {
    return std::string(1, static_cast<char>('a' + next(3))) + "/" + std::to_string(next(6)) +
           ".eml";
  };
  for (int round = 0; round < 60; ++round) {
    _settings.mostKept = next(2) ? 100 : 2;
    for (unsigned change = next(6); change > 0; --change) {
      const std::string one = name(), other = name();
      const bool isThere = fs::exists(mail() / one);
      switch (next(5)) {
        case 0:
        case 1:
          write(one, std::to_string(next(40)));
          break;
        case 2:
          fs::remove(mail() / one);
          break;
        case 3:
          if (isThere) rename(one, other);
          break;
        case 4:
          if (isThere) keepingTimes(one, [&] { write(one, std::to_string(10 + next(40))); });
      }
    }
    index();
    std::set<std::string> expected;
    for (const auto& entry : fs::recursive_directory_iterator(mail())) {
      if (!entry.is_regular_file()) continue;
      std::ifstream file(entry.path());
      expected.insert(entry.path().string().substr(mail().string().size() + 1) + "=" +
                      std::string{std::istreambuf_iterator<char>(file), {}});
    }
    const auto held = messages();
    ASSERT_EQ(std::set<std::string>(held.begin(), held.end()), expected) << "round " << round;
  }
  const auto findings = checkStore((_folder / "mail.db").string(), &_error);
  ASSERT_TRUE(findings);
  EXPECT_THAT(*findings, IsEmpty());
}

}  // namespace
}  // namespace kbx
