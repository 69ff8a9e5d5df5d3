#include "host/import/FileImporter.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <new>
#include <stdexcept>

#include "host/import/ImportLog.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/FailingFiles.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/FakeImporter.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

/// One file and an importer that does what a test says.
class FileImporterTest : public testing::Test {
 protected:
  Ref<NSDictionary> import(FakeImporter::Import import, bool usesMailImporter = false) {
    FakeImporter fake(std::move(import));
    std::string reason;
    auto bundle = ImporterBundle::load(fake.bundle(), &reason);
    if (!bundle) throw std::runtime_error(reason);
    return FileImporter(*bundle, usesMailImporter).attributesOfFile(_file, nullptr, &_error);
  }
  /// The domain, the code and the description of the error.
  std::string told() const {
    return text(_error->domain()) + " " + std::to_string(_error->code()) + " " +
           text(_error->localizedDescription());
  }

  TemporaryFolder _folder;
  Ref<NSURL> _file = _folder.write("a.eml", "text");
  Ref<NSError> _error;
  ImportLog _log{nullptr};
  ScopedService<ClassicLog> _installed{_log};
};

TEST_F(FileImporterTest, TheImporterIsGivenTheFileAndItsType) {
  auto attributes = import([&](NSMutableDictionary* found, NSString* type, NSURL* url) {
    EXPECT_EQ(found->count(), 0u);
    EXPECT_EQ(text(type), "com.apple.mail.email");
    EXPECT_TRUE(isEqual(url, _file));
    found->setObjectForKey("x"_ns, "name"_ns);
    return true;
  });
  ASSERT_TRUE(attributes);
  EXPECT_EQ(attributes->count(), 1u);
  EXPECT_FALSE(_error);
}

TEST_F(FileImporterTest, TheForceFlagIsSetWhenAskedForAndNeverShown) {
  auto attributes = import(
      [](NSMutableDictionary* found, auto...) {
        auto* flag = cast<NSNumber>(found->objectForKey("FoxTrot"_ns));
        EXPECT_TRUE(flag && flag->isBoolean() && flag->boolValue());
        return true;
      },
      true);
  ASSERT_TRUE(attributes);
  EXPECT_EQ(attributes->count(), 0u);
}

TEST_F(FileImporterTest, WhatCannotBeReadIsNeverGivenToTheImporter) {
  struct Case {
    const char* name;
    std::int64_t code;
  };
  ASSERT_EQ(::mkfifo((_folder / "pipe").c_str(), 0600), 0);
  std::filesystem::create_symlink("nowhere", _folder / "dangling");
  std::filesystem::create_symlink("circle", _folder / "circle");
  _folder.write("large", "");
  std::filesystem::resize_file(_folder / "large", std::uint64_t{1} << 31);
  for (auto [name, code] : {Case{"missing", 260},
                            {"dangling", 260},
                            {"a.eml/x", 260},
                            {"circle", 256},
                            {"pipe", 256},
                            {"/dev/null", 256},
                            {".", 256},
                            {"large", 263}}) {
    SCOPED_TRACE(name);
    _file = _folder.url(name);
    EXPECT_FALSE(import([](auto...) -> bool { throw std::logic_error("called"); }));
    EXPECT_EQ(text(_error->domain()), "NSCocoaErrorDomain");
    EXPECT_EQ(_error->code(), code);
  }
}

TEST_F(FileImporterTest, AFileThatMayNotBeReadIsNeverGivenToTheImporter) {
  ASSERT_TRUE(import([](auto...) { return true; }));  // the bundle is loaded before files fail
  FailingFiles files;
  files.fail(FailingFiles::Call::Open, EACCES);
  ScopedService<FileSystem> installed(files);
  EXPECT_FALSE(import([](auto...) -> bool { throw std::logic_error("called"); }));
  EXPECT_EQ(told(),
            "NSCocoaErrorDomain 257 The file “a.eml” couldn’t be opened because you don’t have "
            "permission.");
}

TEST_F(FileImporterTest, ARawTextIsEmptyOnlyWhereTheFileCanBeRead) {
  auto emptyText = [](NSMutableDictionary* found, auto...) {
    found->setObjectForKey(""_ns, "kMDItemTextContent"_ns);
    return true;
  };
  EXPECT_TRUE(import(emptyText));
  FailingFiles files;
  files.fail(FailingFiles::Call::Read, EIO);
  ScopedService<FileSystem> installed(files);
  EXPECT_FALSE(import(emptyText));
  EXPECT_EQ(told(),
            "NSCocoaErrorDomain 256 The file “a.eml” couldn’t be opened: Input/output error.");
  EXPECT_TRUE(import([](auto...) { return true; }));
  EXPECT_TRUE(import(emptyText, true)) << "a message may have no text";
}

