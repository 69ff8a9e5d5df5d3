// What the bundle logs can only be seen from outside: here by the one line that it writes about a
// mail importer without an import function.
#include <filesystem>

#include "platform/objects/NSNumber.h"
#include "tests/importer/ImporterFixture.h"
#include "tests/support/TemporaryPreferences.h"

using namespace kbx;

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kSpotlight = "System/Library/Spotlight";

/// A system whose mail importer serves another type.
class MetadataImporterSetUpLoggingTest : public ImporterFixture {
 protected:
  MetadataImporterSetUpLoggingTest() {
    std::filesystem::create_directories(root / kSpotlight);
    std::filesystem::copy(FERNCASE_BUNDLES_DIR "/OtherType.mdimporter",
                          root / kSpotlight / "Mail.mdimporter",
                          std::filesystem::copy_options::recursive);
    environment.entries = {"KBX_SYSTEM_ROOT=" + root.path().string()};
  }
  ~MetadataImporterSetUpLoggingTest() override { setUp("org.example.nothing"_ns); }

  static void setUp(NSString* domain) {
    IMPORTER_FUNCTION(MetadataImporterSetUpLogging)(toCF(domain));
  }
  void write(std::string_view entries) { preferences.write("org.example", entries); }
  /// The lines of one import, up to the text that ends the prefix.
  Lines import() {
    auto attributes = NSMutableDictionary::dictionary();
    attributes->setObjectForKey(NSNumber::numberWithBool(true), "FoxTrot"_ns);
    const std::size_t before = log.lines().size();
    IMPORTER_FUNCTION(GetMetadataForURL)
    (nullptr, toCF(attributes), nullptr, toCF(root.write("letter.eml", "Subject: x\n\n")));
    Lines lines = log.lines();
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(before));
    for (auto& line : lines) line.resize(std::min(line.size(), line.find("found: ")));
    return lines;
  }

  TemporaryPreferences preferences;
  TemporaryFolder root;
  // Some bundle must serve importers, or the search for factories fails.
  Ref<PlugIn> serving =
      adoptCF(CFPlugInCreate(kCFAllocatorDefault, toCF(testBundle("NoInstance"))));
};

}  // namespace

TEST_F(MetadataImporterSetUpLoggingTest, TheDomainsOptionsAreInForce) {
  write(
      "<key>KBXLoggerPrefix</key><string>Importer</string>"
      "<key>KBXLoggerIncludeFile</key><true/><key>KBXLoggerIncludeLine</key><true/>");
  setUp("org.example"_ns);
  EXPECT_EQ(import(), Lines{"Importer KBXSpotlightImporter:73 No importer interface "});
}

TEST_F(MetadataImporterSetUpLoggingTest, ChangesOfTheDomainNeedAnotherCall) {
  setUp("org.example"_ns);
  NSUserDefaults::standardUserDefaults()->setPersistentDomainForName(
      NSDictionary::dictionaryWithPairs({{"KBXLoggerPrefix"_ns, "Importer"_ns}}), "org.example"_ns);
  EXPECT_EQ(import(), Lines{" No importer interface "});
  setUp("org.example"_ns);
  EXPECT_EQ(import(), Lines{"Importer No importer interface "});
}

TEST_F(MetadataImporterSetUpLoggingTest, AnAbsentDomainLeavesTheBuiltInValues) {
  setUp(nullptr);
  EXPECT_EQ(import(), Lines{" No importer interface "});
}
