#include "host/import/ImporterChoice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using testing::HasSubstr;

const char* const kSecondFactory = FERNCASE_BUNDLES_DIR "/SecondFactory.mdimporter";
const char* const kLegacyOnly = FERNCASE_BUNDLES_DIR "/LegacyOnly.mdimporter";

TEST(ImporterChoice, TheFirstThatDeclaresTheTypeIsAskedAndMessagesAreTheRest) {
  ImporterChoice choice({{"/gone", {"x.y"}},
                         {kLegacyOnly, {"public.vcard", "public.png"}},
                         {"/gone", {"public.vcard"}}},
                        kSecondFactory, {});
  TemporaryFolder folder;
  for (auto [name, isLegacy] : {std::pair{"a.vcf", true},
                                {"A.PNG", true},
                                {"a.eml", false},
                                {"a", false},
                                {".eml", false}}) {
    SCOPED_TRACE(name);
    Ref<NSError> error;
    auto attributes = choice.attributesOfFile(folder.write(name, ""), nullptr, &error);
    ASSERT_TRUE(attributes) << text(error->localizedDescription());
    EXPECT_EQ(attributes->objectForKey("LegacyContentType"_ns) != nullptr, isLegacy);
  }
}

TEST(ImporterChoice, AnImporterOfMessagesStandsBeforeTheFallback) {
  ImporterChoice choice({{kLegacyOnly, {"com.apple.mail.email"}}}, "/gone", {});
  std::string path, reason;
  EXPECT_TRUE(choice.loadForMessages(&path, &reason));
  EXPECT_EQ(path, kLegacyOnly);
}

TEST(ImporterChoice, AnImporterThatCannotBeLoadedCostsItsFilesAlone) {
  ImporterChoice choice({{"/gone.mdimporter", {"public.vcard"}}}, kSecondFactory, {});
  TemporaryFolder folder;
  Ref<NSError> error;
  EXPECT_FALSE(choice.attributesOfFile(folder.write("a.vcf", ""), nullptr, &error));
  ASSERT_TRUE(error);
  EXPECT_THAT(text(error->localizedDescription()),
              HasSubstr("The importer /gone.mdimporter can’t be loaded: No such file"));
  EXPECT_TRUE(choice.attributesOfFile(folder.write("a.eml", ""), nullptr, &error));
}

}  // namespace
}  // namespace kbx
