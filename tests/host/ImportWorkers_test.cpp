#include "host/workers/ImportWorkers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

#include "host/console/Interruption.h"
#include "platform/files/SystemFiles.h"
#include "platform/logging/NSLog.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/FakeImporter.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

const char kImporter[] = FERNCASE_SPOTLIGHT_DIR "/FerncaseSpotlightImporter.mdimporter";

/// What became of an input: its attributes' text, or "!" and the reason.
struct Taken {
  std::string path, text;
};

class ImportWorkersTest : public testing::Test {
 protected:
  ImportWorkersTest() { _settings.inputs = {_folder.path().string()}; }

  /// Puts the name of the file into the attributes, unless `deed` does something else.
  void fake(std::function<bool(const std::string& name, NSMutableDictionary*)> deed = nullptr) {
    _fake.emplace([deed](NSMutableDictionary* attributes, NSString*, NSURL* url) {
      const std::string path = url->fileSystemRepresentation();
      const std::string name = path.substr(path.rfind('/') + 1);
      attributes->setObjectForKey(NSString::stringWithLossyUTF8(name), "name"_ns);
      return !deed || deed(name, attributes);
    });
    _settings.importer = _fake->bundle()->fileSystemRepresentation();
  }
  std::string file(const std::string& name) const {
    _folder.write(name, name);
    return (_folder / name).string();
  }
  std::vector<std::string> files(int count) const {
    std::vector<std::string> paths;
    for (int i = 0; i < count; ++i) paths.push_back(file(std::to_string(i) + ".eml"));
    return paths;
  }
  static std::string name(const Taken& taken) {
    return taken.path.substr(taken.path.rfind('/') + 1);
  }

  std::vector<Taken> run(ImportWorkers& workers, std::vector<std::string> paths) {
    std::vector<Taken> taken;
    std::size_t position = 0;
    workers.run(
        [&]() -> std::optional<Input> {
          if (position == paths.size()) return std::nullopt;
          return Input{paths[position++], nullptr};
        },
        [&](const Input& input, NSDictionary* attributes, NSError* error) {
          EXPECT_NE(attributes == nullptr, error == nullptr);
          taken.push_back({input.path, attributes ? text(attributes->objectForKey("name"_ns))
                                                  : "!" + text(error->localizedDescription())});
          if (attributes) _last = attributes;
        });
    return taken;
  }
  std::vector<Taken> run(std::vector<std::string> paths) {
    ImportWorkers workers(_settings);
    return run(workers, std::move(paths));
  }

  TemporaryFolder _folder;
  ImportSettings _settings;
  std::optional<FakeImporter> _fake;
  Ref<NSDictionary> _last;
};

TEST_F(ImportWorkersTest, EveryInputIsTakenInItsOrder) {
  fake();
  const auto paths = files(300);
  for (unsigned workers : {1U, 2U, 5U}) {
    _settings.workers = workers;
    const auto taken = run(paths);
    ASSERT_EQ(taken.size(), paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i) {
      EXPECT_EQ(taken[i].path, paths[i]);
      EXPECT_EQ(taken[i].text, name(taken[i]));
    }
  }
}

TEST_F(ImportWorkersTest, ASlowMessageDoesNotChangeTheOrder) {
  fake([](const std::string& name, auto*) {
    if (name == "0.eml") std::this_thread::sleep_for(std::chrono::milliseconds(100));
    return true;
  });
  _settings.workers = 2;
  const auto taken = run(files(50));
  ASSERT_EQ(taken.size(), 50u);
  for (std::size_t i = 0; i < taken.size(); ++i)
    EXPECT_EQ(taken[i].text, std::to_string(i) + ".eml");
}

TEST_F(ImportWorkersTest, NothingToImportIsNoWork) {
  fake();
  EXPECT_TRUE(run({}).empty());
}

