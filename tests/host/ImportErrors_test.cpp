#include "host/import/ImportErrors.h"

#include <gtest/gtest.h>

#include "tests/support/Text.h"

namespace kbx {
namespace {

std::string told(std::initializer_list<std::string_view> lines, std::string_view reason = "") {
  ImportLog::Lines list;
  for (auto line : lines) list.push_back(string(line));
  auto error = importError(list, reason);
  return text(error->domain()) + " " + std::to_string(error->code()) + " " +
         text(error->localizedDescription());
}

constexpr std::string_view kReadError =
    "FerncaseSpotlightImporter error <NSError Domain=NSCocoaErrorDomain Code=260 UserInfo={\n"
    "    KBXStackFrames = (\n"
    "        \"+[KBXEMLXFile metadataForEMLURL:forceSpotlight:error:] (92)\"\n"
    "        ),\n"
    "    NSFilePath = \"/mail/a.eml\",\n"
    "    NSLocalizedDescription = \"The file “a.eml” couldn’t be opened.\",\n"
    "    NSUnderlyingError = \"<NSError Domain=NSPOSIXErrorDomain Code=2 UserInfo={\n"
    "        NSLocalizedDescription = \"Inner\"\n"
    "        }>\"\n"
    "    }> for file /mail/a.eml";

TEST(ImportErrors, TheLoggedErrorIsTakenOver) {
  EXPECT_EQ(told({kReadError}), "NSCocoaErrorDomain 260 The file “a.eml” couldn’t be opened.");
}

TEST(ImportErrors, TheLoggedErrorIsFoundAmongOtherLines) {
  EXPECT_EQ(told({"KBXEMLXFile: Error indexing: (null)", kReadError, "more"}),
            "NSCocoaErrorDomain 260 The file “a.eml” couldn’t be opened.");
}

TEST(ImportErrors, TheLastLoggedErrorCounts) {
  EXPECT_EQ(told({kReadError,
                  "FerncaseSpotlightImporter error <NSError Domain=D Code=-7 UserInfo={\n"
                  "    NSLocalizedDescription = \"Last\"\n"
                  "    }> for file /a"}),
            "D -7 Last");
}

TEST(ImportErrors, ADescriptionOfSeveralLinesComesBackAsItWas) {
  EXPECT_EQ(told({"FerncaseSpotlightImporter error <NSError Domain=D Code=1 UserInfo={\n"
                  "    NSLocalizedDescription = \"One, \"quoted\",\n"
                  "        NSLocalizedDescription = \"two\",\n"
                  "            three\n"
                  "        \",\n"
                  "    Other = 1\n"
                  "    }> for file /a"}),
            "D 1 One, \"quoted\",\nNSLocalizedDescription = \"two\",\n    three\n");
}

TEST(ImportErrors, OnlyTheOuterErrorsDescriptionCounts) {
  EXPECT_EQ(told({"FerncaseSpotlightImporter error <NSError Domain=D Code=9 UserInfo={\n"
                  "    NSUnderlyingError = \"<NSError Domain=E Code=2 UserInfo={\n"
                  "        NSLocalizedDescription = \"Inner\"\n"
                  "        }>\"\n"
                  "    }> for file /a"}),
            "D 9 The operation couldn’t be completed. (D error 9.)");
}

TEST(ImportErrors, AFileNameCannotFakeAnError) {
  constexpr std::string_view kLine =
      "KBXEMLXFile: /FerncaseSpotlightImporter error <NSError Domain=D Code=1 UserInfo={\n"
      "    NSLocalizedDescription = \"x\"\n"
      "    }>";
  EXPECT_EQ(told({kLine}), "FerncaseErrorDomain 1 " + std::string(kLine));
}

TEST(ImportErrors, WithoutALoggedErrorTheLastLineIsWhatIsKnown) {
  EXPECT_EQ(told({"one", "FerncaseSpotlightImporter exception: Precondition Failed: url"}),
            "FerncaseErrorDomain 1 FerncaseSpotlightImporter exception: Precondition Failed: url");
}

TEST(ImportErrors, AnAbsentErrorTellsNothing) {
  EXPECT_EQ(told({"KBXEMLXFile: Exception generating metadata: odd",
                  "KBXEMLXFile: Error indexing: (null)",
                  "FerncaseSpotlightImporter error (null) for file /a"}),
            "FerncaseErrorDomain 1 KBXEMLXFile: Exception generating metadata: odd");
}

TEST(ImportErrors, WithoutALineThereAreNoAttributesAndNoReason) {
  EXPECT_EQ(told({}), "FerncaseErrorDomain 1 The importer gave no attributes.");
}

TEST(ImportErrors, AnAbsentErrorIsExplainedByTheLoaderOfTheMailImporter) {
  constexpr std::string_view kLine = "FerncaseSpotlightImporter error (null) for file /a.eml";
  EXPECT_EQ(told({kLine}, "no such folder"), "FerncaseErrorDomain 1 no such folder");
  EXPECT_EQ(told({kLine}), "FerncaseErrorDomain 1 " + std::string(kLine));
  EXPECT_EQ(told({kReadError}, "no such folder"),
            "NSCocoaErrorDomain 260 The file “a.eml” couldn’t be opened.");
}

TEST(ImportErrors, MalformedLinesAreNoErrors) {
  for (std::string_view line :
       {"FerncaseSpotlightImporter error ", "FerncaseSpotlightImporter error <NSError Domain=",
        "FerncaseSpotlightImporter error <NSError Domain=D Code=",
        "FerncaseSpotlightImporter error <NSError Domain=D Code=1"})
    EXPECT_EQ(told({line}), "FerncaseErrorDomain 1 " + std::string(line));
  EXPECT_EQ(told({"FerncaseSpotlightImporter error <NSError Domain=D Code=3 UserInfo={\n"
                  "    NSLocalizedDescription = \"unended"}),
            "D 3 The operation couldn’t be completed. (D error 3.)");
}

}  // namespace
}  // namespace kbx
