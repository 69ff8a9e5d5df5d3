#include "KBXSpotlightImporter.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

#include "KBXLogger.h"
#include "NSError+KBX.h"
#include "NSError+KBXKeys.h"
#include "platform/objects/NSException.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"
#include "platform/plugins/PlugInServices.h"
#include "platform/xml/NSXMLDocument.h"
#include "platform/xml/XMLProcessing.h"
#include "tests/support/Bundles.h"
#include "tests/support/FakeOperatingSystem.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/Text.h"

using namespace kbx;

namespace {

constexpr const char* kHosting = "-[KBXSpotlightImporter metadataForURL:contentType:error:]";

/// What an instance of a test offers and does, and what was done to it.
struct Script {
  bool offersURL = false;
  bool offersLegacy = false;
  std::function<bool(NSMutableDictionary*)> import = [](auto*) { return true; };
  bool raisesForURL = false;  // the query for that interface

  std::string calls = {};  // in the order in which they came
  std::string argument = {};
  std::string contentType = {};
  int references = 0;
};

/// An instance, or one of its interfaces: the first word points to a table, as callers expect.
struct Part {
  const void* table;
  Script* script;
  const char* name;
  Part* legacy;
  Part* url;
};

Part* partOf(void* interface) { return static_cast<Part*>(interface); }

void note(void* interface, const std::string& call) {
  Script& script = *partOf(interface)->script;
  script.calls += (script.calls.empty() ? "" : " ") + call;
}

HRESULT queryInterface(void* interface, REFIID identifier, LPVOID* result) {
  auto* part = partOf(interface);
  auto wanted = adoptCF(CFUUIDCreateFromUUIDBytes(kCFAllocatorDefault, identifier));
  const bool isURL = toCF(wanted) == kMDImporterURLInterfaceID;
  const bool isLegacy = toCF(wanted) == kMDImporterInterfaceID;
  note(interface, isURL ? "query-url" : isLegacy ? "query-legacy" : "query-other");
  if (isURL && part->script->raisesForURL)
    NSException::exceptionWithName("X"_ns, nullptr, nullptr)->raise();
  Part* found = isURL && part->script->offersURL         ? part->url
                : isLegacy && part->script->offersLegacy ? part->legacy
                                                         : nullptr;
  *result = found;
  if (!found) return E_NOINTERFACE;
  ++part->script->references;
  return S_OK;
}

ULONG addReference(void* interface) { return ULONG(++partOf(interface)->script->references); }

ULONG release(void* interface) {
  note(interface, std::string("release-") + partOf(interface)->name);
  return ULONG(--partOf(interface)->script->references);
}

Boolean import(void* interface, CFMutableDictionaryRef attributes, CFStringRef contentType,
               const std::string& argument) {
  Script& script = *partOf(interface)->script;
  note(interface, std::string("import-") + partOf(interface)->name);
  script.argument = argument;
  script.contentType = text(fromCF(contentType));
  return script.import(fromCF(attributes));
}

Boolean importURL(void* interface, CFMutableDictionaryRef attributes, CFStringRef contentType,
                  CFURLRef url) {
  return import(interface, attributes, contentType, text(fromCF(url)));
}

Boolean importPath(void* interface, CFMutableDictionaryRef attributes, CFStringRef contentType,
                   CFStringRef path) {
  return import(interface, attributes, contentType, text(fromCF(path)));
}

const IUnknownVTbl kUnknown{nullptr, queryInterface, addReference, release};
const MDImporterInterfaceStruct kLegacy{nullptr, queryInterface, addReference, release, importPath};
const MDImporterURLInterfaceStruct kURL{nullptr, queryInterface, addReference, release, importURL};

/// An instance with two interfaces of their own addresses.
struct Instance {
  explicit Instance(Script& script)
      : legacy{&kLegacy, &script, "legacy", nullptr, nullptr},
        url{&kURL, &script, "url", nullptr, nullptr},
        unknown{&kUnknown, &script, "instance", &legacy, &url} {}

  Part legacy, url, unknown;
};

/// Plug-in services whose factories are scripts; an absent script makes no instance.
class ScriptedPlugIns final : public PlugInServices {
 public:
  explicit ScriptedPlugIns(std::vector<Script*> scripts) {
    NSArray::Elements identifiers;
    for (Script* script : scripts) {
      auto identifier = NSUUID::UUID();
      identifiers.push_back(identifier);
      _instances.emplace_back(identifier, script ? std::make_unique<Instance>(*script) : nullptr);
    }
    factories = NSArray::arrayWithElements(std::move(identifiers));
  }

