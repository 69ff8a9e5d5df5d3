// The import functions, with a stand-in for the system's mail importer.
#include <atomic>
#include <thread>
#include <vector>

#include "platform/objects/NSException.h"
#include "platform/objects/NSNumber.h"
#include "tests/importer/ImporterFixture.h"

using namespace kbx;

namespace {

constexpr const char* kMessage = "Subject: Ferns\n\nThey grow in the shade.\n";
// The stand-in's behaviours, by a header.
constexpr const char* kRaising = "Subject: Ferns\nX-Test: raise\n\n";
constexpr const char* kThrowing = "Subject: Ferns\nX-Test: throw\n\n";
constexpr const char* kFailing = "Subject: Ferns\nX-Test: fail\n\n";

class GetMetadataForURLTest : public ImporterFixture {
 protected:
  GetMetadataForURLTest() : attributes(NSMutableDictionary::dictionary()) {}

  void force() { attributes->setObjectForKey(NSNumber::numberWithBool(true), "FoxTrot"_ns); }
  bool import(NSURL* file) {
    return IMPORTER_FUNCTION(GetMetadataForURL)(nullptr, toCF(attributes), nullptr, toCF(file));
  }
  bool importMessage(std::string_view message) {
    return import(folder.write("letter.eml", message));
  }
  /// Through the interface for paths.
  bool importPath(CFStringRef path) {
    auto* instance = makeInstance();
    void* found = nullptr;
    query(instance, kMDImporterInterfaceID, &found);
    auto* legacy = *static_cast<MDImporterInterfaceStruct**>(found);
    const bool result = legacy->ImporterImportData(found, toCF(attributes), nullptr, path);
    legacy->Release(found);
    instance->functionTable->Release(instance);
    return result;
  }
  std::string value(NSString* key) { return text(attributes->objectForKey(key)); }

  TemporaryFolder folder;
  Ref<NSMutableDictionary> attributes;
};

}  // namespace

