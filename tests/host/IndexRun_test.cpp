#include "host/index/IndexRun.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <set>

#include "host/store/Maintenance.h"
#include "tests/host/IndexRunFixture.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

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

TEST_F(IndexRunTest, OnlyWhatLiesBelowTheRootsIsRemoved) {
  for (auto name : {"a/1.eml", "ab/2.eml", "b/3.eml"}) write(name, name);
  index();
  for (auto name : {"a/1.eml", "ab/2.eml", "b/3.eml"}) fs::remove(mail() / name);
  EXPECT_THAT(index({path("a")}), ElementsAre("removed a/1.eml"));
  EXPECT_THAT(messages(), ElementsAre("ab/2.eml=ab/2.eml", "b/3.eml=b/3.eml"));
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
