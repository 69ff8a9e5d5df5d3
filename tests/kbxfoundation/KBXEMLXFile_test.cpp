#include "KBXEMLXFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <stdexcept>
#include <thread>

#include "KBXException.h"
#include "NSError+KBXKeys.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSError.h"
#include "platform/objects/NSNull.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"
#include "platform/plugins/PlugInServices.h"
#include "tests/support/FailingFiles.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/FakeOperatingSystem.h"
#include "tests/support/FakeProcessIdentity.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

const char kEmptyList[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n"
    "<dict/>\n"
    "</plist>\n";

std::string written(NSData* message, NSDictionary* properties) {
  TemporaryFolder folder;
  auto file = KBXEMLXFile::initWithMessageData(message, properties);
  EXPECT_TRUE(file->writeToURL(folder.url("a.emlx"), nullptr));
  return folder.read("a.emlx");
}

std::string written(std::string_view eml) {
  TemporaryFolder folder;
  auto file = KBXEMLXFile::initWithEMLURL(folder.write("a.eml", eml), nullptr);
  EXPECT_TRUE(file->writeToURL(folder.url("a.emlx"), nullptr));
  return folder.read("a.emlx");
}

std::vector<std::string> frames(NSError* error) {
  std::vector<std::string> result;
  if (auto* list = cast<NSArray>(error->userInfo()->objectForKey("KBXStackFrames"_ns)))
    for (const auto& frame : *list) result.push_back(text(frame));
  return result;
}

template <class Block>
std::string reasonOf(Block block) {
  try {
    block();
  } catch (const Raised& raised) {
    EXPECT_EQ(text(raised.exception()->name()), "KBXAssertionFailedException");
    return text(raised.exception()->reason());
  }
  return "nothing was raised";
}

// ---- The file ----------------------------------------------------------------------------

TEST(KBXEMLXFile, TheLayoutIsCountMessageAndProperties) {
  EXPECT_EQ(written("Subject: x\n\nbody\n"), std::string("17\nSubject: x\n\nbody\n") + kEmptyList);
}

TEST(KBXEMLXFile, AnEmptyMessageIsCountedAsZero) {
  EXPECT_EQ(written(""), std::string("0\n") + kEmptyList);
}

TEST(KBXEMLXFile, NoLineFeedIsAddedBehindTheMessage) {
  EXPECT_EQ(written("no final break"), std::string("14\nno final break") + kEmptyList);
}

TEST(KBXEMLXFile, TheCountIsThatOfTheNormalisedBytes) {
  EXPECT_EQ(written("a\r\nb\r\n"), std::string("4\na\nb\n") + kEmptyList);
  EXPECT_EQ(written("a\rb\r"), std::string("4\na\nb\n") + kEmptyList);
  EXPECT_EQ(written("a\r\r\nb"), std::string("4\na\n\nb") + kEmptyList);
}

TEST(KBXEMLXFile, BytesThatAreNoTextStayAsTheyAre) {
  const std::string bytes("\0\xFF\x80 a\0", 6);
  EXPECT_EQ(written(bytes), "6\n" + bytes + kEmptyList);
}

TEST(KBXEMLXFile, PropertiesAreWrittenAsAnXMLPropertyList) {
  auto properties = NSDictionary::dictionaryWithPairs({{"flags"_ns, "x"_ns}});
  EXPECT_NE(written(data("m"), properties).find("<key>flags</key>\n\t<string>x</string>"),
            std::string::npos);
}

TEST(KBXEMLXFile, BothFieldsAreImmutableCopies) {
  auto message = NSMutableData::data();
  message->appendBytes("old");
  auto properties = NSMutableDictionary::dictionary();
  auto file = KBXEMLXFile::initWithMessageData(message, properties);
  message->appendBytes("new");
  properties->setObjectForKey("b"_ns, "a"_ns);
  EXPECT_EQ(text(file->messageData()), "old");
  EXPECT_EQ(file->properties()->count(), 0u);
}

TEST(KBXEMLXFile, AMissingFieldIsAProgrammingError) {
  RecordingLog log;
  EXPECT_EQ(reasonOf([] { KBXEMLXFile::initWithMessageData(nullptr, nullptr); }),
            "Precondition Failed: messageData at KBXEMLXFile:14 -initWithMessageData:properties:");
  EXPECT_EQ(reasonOf([] { KBXEMLXFile::initWithMessageData(data(""), nullptr); }),
            "Precondition Failed: properties at KBXEMLXFile:15 -initWithMessageData:properties:");
  auto file = KBXEMLXFile::initWithMessageData(data(""), NSDictionary::dictionary());
  EXPECT_EQ(reasonOf([&] { file->writeToURL(nullptr, nullptr); }),
            "Precondition Failed: emlxURL at KBXEMLXFile:38 -writeToURL:error:");
  EXPECT_EQ(log.lines().front(),
            "KBXEMLXFile:14 -initWithMessageData:properties:: Assertion Failed: "
            "Precondition Failed: messageData");
}

TEST(KBXEMLXFile, AReadErrorIsPassedUpWithoutAFrame) {
  TemporaryFolder folder;
  Ref<NSError> error;
  EXPECT_EQ(KBXEMLXFile::initWithEMLURL(folder.url("none.eml"), &error), nullptr);
  EXPECT_EQ(error->code(), 260);
  EXPECT_EQ(frames(error), std::vector<std::string>{});
}

TEST(KBXEMLXFile, PropertiesThatCannotBeSerialisedLeaveTheDestinationUntouched) {
  TemporaryFolder folder;
  auto url = folder.write("a.emlx", "as it was");
  auto properties = NSDictionary::dictionaryWithPairs({{"a"_ns, NSNull::null()}});
  auto file = KBXEMLXFile::initWithMessageData(data("m"), properties);
  EXPECT_FALSE(file->writeToURL(url, nullptr));
  Ref<NSError> error;
  EXPECT_FALSE(file->writeToURL(url, &error));
  EXPECT_EQ(frames(error).front(), "-[KBXEMLXFile writeToURL:error:] (42)");
  EXPECT_EQ(frames(error).back(),
            "+[NSPropertyListSerialization(KBX) kbxDataFromPropertyList:format:error:] (21)");
  EXPECT_EQ(folder.read("a.emlx"), "as it was");
}

TEST(KBXEMLXFile, AWriteErrorIsPassedUpWithoutAFrame) {
  TemporaryFolder folder;
  auto file = KBXEMLXFile::initWithMessageData(data("m"), NSDictionary::dictionary());
  Ref<NSError> error;
  EXPECT_FALSE(file->writeToURL(folder.url("none/a.emlx"), &error));
  EXPECT_EQ(error->code(), 4);
  EXPECT_EQ(frames(error), std::vector<std::string>{});
}

// ---- Whether the mail importer may be loaded -----------------------------------------------

/// A system, an environment and a process that a test chooses.
struct World {
  FakeOperatingSystem system;
  FakeEnvironment environment;
  FakeProcessIdentity process;
  ScopedService<OperatingSystem> installedSystem{system};
  ScopedService<Environment> installedEnvironment{environment};
  ScopedService<ProcessIdentity> installedProcess{process};

  /// macOS 10.7, on which processes are not sandboxed by themselves.
  static World old() { return World(833.1, {10, 7, 5}); }
  World(double foundation, NSOperatingSystemVersion version) : system(foundation, version) {}
};

TEST(KBXEMLXFile, EveryProcessSince10_8CountsAsSandboxed) {
  World world(945.0, {10, 8, 0});
  EXPECT_TRUE(KBXEMLXFile::isInSpotlightSandbox());
  EXPECT_TRUE(KBXEMLXFile::shouldDisableMailImporter());
}

TEST(KBXEMLXFile, BeforeThatTheInjectedFrameworkIsTheSign) {
  struct Case {
    const char* variable;
    bool isSandboxed;
  };
  for (auto [variable, isSandboxed] :
       {Case{"DYLD_INSERT_LIBRARIES=/S/Metadata.framework/Support", true},
        {"DYLD_INSERT_LIBRARIES=Metadata.framework", true},
        {"DYLD_INSERT_LIBRARIES=/S/metadata.framework/Support", false},
        {"DYLD_INSERT_LIBRARIES=", false},
        {"OTHER=Metadata.framework", false}}) {
    SCOPED_TRACE(variable);
    World world = World::old();
    world.environment.entries = {variable};
    EXPECT_EQ(KBXEMLXFile::isInSpotlightSandbox(), isSandboxed);
    EXPECT_EQ(KBXEMLXFile::shouldDisableMailImporter(), isSandboxed);
  }
}

TEST(KBXEMLXFile, AProcessWhoseNameBeginsWithCurioNeverLoadsTheMailImporter) {
  struct Case {
    const char* name;
    bool isDisabled;
  };
  for (auto [name, isDisabled] :
       {Case{"Curio", true}, {"CurioX", true}, {"curio", false}, {"MyCurio", false}, {"", false}}) {
    SCOPED_TRACE(name);
    World world = World::old();
    world.process.name = name;
    EXPECT_FALSE(KBXEMLXFile::isInSpotlightSandbox());
    EXPECT_EQ(KBXEMLXFile::shouldDisableMailImporter(), isDisabled);
  }
}

// ---- The answer without the mail importer ---------------------------------------------------

TEST(KBXEMLXFile, WithoutForceTheAnswerIsTheRawTextAlone) {
  TemporaryFolder folder;
  const std::string eml = "Subject: =?utf-8?q?x?=\r\n\r\nGrüße\rb\n";
  auto url = folder.write("a.eml", eml);
  RecordingLog log;
  Ref<NSError> error;
  auto attributes = KBXEMLXFile::metadataForEMLURL(url, false, &error);
  ASSERT_EQ(attributes->count(), 1u);
  EXPECT_EQ(text(attributes->objectForKey("kMDItemTextContent"_ns)), eml);
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(log.lines(), std::vector<std::string>{});
  EXPECT_EQ(folder.count(), 1u);
}

TEST(KBXEMLXFile, WithoutForceWhatCannotBeReadIsEmptyTextAndSuccess) {
  TemporaryFolder folder;
  folder.write("odd.eml", std::string("\x80\x81\xFF\xFE\x00\x9D\x8F", 7));
  RecordingLog log;
  for (const char* name : {"none.eml", "odd.eml", "."}) {
    SCOPED_TRACE(name);
    Ref<NSError> error;
    auto attributes = KBXEMLXFile::metadataForEMLURL(folder.url(name), false, &error);
    ASSERT_EQ(attributes->count(), 1u);
    EXPECT_EQ(text(attributes->objectForKey("kMDItemTextContent"_ns)), "");
    EXPECT_EQ(error, nullptr);
  }
  EXPECT_EQ(log.lines(), std::vector<std::string>{});
}

// ---- The road through the mail importer -----------------------------------------------------

/// Looks the mail importer up among the test bundles.
class Driver : public testing::Test {
 protected:
  static Ref<NSDictionary> import(NSURL* url, Ref<NSError>* error) {
    return KBXEMLXFile::metadataForEMLURL(url, true, error);
  }
  std::string value(NSDictionary* attributes, NSString* key) {
    return attributes ? text(attributes->objectForKey(key)) : "no attributes";
  }

  TemporaryFolder folder;
  FakeEnvironment environment{{std::string("KBX_SYSTEM_ROOT=") + FERNCASE_BUNDLES_DIR "/root"}};
  ScopedService<Environment> installed{environment};
  RecordingLog log;
};

TEST_F(Driver, ForceOverridesTheVeto) {
  auto url = folder.write("a.eml", "Subject: Hello\r\n\r\nThe body\r\n");
  Ref<NSError> error;
  auto attributes = import(url, &error);
  EXPECT_EQ(value(attributes, "kMDItemSubject"_ns), "Hello");
  EXPECT_EQ(value(attributes, "kMDItemTextContent"_ns), "The body\n");
  EXPECT_EQ(value(attributes, "TestMailContentType"_ns), "com.apple.mail.emlx");
  EXPECT_EQ(value(attributes, "TestMailFault"_ns), "(null)");
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(log.lines(), std::vector<std::string>{});
}

TEST_F(Driver, AnUnsandboxedProcessUsesTheMailImporterUnforced) {
  World world = World::old();
  world.environment.entries = environment.entries;
  auto url = folder.write("a.eml", "Subject: Hello\n\nThe body\n");
  auto attributes = KBXEMLXFile::metadataForEMLURL(url, false, nullptr);
  EXPECT_EQ(value(attributes, "kMDItemSubject"_ns), "Hello");
}

TEST_F(Driver, InAHostNamedCurioTheRawTextIsTheAnswerUnlessForced) {
  World world = World::old();
  world.environment.entries = environment.entries;
  auto url = folder.write("a.eml", "Subject: Hello\r\n\r\nThe body\r\n");
  struct Case {
    const char* process;
    bool isForced;
    bool isRaw;
  };
  for (auto [process, isForced, isRaw] :
       {Case{"CurioX", false, true}, {"CurioX", true, false}, {"curio", false, false}}) {
    SCOPED_TRACE(process);
    world.process.name = process;
    auto attributes = KBXEMLXFile::metadataForEMLURL(url, isForced, nullptr);
    EXPECT_EQ(value(attributes, "kMDItemTextContent"_ns),
              isRaw ? "Subject: Hello\r\n\r\nThe body\r\n" : "The body\n");
    EXPECT_EQ(attributes->count() == 1, isRaw);
  }
}

/// A system that counts how often it is asked.
class AskedSystem final : public OperatingSystem {
 public:
  double foundationVersionNumber() override { return ++timesAsked, 1677.104; }
  NSOperatingSystemVersion version() override { return {10, 15, 7}; }
  bool isAvailable(NSOperatingSystemVersion) override { return true; }
  std::optional<std::int32_t> gestalt(OSType) override { return std::nullopt; }

  int timesAsked = 0;
};

TEST_F(Driver, TheVetoIsAskedForAlsoWhenItIsOverridden) {
  AskedSystem system;
  ScopedService<OperatingSystem> installedSystem(system);
  import(folder.url("none.eml"), nullptr);
  EXPECT_EQ(system.timesAsked, 1);
}

TEST_F(Driver, TheTemporaryFileLiesHiddenBesideTheMessageAndIsRemoved) {
  auto url = folder.write("a.eml", "Subject: x\n\nb");
  std::set<std::string> names;
  for (int round = 0; round < 3; ++round) {
    auto attributes = import(url, nullptr);
    std::filesystem::path path = value(attributes, "TestMailPath"_ns);
    EXPECT_EQ(path.parent_path(), folder.path());
    EXPECT_TRUE(path.filename().string().starts_with(".temp-KBXEMLXFile-"));
    EXPECT_EQ(path.extension(), ".emlx");
    names.insert(path.filename());
    EXPECT_EQ(folder.count(), 1u);
  }
  EXPECT_EQ(names.size(), 3u);
}

TEST_F(Driver, AFolderMarkOnTheMessageChangesNothing) {
  folder.write("a.eml", "Subject: x\n\nb");
  auto url = NSURL::fileURLWithPath(string((folder / "a.eml").string()), true);
  EXPECT_EQ(value(import(url, nullptr), "kMDItemSubject"_ns), "x");
  EXPECT_EQ(folder.count(), 1u);
}

TEST_F(Driver, AMessageThatCannotBeReadIsTheCallersToReport) {
  Ref<NSError> error;
  EXPECT_EQ(import(folder.url("none.eml"), &error), nullptr);
  EXPECT_EQ(error->code(), 260);
  EXPECT_EQ(frames(error), std::vector<std::string>{
                               "+[KBXEMLXFile metadataForEMLURL:forceSpotlight:error:] (92)"});
  EXPECT_EQ(import(folder.url("none.eml"), nullptr), nullptr);
  EXPECT_EQ(log.lines(), std::vector<std::string>{});
}

TEST_F(Driver, AFolderThatCannotBeWrittenIsLoggedAndReported) {
  auto url = folder.write("a.eml", "Subject: x\n\nb");
  FailingFiles files;
  files.fail(FailingFiles::Call::Open, EACCES, 1);  // reading works, writing does not
  ScopedService<FileSystem> installedFiles(files);
  Ref<NSError> error;
  EXPECT_EQ(import(url, &error), nullptr);
  EXPECT_EQ(error->code(), 513);
  EXPECT_EQ(frames(error), std::vector<std::string>{
                               "+[KBXEMLXFile metadataForEMLURL:forceSpotlight:error:] (100)"});
  ASSERT_EQ(log.lines().size(), 1u);
  EXPECT_TRUE(log.lines()[0].starts_with(
      "KBXEMLXFile: Error writing .emlx file: Error Domain=NSCocoaErrorDomain Code=513 "));
  EXPECT_EQ(import(url, nullptr), nullptr);
}

TEST_F(Driver, APartialFileOfAFailedWriteIsLeftWhereItIs) {
  auto url = folder.write("a.eml", "Subject: x\n\nb");
  FailingFiles files;
  files.largestWrite = 4;
  files.fail(FailingFiles::Call::Write, ENOSPC, 1);
  ScopedService<FileSystem> installedFiles(files);
  Ref<NSError> error;
  EXPECT_EQ(import(url, &error), nullptr);
  EXPECT_EQ(error->code(), 640);
  EXPECT_EQ(folder.count(), 2u);
}

TEST_F(Driver, AnExceptionOfTheImporterCostsTheMessageOnly) {
  auto url = folder.write("a.eml", "Subject: x\nX-Test: raise\n\nb");
  Ref<NSError> error;
  EXPECT_EQ(import(url, &error), nullptr);
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(log.lines(), (std::vector<std::string>{
                             "KBXEMLXFile: Exception generating metadata: the message asks for it",
                             "KBXEMLXFile: Error indexing: (null)"}));
  EXPECT_EQ(folder.count(), 1u);
}

TEST_F(Driver, AMissingMailImporterLeavesNoError) {
  environment.entries = {"KBX_SYSTEM_ROOT=" + folder.path().string()};
  auto url = folder.write("a.eml", "Subject: x\n\nb");
  Ref<NSError> error;
  EXPECT_EQ(import(url, &error), nullptr);
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(log.lines(), std::vector<std::string>{"KBXEMLXFile: Error indexing: (null)"});
  EXPECT_EQ(folder.count(), 1u);
}

TEST_F(Driver, ATemporaryFileThatStaysIsLoggedAndChangesNothing) {
  auto url = folder.write("a.eml", "Subject: x\n\nb");
  FailingFiles files;
  files.fail(FailingFiles::Call::Remove, EBUSY);
  ScopedService<FileSystem> installedFiles(files);
  Ref<NSError> error;
  EXPECT_EQ(value(import(url, &error), "kMDItemSubject"_ns), "x");
  EXPECT_EQ(error, nullptr);
  ASSERT_EQ(log.lines().size(), 1u);
  EXPECT_TRUE(log.lines()[0].starts_with(
      "KBXEMLXFile: Error removing temporary Spotlight file: Error Domain=NSCocoaErrorDomain "
      "Code=512 "));
}

TEST_F(Driver, TheDriverAddsNothingToTheImportersAnswer) {
  auto url = folder.write("a.eml", "Subject: x\n\nb");
  auto attributes = import(url, nullptr);
  std::set<std::string> keys;
  for (const auto& [key, value] : *attributes) keys.insert(text(key));
  EXPECT_EQ(keys, (std::set<std::string>{"kMDItemSubject", "kMDItemTextContent",
                                         "TestMailContentType", "TestMailPath"}));
}

TEST_F(Driver, AnEmptyMessageIsAMessage) {
  auto attributes = import(folder.write("a.eml", ""), nullptr);
  EXPECT_EQ(value(attributes, "TestMailFault"_ns), "(null)");
  EXPECT_EQ(value(attributes, "kMDItemTextContent"_ns), "");
}

TEST_F(Driver, CallsForOneMessageDoNotGetInEachOthersWay) {
  auto url = folder.write("a.eml", "Subject: x\n\nb");
  std::atomic<int> delivered{0};
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 8; ++i)
      threads.emplace_back([&] {
        for (int round = 0; round < 10; ++round)
          if (value(import(url, nullptr), "kMDItemSubject"_ns) == "x") ++delivered;
      });
  }
  EXPECT_EQ(delivered, 80);
  EXPECT_EQ(folder.count(), 1u);
}