  Ref<PlugIn> create(NSURL* bundle) override { return _system.create(bundle); }
  Ref<NSArray> findFactories(NSUUID* type, PlugIn*) override {
    return toCF(type) == kMDImporterTypeID ? factories : nullptr;
  }
  void* createInstance(NSUUID* factory, NSUUID* type) override {
    EXPECT_EQ(toCF(type), kMDImporterTypeID);
    for (auto& [identifier, instance] : _instances)
      if (isSame(identifier, factory) && instance) {
        note(&instance->unknown, "create");
        ++instance->unknown.script->references;
        return &instance->unknown;
      }
    return nullptr;
  }
  void addInstance(NSUUID*) override {}
  void removeInstance(NSUUID*) override {}
  std::string failureReason(NSURL*) override { return ""; }

  Ref<NSArray> factories;

 private:
  PlugInServices& _system = PlugInServices::current();
  std::vector<std::pair<Ref<NSUUID>, std::unique_ptr<Instance>>> _instances;
  ScopedService<PlugInServices> _installed{*this};
};

/// A host of a bundle without anything in it, in front of scripted services.
class KBXSpotlightImporterTest : public testing::Test {
 protected:
  KBXSpotlightImporterTest() {
    std::filesystem::create_directory(_folder / "Empty.mdimporter");
    file = _folder.write("letter.eml", "Subject: x\n\n");
  }

  Ref<KBXSpotlightImporter> host() {
    return KBXSpotlightImporter::initWithImporterURL(_folder.url("Empty.mdimporter"));
  }
  Ref<NSDictionary> import(std::vector<Script*> scripts, Ref<NSError>* error = nullptr) {
    ScriptedPlugIns services(std::move(scripts));
    return host()->metadataForURL(file, "com.apple.mail.email"_ns, error);
  }

  TemporaryFolder _folder;
  Ref<NSURL> file;
};

Ref<NSDictionary> attributes(std::initializer_list<NSDictionary::Pair> pairs) {
  return NSDictionary::dictionaryWithPairs(pairs);
}

std::string textContent(NSDictionary* dictionary) {
  return text(dictionary->objectForKey("kMDItemTextContent"_ns));
}

void expectRequirementFailed(NSError* error, NSString* requirement, const std::string& frame) {
  ASSERT_TRUE(error);
  EXPECT_EQ(text(error->domain()), "KBXErrorDomain");
  EXPECT_EQ(error->code(), 901);
  EXPECT_TRUE(isEqual(error->userInfo()->objectForKey("KBXFailingObject"_ns), requirement));
  auto* frames = cast<NSArray>(error->userInfo()->objectForKey("KBXStackFrames"_ns));
  ASSERT_TRUE(frames);
  ASSERT_EQ(frames->count(), 1u);
  EXPECT_EQ(text(frames->objectAtIndex(0)), frame);
}

}  // namespace

// ---- Making ------------------------------------------------------------------------------

TEST_F(KBXSpotlightImporterTest, ABundleThatCannotBeLoadedGivesNoHost) {
  EXPECT_FALSE(KBXSpotlightImporter::initWithImporterURL(_folder.url("None.mdimporter")));
  EXPECT_FALSE(KBXSpotlightImporter::initWithImporterURL(file));
  EXPECT_FALSE(KBXSpotlightImporter::initWithImporterURL(nullptr));
}

TEST_F(KBXSpotlightImporterTest, TheLocationIsAPropertyThatCanBeSet) {
  auto importer = host();
  EXPECT_TRUE(isEqual(importer->importerURL(), _folder.url("Empty.mdimporter")));
  importer->setImporterURL(file);
  EXPECT_TRUE(isSame(importer->importerURL(), file));
}

// ---- Hosting -----------------------------------------------------------------------------

TEST_F(KBXSpotlightImporterTest, BothInterfacesAreAskedForAndTheOneForURLsIsCalled) {
  Script script{.offersURL = true, .offersLegacy = true};
  EXPECT_TRUE(import({&script}));
  EXPECT_EQ(script.calls,
            "create query-legacy query-url release-instance import-url release-legacy release-url");
  EXPECT_EQ(script.references, 0);
}