TEST_F(GetMetadataForURLTest, WithoutForceTheRawTextIsTheOnlyAttribute) {
  EXPECT_TRUE(importMessage(kMessage));
  EXPECT_EQ(attributes->count(), 1u);
  EXPECT_EQ(value("kMDItemTextContent"_ns), kMessage);
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(GetMetadataForURLTest, ForceAsksTheMailImporter) {
  force();
  EXPECT_TRUE(importMessage(kMessage));
  EXPECT_EQ(value("kMDItemSubject"_ns), "Ferns");
  EXPECT_EQ(value("kMDItemTextContent"_ns), "They grow in the shade.\n");
  EXPECT_FALSE(attributes->objectForKey("TestMailFault"_ns));
  EXPECT_EQ(folder.count(), 1u) << "the temporary file has gone";
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(GetMetadataForURLTest, ForceIsTheBooleanValueOfTheEntryWhichStays) {
  struct Case {
    const char* rule;
    Ref<NSObject> value;
    bool isForced;
  };
  for (const auto& [rule, given, isForced] :
       {Case{"true", NSNumber::numberWithBool(true), true},
        Case{"false", NSNumber::numberWithBool(false), false},
        Case{"a number", NSNumber::numberWithInteger(2), true},
        Case{"zero", NSNumber::numberWithInteger(0), false}, Case{"yes", "YES"_ns, true},
        Case{"another text", "off"_ns, false}}) {
    SCOPED_TRACE(rule);
    attributes->removeAllObjects();
    attributes->setObjectForKey(given, "FoxTrot"_ns);
    EXPECT_TRUE(importMessage(kMessage));
    EXPECT_EQ(attributes->objectForKey("kMDItemSubject"_ns) != nullptr, isForced);
    EXPECT_TRUE(isSame(attributes->objectForKey("FoxTrot"_ns), given));
  }
}

TEST_F(GetMetadataForURLTest, AnEntryWithoutABooleanValueIsAnException) {
  attributes->setObjectForKey(NSArray::array(), "FoxTrot"_ns);
  EXPECT_FALSE(importMessage(kMessage));
  EXPECT_EQ(attributes->count(), 1u);
  ASSERT_EQ(log.lines().size(), 1u);
  EXPECT_EQ(log.lines()[0].substr(0, log.lines()[0].rfind(" 0x")),
            "FerncaseSpotlightImporter exception: -[NSArray boolValue]: unrecognized selector sent "
            "to instance");
}

TEST_F(GetMetadataForURLTest, EntriesStayUnlessTheResultHasTheSameKey) {
  attributes->setObjectForKey("kept"_ns, "kMDItemTitle"_ns);
  attributes->setObjectForKey("old"_ns, "kMDItemTextContent"_ns);
  EXPECT_TRUE(importMessage(kMessage));
  EXPECT_EQ(value("kMDItemTitle"_ns), "kept");
  EXPECT_EQ(value("kMDItemTextContent"_ns), kMessage);
}

TEST_F(GetMetadataForURLTest, WhatAFailingMailImporterSetIsTakenOver) {
  force();
  EXPECT_TRUE(importMessage(kFailing));
  EXPECT_EQ(value("kMDItemSubject"_ns), "Ferns");
  EXPECT_EQ(value("kMDItemTextContent"_ns), "");
}

TEST_F(GetMetadataForURLTest, AFailureIsLoggedWithItsErrorAndThePath) {
  force();
  attributes->setObjectForKey("kept"_ns, "kMDItemTitle"_ns);
  Ref<NSURL> missing = folder.url("missing.eml");
  EXPECT_FALSE(import(missing));
  EXPECT_EQ(attributes->count(), 2u);
  ASSERT_EQ(log.lines().size(), 1u);
  const std::string line = log.lines()[0];
  EXPECT_TRUE(
      line.starts_with("FerncaseSpotlightImporter error <NSError Domain=NSCocoaErrorDomain "
                       "Code=260 UserInfo={"))
      << line;
  EXPECT_NE(line.find("+[KBXEMLXFile metadataForEMLURL:forceSpotlight:error:] (92)"),
            std::string::npos);
  EXPECT_TRUE(line.ends_with(" for file " + text(missing->path()))) << line;
}

TEST_F(GetMetadataForURLTest, AFailureWithoutAnErrorPrintsAnAbsentObject) {
  environment.entries = {"KBX_SYSTEM_ROOT=/no/such/root"};
  force();
  EXPECT_FALSE(importMessage(kMessage));
  ASSERT_EQ(log.lines().size(), 2u);
  EXPECT_EQ(log.lines()[0], "KBXEMLXFile: Error indexing: (null)");
  EXPECT_EQ(log.lines()[1], "FerncaseSpotlightImporter error (null) for file " +
                                text(folder.url("letter.eml")->path()));
}

TEST_F(GetMetadataForURLTest, AnExceptionOfTheMailImporterIsAFailure) {
  force();
  EXPECT_FALSE(importMessage(kRaising));
  EXPECT_EQ(attributes->count(), 1u);
  ASSERT_EQ(log.lines().size(), 3u);
  EXPECT_EQ(log.lines()[0], "KBXEMLXFile: Exception generating metadata: the message asks for it");
  EXPECT_EQ(folder.count(), 1u);
}

TEST_F(GetMetadataForURLTest, ForeignExceptionsPassThrough) {
  force();
  EXPECT_THROW(importMessage(kThrowing), std::runtime_error);
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(GetMetadataForURLTest, TheGlueItselfCatchesNothing) {
  attributes->setObjectForKey(NSArray::array(), "FoxTrot"_ns);
  Ref<NSURL> file = folder.write("letter.eml", kMessage);
  EXPECT_THROW(IMPORTER_FUNCTION(addMetadataForURLToAttributes)(toCF(file), toCF(attributes)),
               Raised);
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(GetMetadataForURLTest, WithoutADictionaryNothingIsForcedAndNothingKept) {
  Ref<NSURL> file = folder.write("letter.eml", kMessage);
  EXPECT_TRUE(IMPORTER_FUNCTION(GetMetadataForURL)(nullptr, nullptr, nullptr, toCF(file)));
}

TEST_F(GetMetadataForURLTest, ADictionaryThatCannotBeChangedIsAnExceptionAndStaysAsItIs) {
  Ref<NSURL> file = folder.write("letter.eml", kMessage);
  auto fixed = NSDictionary::dictionaryWithPairs({{"kMDItemTitle"_ns, "kept"_ns}});
  auto* mutableRef = static_cast<CFMutableDictionaryRef>(static_cast<void*>(fixed.get()));
  EXPECT_FALSE(IMPORTER_FUNCTION(GetMetadataForURL)(nullptr, mutableRef, nullptr, toCF(file)));
  EXPECT_EQ(fixed->count(), 1u);
  ASSERT_EQ(log.lines().size(), 1u);
  EXPECT_TRUE(log.lines()[0].starts_with(
      "FerncaseSpotlightImporter exception: -[NSDictionary addEntriesFromDictionary:]: "
      "unrecognized selector"))
      << log.lines()[0];
}

TEST_F(GetMetadataForURLTest, AnAbsentFileIsEmptyTextOrWithForceAnException) {
  EXPECT_TRUE(import(nullptr));
  EXPECT_EQ(value("kMDItemTextContent"_ns), "");
  EXPECT_TRUE(log.lines().empty());
  force();
  EXPECT_FALSE(import(nullptr));
  EXPECT_EQ(log.lines(),
            std::vector<std::string>{"FerncaseSpotlightImporter exception: "
                                     "-[NSData initWithContentsOfURL:options:error:]: nil URL"});
}

TEST_F(GetMetadataForURLTest, AnyNumberOfImportsOfAFileMayRunAtOnce) {
  Ref<NSURL> file = folder.write("letter.eml", kMessage);
  std::atomic<int> found{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&] {
      for (int round = 0; round < 20; ++round) {
        auto own = NSMutableDictionary::dictionary();
        own->setObjectForKey(NSNumber::numberWithBool(true), "FoxTrot"_ns);
        IMPORTER_FUNCTION(GetMetadataForURL)(nullptr, toCF(own), nullptr, toCF(file));
        if (text(own->objectForKey("kMDItemSubject"_ns)) == "Ferns") ++found;
      }
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(found, 80);
  EXPECT_EQ(folder.count(), 1u);
  EXPECT_TRUE(log.lines().empty());
}

// ---- Paths -------------------------------------------------------------------------------

TEST_F(GetMetadataForURLTest, APathIsImportedLikeAURL) {
  Ref<NSURL> file = folder.write("letter.eml", kMessage);
  EXPECT_TRUE(importPath(toCF(file->path())));
  EXPECT_EQ(value("kMDItemTextContent"_ns), kMessage);
}

TEST_F(GetMetadataForURLTest, APathWithForceReachesTheMailImporterToo) {
  force();
  Ref<NSURL> file = folder.write("letter.eml", kMessage);
  EXPECT_TRUE(importPath(toCF(file->path())));
  EXPECT_EQ(value("kMDItemTextContent"_ns), "They grow in the shade.\n");
  EXPECT_EQ(folder.count(), 1u);
  const std::string name = value("TestMailPath"_ns);
  EXPECT_TRUE(name.starts_with((folder / ".temp-KBXEMLXFile-").string())) << name;
}

TEST_F(GetMetadataForURLTest, APathThatCannotBecomeAURLIsFalseWithoutALine) {
  EXPECT_FALSE(importPath(nullptr));
  EXPECT_FALSE(importPath(CFSTR("")));
  EXPECT_FALSE(importPath(toCF(string(std::string_view("/a\0b", 4)))));
  EXPECT_EQ(attributes->count(), 0u);
  EXPECT_TRUE(log.lines().empty());
}