/// Makes of a message the content that it had before the import and the name that the importer gave
/// it; refuses "b.eml".
class ContentMaker final : public MessageMaker {
 public:
  void begin(const std::string& contents) override {
    std::ifstream file(contents);
    _content.assign(std::istreambuf_iterator<char>(file), {});
  }
  std::optional<std::string> make(NSDictionary* attributes, Ref<NSError>* error) override {
    const std::string name = text(attributes->objectForKey("name"_ns));
    if (name != "b.eml") return _content + " " + name + std::string(_content.size() * 1000, '.');
    *error = posixError(EDOM);
    return std::nullopt;
  }

 private:
  std::string _content;
};

TEST_F(ImportWorkersTest, WhatIsMadeInWorkersIsWhatIsMadeInPlace) {
  // Files that are changed by their import, so that the order of both shows.
  fake([this](const std::string& name, auto*) {
    _folder.write(name, "changed");
    return name != "c.eml";
  });
  _settings.maker = std::make_shared<ContentMaker>();
  _settings.isStagedPrivately = false;
  std::vector<std::string> all[2];
  for (bool isIsolated : {false, true}) {
    _settings.isIsolated = isIsolated;
    const std::vector<std::string> paths{file("a.eml"), file("b.eml"), file("c.eml"),
                                         file("a long name.eml")};
    ImportWorkers workers(_settings);
    std::size_t position = 0;
    workers.runMaking(
        [&]() -> std::optional<Input> {
          if (position == paths.size()) return std::nullopt;
          return Input{paths[position++], nullptr};
        },
        [&](const Input&, const std::string& made, NSError* error) {
          EXPECT_NE(made.empty(), error == nullptr);
          all[isIsolated].push_back(error ? "!" + text(error->localizedDescription()) : made);
        });
  }
  ASSERT_EQ(all[1].size(), 4u);
  EXPECT_THAT(all[1][0], StartsWith("a.eml a.eml..."));
  EXPECT_EQ(all[1][1], "!" + text(posixError(EDOM)->localizedDescription()));
  EXPECT_THAT(all[1][2], StartsWith("!"));
  EXPECT_THAT(all[1][3], StartsWith("a long name.eml a long name.eml..."));
  EXPECT_EQ(all[0], all[1]);
}

TEST_F(ImportWorkersTest, ErrorsOfInputsArePassedOnInTheirOrder) {
  fake();
  for (bool isIsolated : {false, true}) {
    _settings.isIsolated = isIsolated;
    ImportWorkers workers(_settings);
    std::vector<std::string> told;
    int count = 0;
    workers.run(
        [&]() -> std::optional<Input> {
          if (count == 3) return std::nullopt;
          if (++count == 2) return Input{"folder", posixError(EACCES)};
          return Input{file("a.eml"), nullptr};
        },
        [&](const Input& input, NSDictionary*, NSError* error) {
          told.push_back(error ? input.path : "");
        });
    EXPECT_THAT(told, ElementsAre("", "folder", ""));
  }
}

TEST_F(ImportWorkersTest, InputsAreAskedForOnlySoFarAhead) {
  fake();
  _settings.workers = 2;
  const std::string path = file("a.eml");
  ImportWorkers workers(_settings);
  std::size_t asked = 0, taken = 0, furthest = 0;
  workers.run(
      [&]() -> std::optional<Input> {
        furthest = std::max(furthest, ++asked - taken);
        if (asked > 2000) return std::nullopt;
        return Input{path, nullptr};
      },
      [&](auto&&...) { ++taken; });
  EXPECT_EQ(taken, 2000u);
  EXPECT_LE(furthest, 257u);
  EXPECT_GE(furthest, 4u) << "no batches are made";
}

TEST_F(ImportWorkersTest, WhatIsRaisedEndsTheRunAndAnotherOneMayFollow) {
  fake();
  _settings.workers = 2;
  ImportWorkers workers(_settings);
  const std::string path = file("a.eml");
  for (int round = 0; round < 2; ++round)
    EXPECT_THROW(workers.run(
                     [&] {
                       return std::optional(Input{path, nullptr});
                     },
                     [](auto&&...) { throw std::logic_error("enough"); }),
                 std::logic_error);
  EXPECT_EQ(run(workers, {path, path}).size(), 2u);
}