TEST_F(KBXSpotlightImporterTest, TheInterfaceForURLsGetsTheURLAndTheContentType) {
  Script script{.offersURL = true};
  import({&script});
  EXPECT_EQ(script.argument, text(file));
  EXPECT_EQ(script.contentType, "com.apple.mail.email");
  EXPECT_EQ(script.calls, "create query-legacy query-url release-instance import-url release-url");
}

TEST_F(KBXSpotlightImporterTest, TheLegacyInterfaceGetsThePath) {
  Script script{.offersLegacy = true};
  import({&script});
  EXPECT_EQ(script.argument, text(file->path()));
  EXPECT_EQ(script.contentType, "com.apple.mail.email");
  EXPECT_EQ(script.calls,
            "create query-legacy query-url release-instance import-legacy release-legacy");
}

TEST_F(KBXSpotlightImporterTest, TheFirstFactoryWithAnInterfaceIsUsed) {
  Script first, second{.offersURL = true}, third{.offersURL = true};
  EXPECT_TRUE(import({&first, &second, &third}));
  EXPECT_EQ(first.calls, "create query-legacy query-url release-instance");
  EXPECT_NE(second.calls.find("import-url"), std::string::npos);
  EXPECT_EQ(third.calls, "");
}

TEST_F(KBXSpotlightImporterTest, WithoutAnInterfaceTheTextIsEmpty) {
  Script first, second;
  for (auto& scripts : {std::vector<Script*>{}, {&first, &second}}) {
    Ref<NSError> error;
    auto found = import(scripts, &error);
    EXPECT_TRUE(isEqual(found, attributes({{"kMDItemTextContent"_ns, ""_ns}})));
    EXPECT_FALSE(error);
  }
}

TEST_F(KBXSpotlightImporterTest, WithoutAnInterfaceTheLogNamesTheBundle) {
  auto yes = NSNumber::numberWithBool(true);
  auto switches = attributes({{"KBXLoggerIncludeFile"_ns, yes},
                              {"KBXLoggerIncludeLine"_ns, yes},
                              {"KBXLoggerIncludeFunction"_ns, yes}});
  KBXLogger::setSharedLogger(KBXLogger::initWithDefaultsDictionary(switches));
  const std::string place = std::string("KBXSpotlightImporter:73 ") + kHosting;
  const std::string path = text(_folder.url("Empty.mdimporter")->path());
  Script nothing, legacy{.offersLegacy = true}, url{.offersURL = true};
  RecordingLog log;
  for (auto& scripts : {std::vector<Script*>{}, {&nothing}, {&legacy}, {&url}}) import(scripts);
  const std::string expected = place + " No importer interface found: " + path;
  EXPECT_EQ(log.lines(), (std::vector{expected, expected}));
  KBXLogger::setSharedLogger(nullptr);
}

TEST_F(KBXSpotlightImporterTest, TheLogNamesTheLocationThatIsSet) {
  ScriptedPlugIns services({});
  RecordingLog log;
  auto importer = host();
  for (NSURL* location : {file.get(), static_cast<NSURL*>(nullptr)}) {
    importer->setImporterURL(location);
    importer->metadataForURL(file, nullptr, nullptr);
  }
  EXPECT_EQ(log.lines(), (std::vector{" No importer interface found: " + text(file->path()),
                                      std::string(" No importer interface found: (null)")}));
}

TEST_F(KBXSpotlightImporterTest, AnAbsentListOfFactoriesIsAnError) {
  ScriptedPlugIns services({});
  services.factories = nullptr;
  Ref<NSError> error;
  EXPECT_FALSE(host()->metadataForURL(file, nullptr, &error));
  expectRequirementFailed(error, "factories"_ns, std::string(kHosting) + " (33)");
  EXPECT_FALSE(host()->metadataForURL(file, nullptr, nullptr));
}

TEST_F(KBXSpotlightImporterTest, AFactoryThatMakesNoInstanceIsAnErrorAtOnce) {
  Script first, third{.offersURL = true};
  Ref<NSError> error;
  EXPECT_FALSE(import({&first, nullptr, &third}, &error));
  expectRequirementFailed(error, "iunknown"_ns, std::string(kHosting) + " (40)");
  EXPECT_EQ(first.references, 0);
  EXPECT_EQ(third.calls, "");
  EXPECT_FALSE(import({nullptr}));
}