// ---- What other importers may do -------------------------------------------------------------

/// A loader whose bundles fail in ways that no bundle of ours does.
class BrokenServices final : public PlugInServices {
 public:
  explicit BrokenServices(bool raisesForeign) : _raisesForeign(raisesForeign) {}
  Ref<PlugIn> create(NSURL* bundle) override { return _real.create(bundle); }
  Ref<NSArray> findFactories(NSUUID*, PlugIn*) override {
    if (_raisesForeign) throw std::runtime_error("foreign");
    return nullptr;
  }
  void* createInstance(NSUUID*, NSUUID*) override { return nullptr; }
  void addInstance(NSUUID*) override {}
  void removeInstance(NSUUID*) override {}
  std::string failureReason(NSURL*) override { return {}; }

 private:
  PlugInServices& _real = PlugInServices::current();
  bool _raisesForeign;
};

TEST_F(Driver, AnIndexingErrorReachesTheCallerWithoutAFrameOfThisLevel) {
  auto url = folder.write("a.eml", "Subject: x\n\nb");
  BrokenServices services(false);
  ScopedService<PlugInServices> installedServices(services);
  Ref<NSError> error;
  EXPECT_EQ(import(url, &error), nullptr);
  EXPECT_EQ(error->code(), 901);
  EXPECT_EQ(frames(error), std::vector<std::string>{
                               "-[KBXSpotlightImporter metadataForURL:contentType:error:] (33)"});
  EXPECT_EQ(log.lines(), std::vector<std::string>{"KBXEMLXFile: Error indexing: (null)"});
}