TEST_F(ImportWorkersTest, EveryKindOfValueArrivesAsItIs) {
  auto values = NSMutableDictionary::dictionary();
  values->setObjectForKey("kind"_ns, "name"_ns);
  values->setObjectForKey(NSString::stringWithUTF16(u"a\xD800z\xDCE9"), "surrogates"_ns);
  values->setObjectForKey(NSNull::null(), "nothing"_ns);
  values->setObjectForKey(NSNumber::numberWithBool(true), "truth"_ns);
  values->setObjectForKey(NSNumber::numberWithUnsignedInteger(UINT64_MAX), "large"_ns);
  values->setObjectForKey(NSDate::dateWithTimeIntervalSinceReferenceDate(0.25), "date"_ns);
  values->setObjectForKey(NSArray::arrayWithObjects({data("\0x")}), "list"_ns);
  fake([&](auto&, NSMutableDictionary* attributes) {
    for (const auto& [key, value] : *values) attributes->setObjectForKey(value, key);
    return true;
  });
  run({file("a.eml")});
  EXPECT_TRUE(isEqual(_last, values));
}

TEST_F(ImportWorkersTest, AnErrorArrivesWithDomainCodeAndDescription) {
  fake([](auto&, auto*) {
    NSLog("FerncaseSpotlightImporter error %@ for file %@"_ns,
          "<NSError Domain=D Code=7 UserInfo={\n    NSLocalizedDescription = \"Bad\"\n    }>"_ns,
          "/a"_ns);
    return false;
  });
  ImportWorkers workers(_settings);
  bool isGiven = false;
  workers.run(
      [&]() -> std::optional<Input> {
        if (std::exchange(isGiven, true)) return std::nullopt;
        return Input{file("a.eml"), nullptr};
      },
      [&](const Input&, NSDictionary*, NSError* error) {
        ASSERT_TRUE(error);
        EXPECT_EQ(text(error->domain()), "D");
        EXPECT_EQ(error->code(), 7);
        EXPECT_EQ(text(error->localizedDescription()), "Bad");
      });
}

TEST_F(ImportWorkersTest, LinesOfTheLogAreShownInTheOrderOfTheInputs) {
  StringOutput shown;
  Diagnostics diagnostics(shown);
  fake([](const std::string& name, auto*) {
    NSLog("at %@"_ns, NSString::stringWithLossyUTF8(name).get());
    if (name == "2.eml") std::abort();
    return true;
  });
  _settings.log = &diagnostics;
  _settings.workers = 3;
  run(files(4));
  EXPECT_EQ(shown.text(), "log: at 0.eml\nlog: at 1.eml\nlog: at 2.eml\nlog: at 3.eml\n");
}

TEST_F(ImportWorkersTest, TooMuchTimeOfTheProcessorIsToldAsSuch) {
  fake([](const std::string& name, auto*) {
    const volatile bool isGoingOn = name == "1.eml";
    while (isGoingOn) continue;
    return true;
  });
  _settings.limits.processorSeconds = 1;
  const auto taken = run(files(3));
  ASSERT_EQ(taken.size(), 3u);
  EXPECT_EQ(taken[0].text, "0.eml");
  EXPECT_EQ(taken[1].text,
            "!The importer took more than 1 second of the processor’s time and was stopped.");
  EXPECT_EQ(taken[2].text, "2.eml");
}

TEST_F(ImportWorkersTest, ResultsThatWaitWhenAWorkerEndsAreNotLost) {
  fake([](const std::string& name, auto*) {
    if (name == "20.eml") std::abort();
    return true;
  });
  _settings.workers = 1;
  const auto taken = run(files(40));
  ASSERT_EQ(taken.size(), 40u);
  for (std::size_t i = 0; i < taken.size(); ++i)
    EXPECT_EQ(taken[i].text,
              i == 20 ? "!The importer crashed (SIGABRT)." : std::to_string(i) + ".eml");
}