TEST_F(KBXSpotlightImporterTest, WhatAFailingImportFunctionSetIsKept) {
  Script script{.offersURL = true, .import = [](NSMutableDictionary* found) {
                  found->setObjectForKey("some"_ns, "kMDItemSubject"_ns);
                  return false;
                }};
  Ref<NSError> error;
  auto found = import({&script}, &error);
  EXPECT_TRUE(isEqual(
      found, attributes({{"kMDItemSubject"_ns, "some"_ns}, {"kMDItemTextContent"_ns, ""_ns}})));
  EXPECT_FALSE(error);
}

TEST_F(KBXSpotlightImporterTest, TextThatTheImporterSetComesBack) {
  Script script{.offersURL = true, .import = [](NSMutableDictionary* found) {
                  found->setObjectForKey("text"_ns, "kMDItemTextContent"_ns);
                  return true;
                }};
  EXPECT_EQ(textContent(import({&script})), "text");
}

TEST_F(KBXSpotlightImporterTest, InterfacesAreReleasedOnceWhenTheImporterRaises) {
  Script script{.offersURL = true, .offersLegacy = true, .import = [](auto*) -> bool {
                  NSException::exceptionWithName("X"_ns, nullptr, nullptr)->raise();
                }};
  EXPECT_THROW(import({&script}), Raised);
  EXPECT_EQ(script.calls,
            "create query-legacy query-url release-instance import-url release-legacy release-url");
  EXPECT_EQ(script.references, 0);
}

TEST_F(KBXSpotlightImporterTest, WhatWasObtainedIsReleasedOnceWhenAQueryRaises) {
  Script script{.offersLegacy = true, .raisesForURL = true};
  EXPECT_THROW(import({&script}), Raised);
  EXPECT_EQ(script.calls, "create query-legacy query-url release-instance release-legacy");
  EXPECT_EQ(script.references, 0);
}

TEST_F(KBXSpotlightImporterTest, WhatWasObtainedIsReleasedOnceWhenTheTextRaises) {
  Script script{.offersURL = true, .offersLegacy = true, .import = [](NSMutableDictionary* found) {
                  found->setObjectForKey(NSNull::null(), "kMDItemTextContent"_ns);
                  return true;
                }};
  EXPECT_THROW(import({&script}), Raised);
  EXPECT_EQ(script.references, 0);
}

TEST_F(KBXSpotlightImporterTest, ForeignExceptionsPassThroughInTheSameWay) {
  Script script{.offersLegacy = true,
                .import = [](auto*) -> bool { throw std::runtime_error("foreign"); }};
  EXPECT_THROW(import({&script}), std::runtime_error);
  EXPECT_EQ(script.references, 0);
}

TEST_F(KBXSpotlightImporterTest, AHostMayBeUsedForManyFiles) {
  Script script{.offersURL = true};
  ScriptedPlugIns services({&script});
  auto importer = host();
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(importer->metadataForURL(file, nullptr, nullptr));
  EXPECT_EQ(script.references, 0);
  EXPECT_EQ(script.contentType, "(null)");
}

// ---- The content type --------------------------------------------------------------------

TEST_F(KBXSpotlightImporterTest, TheFileSystemIsAskedForTheContentType) {
  Script script{.offersURL = true};
  ScriptedPlugIns services({&script});
  EXPECT_TRUE(host()->metadataForURL(file, nullptr));
  auto expected = file->resourceValueForKey(NSURLTypeIdentifierKey(), nullptr);
  EXPECT_EQ(script.contentType, text(expected));
}

TEST_F(KBXSpotlightImporterTest, AFailedQuestionForTheContentTypeIsPassedUpAsItCame) {
  Script script{.offersURL = true};
  ScriptedPlugIns services({&script});
  Ref<NSURL> missing = _folder.url("missing.eml");
  Ref<NSError> error, expected;
  missing->resourceValueForKey(NSURLTypeIdentifierKey(), &expected);
  EXPECT_FALSE(host()->metadataForURL(missing, &error));
  EXPECT_TRUE(isEqual(error, expected));
  EXPECT_FALSE(host()->metadataForURL(missing, nullptr));
  EXPECT_EQ(script.calls, "");
}

TEST_F(KBXSpotlightImporterTest, AnAbsentFileGivesNoneAndNoError) {
  Ref<NSError> error;
  EXPECT_FALSE(host()->metadataForURL(nullptr, &error));
  EXPECT_FALSE(error);
}