TEST_F(FileImporterTest, TheLargestFileIsGivenToTheImporter) {
  std::filesystem::resize_file(_folder / "a.eml", (std::uint64_t{1} << 31) - 1);
  EXPECT_TRUE(import([](auto...) { return true; }));
}

TEST_F(FileImporterTest, AFailureIsWhatTheImporterLogged) {
  EXPECT_FALSE(import([](auto...) {
    NSLog("FerncaseSpotlightImporter error %@ for file %@"_ns,
          "<NSError Domain=D Code=7 UserInfo={\n    NSLocalizedDescription = \"Bad\"\n    }>"_ns,
          "/a"_ns);
    return false;
  }));
  EXPECT_EQ(told(), "D 7 Bad");
}

TEST_F(FileImporterTest, AFailureWithoutAWordSaysSo) {
  EXPECT_FALSE(import([](auto...) { return false; }));
  EXPECT_EQ(told(), "FerncaseErrorDomain 1 The importer gave no attributes.");
}

TEST_F(FileImporterTest, AnExceptionCostsThisFileAlone) {
  EXPECT_FALSE(import([](auto...) -> bool { throw std::runtime_error("odd"); }));
  EXPECT_EQ(told(), "FerncaseErrorDomain 1 The importer failed: odd");
  EXPECT_TRUE(import([](auto...) { return true; }));
}

TEST_F(FileImporterTest, AFileThatTakesTooMuchMemoryIsToldInPlainWords) {
  EXPECT_FALSE(import([](auto...) -> bool { throw std::bad_alloc(); }));
  EXPECT_EQ(told(), "FerncaseErrorDomain 1 The importer failed: there isn’t enough memory.");
}

TEST_F(FileImporterTest, AMissingMailImporterIsNamedWithTheReason) {
  FakeEnvironment environment({"KBX_SYSTEM_ROOT=/nowhere"});
  ScopedService<Environment> installed(environment);
  auto fail = [](auto...) {
    auto url = NSURL::fileURLWithPath("/System/Library/Spotlight/Mail.mdimporter"_ns, true);
    EXPECT_EQ(CFPlugInCreate(kCFAllocatorDefault, toCF(url)), nullptr);
    NSLog("FerncaseSpotlightImporter error (null) for file /a"_ns);
    return false;
  };
  EXPECT_FALSE(import(fail, true));
  EXPECT_EQ(told(),
            "FerncaseErrorDomain 1 The mail importer "
            "/nowhere/System/Library/Spotlight/Mail.mdimporter can’t be loaded: No such file or "
            "directory: /nowhere/System/Library/Spotlight/Mail.mdimporter");
  EXPECT_FALSE(import(fail, false));
  EXPECT_EQ(told(), "FerncaseErrorDomain 1 FerncaseSpotlightImporter error (null) for file /a");
}

TEST_F(FileImporterTest, AMailImporterThatCouldNotReadIsNoEmptyMessage) {
  auto hosting = [](auto...) {
    NSLog("Mail error: %@"_ns, "The disk is worn."_ns);
    return true;
  };
  EXPECT_FALSE(import(hosting, true));
  EXPECT_EQ(told(), "FerncaseErrorDomain 1 The disk is worn.");
}

TEST_F(FileImporterTest, AFailureIsExplainedByTheFileWhereItCannotBeReadAnyMore) {
  auto failing = [this](auto...) {
    std::filesystem::remove(_folder / "a.eml");
    return false;
  };
  EXPECT_FALSE(import(failing));
  EXPECT_EQ(_error->code(), 260);
}

TEST_F(FileImporterTest, AnImporterThatDeliversHTMLAloneGetsItsText) {
  auto attributes = import([](NSMutableDictionary* found, auto...) {
    found->setObjectForKey("<p>a</p><p>b</p>"_ns, "kMDItemHTMLContent"_ns);
    return true;
  });
  ASSERT_TRUE(attributes);
  EXPECT_EQ(text(attributes->objectForKey("kMDItemTextContent"_ns)), "a\nb");
}

}  // namespace
}  // namespace kbx