TEST_F(ImportWorkersTest, AnImporterThatCannotBeLoadedIsNamedWithTheReason) {
  for (bool isIsolated : {false, true}) {
    _settings.isIsolated = isIsolated;
    _settings.importer = "/gone.mdimporter";
    ImportWorkers workers(_settings);
    std::string path, reason;
    EXPECT_FALSE(workers.load(&path, &reason));
    EXPECT_EQ(path, "/gone.mdimporter");
    EXPECT_THAT(reason, StartsWith("No such file or directory"));
  }
}

/// Plug-in services in which no bundle survives being loaded.
class CrashingServices final : public PlugInServices {
 public:
  Ref<PlugIn> create(NSURL*) override { std::abort(); }
  Ref<NSArray> findFactories(NSUUID*, PlugIn*) override { return nullptr; }
  void* createInstance(NSUUID*, NSUUID*) override { return nullptr; }
  void addInstance(NSUUID*) override {}
  void removeInstance(NSUUID*) override {}
  std::string failureReason(NSURL*) override { return {}; }
};

TEST_F(ImportWorkersTest, AnImporterThatCrashesWhileItIsLoadedIsToldAtOnce) {
  CrashingServices services;
  const ScopedService<PlugInServices> installed(services);
  _settings.importer = "/a.mdimporter";
  ImportWorkers workers(_settings);
  std::string path, reason;
  EXPECT_FALSE(workers.load(&path, &reason));
  EXPECT_EQ(path, "/a.mdimporter");
  EXPECT_EQ(reason, "The importer crashed (SIGABRT).");
  const auto taken = run(workers, files(2));
  ASSERT_EQ(taken.size(), 2u);
  EXPECT_THAT(taken[1].text, HasSubstr("crashed"));
}

TEST_F(ImportWorkersTest, AFileThatTookThePlaceOfANamedOneIsRead) {
  fake();
  const std::string path = file("a.eml");
  _settings.inputs = {path};
  ImportWorkers workers(_settings);
  std::string ignored;
  ASSERT_TRUE(workers.load(&ignored, &ignored));  // now the worker knows what it may read
  _folder.write("new", "text");
  std::filesystem::rename(_folder / "new", path);
  const auto taken = run(workers, {path});
  EXPECT_EQ(taken.at(0).text, "a.eml");
}

TEST(ImportWorkersDeathTest, AfterAWishToEndTheInputInHandIsTheLast) {
  EXPECT_EXIT(
      {
        const TemporaryFolder folder;
        FakeImporter fake([](auto&&...) { return true; });
        ImportSettings settings;
        settings.inputs = {folder.path().string()};
        settings.importer = fake.bundle()->fileSystemRepresentation();
        folder.write("a.eml", "");
        int taken = 0;
        {
          const Interruption noted;
          ImportWorkers workers(settings);
          workers.run(
              [&] {
                return std::optional(Input{(folder / "a.eml").string(), nullptr});
              },
              [&](auto&&...) {
                if (++taken == 5) std::raise(SIGTERM);
              });
        }
        std::_Exit(taken);
      },
      testing::ExitedWithCode(5), "");
}

/// The operating system with one fault, in the first file of a certain name that is asked for it.
class FaultyFiles final : public SystemFiles {
 public:
  enum class Call : std::uint8_t { Open, Read, Grow, Write };
  FaultyFiles(Call call, std::string part, std::int64_t fault)
      : _call(call), _part(std::move(part)), _fault(fault) {}

  int open(const std::string& path, Opening how) override {
    const bool isMeant = path.find(_part) != path.npos;
    if (isMeant && _call == Call::Open && how != Opening::Reading && isFirst())
      return static_cast<int>(_fault);
    const int descriptor = SystemFiles::open(path, how);
    if (isMeant) _descriptor = descriptor;
    return descriptor;
  }
  std::int64_t read(int descriptor, void* buffer, std::size_t size) override {
    const bool isMeant = descriptor == _descriptor;
    if (isMeant && _call == Call::Read && isFirst()) return _fault;
    const std::int64_t count = SystemFiles::read(descriptor, buffer, size);
    if (!isMeant || _call != Call::Grow || count != 0 || !isFirst()) return count;
    return std::string_view("more").copy(static_cast<char*>(buffer), size);
  }
  std::int64_t write(int descriptor, const void* bytes, std::size_t size) override {
    if (descriptor == _descriptor && _call == Call::Write && isFirst()) return _fault;
    return SystemFiles::write(descriptor, bytes, size);
  }
  int close(int descriptor) override {
    if (descriptor == _descriptor) _descriptor = -1;
    return SystemFiles::close(descriptor);
  }