// ---- Text content ------------------------------------------------------------------------

TEST_F(KBXSpotlightImporterTest, AttributesWithTextComeBackAsTheSameObject) {
  auto given = attributes({{"kMDItemTextContent"_ns, "x"_ns}});
  EXPECT_TRUE(isSame(host()->ensureTextContent(given, nullptr), given));
}

TEST_F(KBXSpotlightImporterTest, AttributesWithoutTextAreCopiedAndGetAnEmptyOne) {
  for (auto& given : {attributes({{"a"_ns, "b"_ns}}),
                      attributes({{"a"_ns, "b"_ns}, {"kMDItemTextContent"_ns, ""_ns}})}) {
    const auto count = given->count();
    auto ensured = host()->ensureTextContent(given, nullptr);
    EXPECT_FALSE(isSame(ensured, given));
    EXPECT_EQ(textContent(ensured), "");
    EXPECT_EQ(text(ensured->objectForKey("a"_ns)), "b");
    EXPECT_EQ(ensured->count(), 2u);
    EXPECT_EQ(given->count(), count);
  }
}

/// Every area is off while it lives; without a shared logger all are on.
struct QuietLogger {
  QuietLogger() { KBXLogger::setSharedLogger(KBXLogger::initWithDefaultsDictionary(nullptr)); }
  ~QuietLogger() { KBXLogger::setSharedLogger(nullptr); }
};

TEST_F(KBXSpotlightImporterTest, TextIsMadeOfHTMLFrom10_11On) {
  const QuietLogger quiet;
  struct Case {
    const char* rule;
    Ref<NSDictionary> given;
    const char* text;
    bool isSynthesized;
  };
  auto html = "<p>a<p>b"_ns;
  auto bytes = data("<b>c");
  for (const auto& [rule, given, expected, isSynthesized] : {
           Case{"a text", attributes({{"kMDItemHTMLContent"_ns, html}}), "a\nb", true},
           Case{"bytes", attributes({{"kMDItemHTMLContentData"_ns, bytes}}), "c", true},
           Case{"the text wins",
                attributes({{"kMDItemHTMLContentData"_ns, bytes}, {"kMDItemHTMLContent"_ns, html}}),
                "a\nb", true},
           Case{
               "an empty text wins, too",
               attributes({{"kMDItemHTMLContentData"_ns, bytes}, {"kMDItemHTMLContent"_ns, ""_ns}}),
               "", true},
           Case{"bytes stand in for a text that UTF-8 cannot hold",
                attributes({{"kMDItemHTMLContentData"_ns, bytes},
                            {"kMDItemHTMLContent"_ns, NSString::stringWithUTF16(u"\xD800")}}),
                "c", true},
           Case{"nothing visible", attributes({{"kMDItemHTMLContent"_ns, "<p>"_ns}}), "", true},
           Case{"no HTML", attributes({{"a"_ns, "b"_ns}}), "", false},
       }) {
    SCOPED_TRACE(rule);
    FakeOperatingSystem system(1256.1, {10, 11, 0});
    const ScopedService<OperatingSystem> installed(system);
    auto ensured = host()->ensureTextContent(given, nullptr);
    EXPECT_EQ(textContent(ensured), expected);
    NSObject* const flag = ensured->objectForKey("KBXTextContentIsSynthesized"_ns);
    EXPECT_EQ(flag && isEqual(flag, NSNumber::numberWithBool(true)), isSynthesized);
    EXPECT_EQ(flag != nullptr, isSynthesized);
  }
}

TEST_F(KBXSpotlightImporterTest, HTMLDoesNotCountBefore10_11) {
  FakeOperatingSystem system(1153.2, {10, 10, 5});
  const ScopedService<OperatingSystem> installed(system);
  auto ensured =
      host()->ensureTextContent(attributes({{"kMDItemHTMLContent"_ns, "a"_ns}}), nullptr);
  EXPECT_EQ(textContent(ensured), "");
  EXPECT_FALSE(ensured->objectForKey("KBXTextContentIsSynthesized"_ns));
}