TEST_F(Driver, AForeignExceptionPassesThroughAndLeavesTheTemporaryFile) {
  auto url = folder.write("a.eml", "Subject: x\n\nb");
  BrokenServices services(true);
  ScopedService<PlugInServices> installedServices(services);
  EXPECT_THROW(import(url, nullptr), std::runtime_error);
  EXPECT_EQ(folder.count(), 2u);
}

// ---- Real messages ---------------------------------------------------------------------------

TEST(KBXEMLXFile, RealMessagesHaveTheCountsThatOthersCounted) {
  const std::filesystem::path folder = FERNCASE_SOURCE_DIR "/../shared/data/eml";
  if (!std::filesystem::exists(folder / "expected.json"))
    GTEST_SKIP() << "the real messages are not on this machine";
  std::ifstream list(folder / "expected.json");
  const auto expected = nlohmann::json::parse(list);
  int count = 0;
  for (const auto& [name, values] : expected.items()) {
    SCOPED_TRACE(name);
    auto url = NSURL::fileURLWithFileSystemRepresentation((folder / name).string(), false);
    auto file = KBXEMLXFile::initWithEMLURL(url, nullptr);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->messageData()->length(), values.at("bytes_normalised").get<std::size_t>());
    ++count;
  }
  EXPECT_EQ(count, 200);
}

}  // namespace
}  // namespace kbx