 private:
  bool isFirst() { return !std::exchange(_hasFailed, true); }

  const Call _call;
  const std::string _part;
  const std::int64_t _fault;
  int _descriptor = -1;
  bool _hasFailed = false;
};

/// The whole road with the tests' own mail importer.
class ImportRoadTest : public ImportWorkersTest {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(kImporter)) GTEST_SKIP() << "no importer is built";
    _settings.importer = kImporter;
    _settings.workers = 1;
    for (auto name : {"a", "b", "c"})
      _folder.write(std::string(name) + ".eml", "Subject: " + std::string(name) + "\n\nbody");
  }
  /// What is told of the one message that fails; it must be one.
  std::string failureAmongThree() {
    std::string reason;
    int failed = 0;
    for (const Taken& taken : run(paths()))
      if (taken.text.starts_with('!')) {
        ++failed;
        reason = taken.text.substr(1);
      }
    EXPECT_EQ(failed, 1);
    return reason;
  }
  std::vector<std::string> paths() const {
    return {(_folder / "a.eml").string(), (_folder / "b.eml").string(),
            (_folder / "c.eml").string()};
  }

 private:
  FakeEnvironment _environment{{"KBX_SYSTEM_ROOT=" FERNCASE_BUNDLES_DIR "/root"}};
  ScopedService<Environment> _installed{_environment};
};

TEST_F(ImportRoadTest, AFaultWhileStagingCostsItsMessageAlone) {
  struct Case {
    FaultyFiles::Call call;
    int number;
    const char* reason;
  };
  for (auto [call, number, reason] :
       {Case{FaultyFiles::Call::Write, ENOSPC, "there isn’t enough space"},
        {FaultyFiles::Call::Open, EROFS, "read only"}})
    for (bool isIsolated : {false, true}) {
      SCOPED_TRACE(reason);
      _settings.isIsolated = isIsolated;
      FaultyFiles files(call, ".temp-KBXEMLXFile-", -number);
      const ScopedService<FileSystem> installed(files);
      EXPECT_THAT(failureAmongThree(), HasSubstr(reason));
    }
}

TEST_F(ImportRoadTest, AMessageThatCannotBeReadToItsEndFails) {
  for (bool isIsolated : {false, true}) {
    _settings.isIsolated = isIsolated;
    FaultyFiles files(FaultyFiles::Call::Read, "b.eml", -EIO);
    const ScopedService<FileSystem> installed(files);
    EXPECT_THAT(failureAmongThree(), HasSubstr("Input/output error"));
  }
}

TEST_F(ImportRoadTest, AMessageThatGrowsWhileItIsReadIsDelivered) {
  for (bool isIsolated : {false, true}) {
    _settings.isIsolated = isIsolated;
    FaultyFiles files(FaultyFiles::Call::Grow, "b.eml", 0);
    const ScopedService<FileSystem> installed(files);
    for (const Taken& taken : run(paths())) EXPECT_FALSE(taken.text.starts_with('!')) << taken.text;
  }
}

TEST_F(ImportRoadTest, AMessageThatVanishesFails) {
  for (bool isIsolated : {false, true}) {
    _settings.isIsolated = isIsolated;
    SetUp();
    ImportWorkers workers(_settings);
    std::string ignored;
    ASSERT_TRUE(workers.load(&ignored, &ignored));
    std::filesystem::remove(_folder / "b.eml");
    const auto taken = run(workers, paths());
    ASSERT_EQ(taken.size(), 3u);
    EXPECT_THAT(taken[1].text, HasSubstr("there is no such file"));
    EXPECT_FALSE(taken[2].text.starts_with('!'));
  }
}

}  // namespace
}  // namespace kbx