TEST_F(KBXSpotlightImporterTest, AFailedConversionFailsTheImportAt114) {
  const QuietLogger quiet;
  class Failing final : public XMLProcessing {
    Ref<NSXMLDocument> documentWithData(NSData*, std::uint64_t, Ref<NSError>* error) override {
      if (error) *error = posixError(5);
      return nullptr;
    }
  } failing;
  const ScopedService<XMLProcessing> installed(failing);
  auto given = attributes({{"kMDItemHTMLContent"_ns, "a"_ns}});
  Ref<NSError> error;
  EXPECT_FALSE(host()->ensureTextContent(given, &error));
  auto* frames = cast<NSArray>(error->userInfo()->objectForKey("KBXStackFrames"_ns));
  EXPECT_EQ(text(frames->componentsJoinedByString("; "_ns)),
            "-[KBXSpotlightImporter ensureTextContent:error:] (114); "
            "+[NSString(KBXHTML) kbxUngatedStringWithHTMLData:error:] (196)");
  EXPECT_FALSE(host()->ensureTextContent(given, nullptr));
}

TEST_F(KBXSpotlightImporterTest, AbsentAttributesStayAbsent) {
  EXPECT_FALSE(host()->ensureTextContent(nullptr, nullptr));
  EXPECT_FALSE(host()->hasTextContent(nullptr));
}

TEST_F(KBXSpotlightImporterTest, TextContentIsAValueWithALength) {
  auto importer = host();
  auto has = [&](NSObject* value) {
    return importer->hasTextContent(attributes({{"kMDItemTextContent"_ns, value}}));
  };
  EXPECT_TRUE(has("x"_ns));
  EXPECT_FALSE(has(""_ns));
  EXPECT_TRUE(has(data("x")));
  EXPECT_FALSE(has(data("")));
  EXPECT_FALSE(importer->hasTextContent(NSDictionary::dictionary()));
}

TEST_F(KBXSpotlightImporterTest, AValueWithoutALengthRaises) {
  auto importer = host();
  for (Ref<NSObject> value : {Ref<NSObject>(NSNumber::numberWithBool(true)),
                              Ref<NSObject>(NSNull::null()), Ref<NSObject>(NSArray::array())}) {
    auto given = attributes({{"kMDItemTextContent"_ns, value}});
    try {
      importer->ensureTextContent(given, nullptr);
      ADD_FAILURE() << text(value);
    } catch (const Raised& raised) {
      EXPECT_TRUE(isEqual(raised.exception()->name(), NSInvalidArgumentException()));
      EXPECT_NE(text(raised.exception()->reason()).find(" length]: unrecognized selector"),
                std::string::npos);
    }
  }
}

// ---- With bundles ------------------------------------------------------------------------

namespace {

Ref<NSDictionary> importWith(const char* bundle, NSURL* file, Ref<NSError>* error) {
  auto importer = KBXSpotlightImporter::initWithImporterURL(testBundle(bundle));
  return importer->metadataForURL(file, error);
}

}  // namespace

TEST_F(KBXSpotlightImporterTest, TheSecondOfTwoFactoriesOfABundleIsUsed) {
  EXPECT_EQ(textContent(importWith("SecondFactory", file, nullptr)), "from the second factory");
}

TEST_F(KBXSpotlightImporterTest, ABundleWithOnlyTheLegacyInterfaceWorks) {
  auto found = importWith("LegacyOnly", file, nullptr);
  EXPECT_EQ(textContent(found), text(file->path()));
  EXPECT_EQ(text(found->objectForKey("LegacyContentType"_ns)), "com.apple.mail.email");
}

TEST_F(KBXSpotlightImporterTest, BundlesThatMakeNoInstanceGiveAnError) {
  for (const char* bundle : {"NoInstance", "NoExecutable"}) {
    SCOPED_TRACE(bundle);
    Ref<NSError> error;
    EXPECT_FALSE(importWith(bundle, file, &error));
    expectRequirementFailed(error, "iunknown"_ns, std::string(kHosting) + " (40)");
  }
}

TEST_F(KBXSpotlightImporterTest, FactoriesAreMissingOnlyWhileNoBundleServesImporters) {
  Ref<NSError> error;
  EXPECT_FALSE(importWith("OtherType", file, &error));
  expectRequirementFailed(error, "factories"_ns, std::string(kHosting) + " (33)");
  auto other = KBXSpotlightImporter::initWithImporterURL(testBundle("NoInstance"));
  EXPECT_EQ(textContent(importWith("OtherType", file, nullptr)), "");
}
