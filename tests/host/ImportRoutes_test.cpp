// Which importer `ferncase import` asks, by which way, and what is left of it.
#include <gmock/gmock.h>

#include "tests/host/ImportCommandFixture.h"

namespace kbx {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class ImportRouteTest : public ImportCommandTest {};

TEST_F(ImportRouteTest, TheMailImporterIsTheDefault) {
  _folder.write("a.eml", kMessage);
  for (auto arguments : {std::vector<std::string>{"--ndjson", "a.eml"},
                         {"--force", "--ndjson", "a.eml"},
                         {"--stage=beside", "--ndjson", "a.eml"}}) {
    auto finished = command(arguments).folder(_folder.path()).run();
    EXPECT_EQ(finished.complaints, "");
    auto attributes = jsonLines(finished.output).at(0).at("attributes");
    EXPECT_EQ(attributes.at("kMDItemSubject"), "Hello");
    EXPECT_EQ(attributes.at("kMDItemTextContent"), "Good morning\n");
    EXPECT_EQ(_folder.count(), 1u);
  }
}

TEST_F(ImportRouteTest, AnEmlxFileGoesStraightToTheMailImporter) {
  _folder.write("1.emlx",
                "28\nSubject: Hello\n\nGood morning\n<plist version=\"1.0\"><dict><key>flags"
                "</key><integer>1</integer></dict></plist>\n");
  auto finished = command({"--ndjson", "1.emlx"}).folder(_folder.path()).run();
  ASSERT_EQ(finished.exitCode, 0) << finished.complaints;
  auto attributes = jsonLines(finished.output).at(0).at("attributes");
  EXPECT_EQ(attributes.at("kMDItemSubject"), "Hello");
  EXPECT_EQ(attributes.at("com_apple_mail_read"), true);
}

TEST_F(ImportRouteTest, AnEmlxFileOfHTMLAloneHasTheTextOfTheSameMessage) {
  const std::string message = "Content-Type: text/html\n\n<p>Good<p>morning";
  _folder.write("1.emlx", std::to_string(message.size()) + "\n" + message);
  _folder.write("2.eml", message);
  auto results =
      jsonLines(command({"--ndjson", "1.emlx", "2.eml"}).folder(_folder.path()).run().output);
  ASSERT_EQ(results.size(), 2u);
  EXPECT_EQ(textOf(results[0]), "Good\nmorning");
  for (auto name : {"kMDItemTextContent", "kMDItemHTMLContent", "KBXTextContentIsSynthesized"})
    EXPECT_EQ(results[0].at("attributes").at(name), results[1].at("attributes").at(name)) << name;
}

TEST_F(ImportRouteTest, AUsersImporterTakesTheTypesThatItDeclares) {
  std::filesystem::create_directories(_folder / "data/ferncase/Library/Spotlight");
  const std::string bundle = "data/ferncase/Library/Spotlight/Cards.mdimporter";
  std::filesystem::copy(FERNCASE_BUNDLES_DIR "/LegacyOnly.mdimporter", _folder / bundle,
                        std::filesystem::copy_options::recursive);
  std::string info = _folder.read(bundle + "/Contents/Info.plist");
  info.insert(info.rfind("</dict>"),
              "<key>CFBundleDocumentTypes</key><array><dict><key>LSItemContentTypes</key>"
              "<array><string>public.vcard</string></array></dict></array>");
  _folder.write(bundle + "/Contents/Info.plist", info);
  _folder.write("a.eml", kMessage);
  _folder.write("b.vcf", "BEGIN:VCARD");
  auto finished = command({"--ndjson", "b.vcf", "a.eml"})
                      .folder(_folder.path())
                      .variable("XDG_DATA_HOME=" + (_folder / "data").string())
                      .run();
  ASSERT_EQ(finished.exitCode, 0) << finished.complaints;
  auto results = jsonLines(finished.output);
  EXPECT_EQ(results.at(0).at("attributes").at("LegacyContentType"), "public.vcard");
  EXPECT_EQ(results.at(1).at("attributes").at("kMDItemSubject"), "Hello");
}

TEST_F(ImportRouteTest, AMissingMailImporterIsNamed) {
  _folder.write("a.eml", kMessage);
  std::filesystem::create_directories(_folder / "root");
  auto finished = command({"--ndjson", "--importer", kImporter, "a.eml"})
                      .folder(_folder.path())
                      .variable("KBX_SYSTEM_ROOT=" + (_folder / "root").string())
                      .run();
  EXPECT_EQ(finished.exitCode, 4);
  auto results = jsonLines(finished.output);
  ASSERT_EQ(results.size(), 1u);
  EXPECT_EQ(results[0].at("error").at("domain"), "FerncaseErrorDomain");
  EXPECT_THAT(results[0].at("error").at("description").get<std::string>(),
              HasSubstr("root/System/Library/Spotlight/Mail.mdimporter can’t be loaded: "));
  EXPECT_EQ(_folder.count(), 2u) << "something was left behind";
}

TEST_F(ImportRouteTest, WithTheForceFlagTheMailImporterIsUsed) {
  _folder.write("a.eml", kMessage);
  auto finished = command({"--force", "--ndjson", "--importer", kImporter, "a.eml"})
                      .folder(_folder.path())
                      .variable("KBX_SYSTEM_ROOT=" FERNCASE_BUNDLES_DIR "/root")
                      .run();
  ASSERT_EQ(finished.exitCode, 0) << finished.complaints;
  auto attributes = jsonLines(finished.output).at(0).at("attributes");
  EXPECT_EQ(attributes.at("kMDItemSubject"), "Hello");
  EXPECT_EQ(attributes.at("kMDItemTextContent"), "Good morning\n");
  EXPECT_FALSE(attributes.contains("FoxTrot"));
  EXPECT_EQ(_folder.count(), 1u);
}

TEST_F(ImportRouteTest, VerboseShowsTheLogOnStandardError) {
  _folder.write("a.eml", kMessage);
  auto process = command({"-v", "--importer", kImporter, "a.eml"});
  auto finished = process.folder(_folder.path()).variable("KBX_SYSTEM_ROOT=/nowhere").run();
  EXPECT_THAT(finished.complaints,
              HasSubstr("log: FerncaseSpotlightImporter error (null) for file " +
                        (_folder / "a.eml").string() + "\n"));
  EXPECT_EQ(finished.output, "");
}

TEST_F(ImportRouteTest, ABundleThatCannotBeLoadedIsNamedWithTheReason) {
  _folder.write("a.eml", kMessage);
  for (auto form : {"--json", "--ndjson", "-v"}) {
    auto [code, output, complaints] = run({form, "--importer", "gone.mdimporter", "a.eml"});
    EXPECT_EQ(code, 4);
    EXPECT_EQ(output, "");
    EXPECT_THAT(complaints, HasSubstr("ferncase: gone.mdimporter: No such file or directory"));
  }
}

TEST_F(ImportRouteTest, WhatIsLeftBehindIsTheUsersAlone) {
  // A foreign exception leaves the copy that was made for the mail importer.
  _folder.write("a.eml", "Subject: x\nX-Test: throw\n\n");
  auto finished = command({"--stage=beside", "--importer", kImporter, "a.eml"})
                      .folder(_folder.path())
                      .variable("KBX_SYSTEM_ROOT=" FERNCASE_BUNDLES_DIR "/root")
                      .run();
  EXPECT_EQ(finished.exitCode, 4);
  ASSERT_EQ(_folder.count(), 2u);
  for (const auto& entry : std::filesystem::directory_iterator(_folder.path())) {
    if (entry.path().filename() == "a.eml") continue;
    using std::filesystem::perms;
    EXPECT_EQ(entry.status().permissions(), perms::owner_read | perms::owner_write);
  }
}

TEST_F(ImportRouteTest, AStagedMessageLeavesNothingBehindAndIsNamedAsItIs) {
  std::filesystem::create_directories(_folder / "mail");
  std::filesystem::create_directories(_folder / "run");
  for (auto test : {"none", "throw", "fail", "raise"}) {
    SCOPED_TRACE(test);
    _folder.write("mail/a.eml", "Subject: x\nX-Test: " + std::string(test) + "\n\nbody");
    auto finished = command({"-v", "--ndjson", "--importer", kImporter, "mail/a.eml"})
                        .folder(_folder.path())
                        .variable("XDG_RUNTIME_DIR=" + (_folder / "run").string())
                        .variable("KBX_SYSTEM_ROOT=" FERNCASE_BUNDLES_DIR "/root")
                        .run();
    EXPECT_THAT(finished.output + finished.complaints,
                testing::Not(HasSubstr((_folder / "run").string())));
    if (finished.exitCode == 0) {
      EXPECT_THAT(
          jsonLines(finished.output).at(0).at("attributes").at("TestMailPath").get<std::string>(),
          StartsWith((_folder / "mail/.temp-KBXEMLXFile-").string()));
    }
    EXPECT_TRUE(std::filesystem::is_empty(_folder / "run"));
    EXPECT_EQ(_folder.count(), 2u);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(_folder / "mail"), {}), 1);
  }
}

TEST_F(ImportRouteTest, AFileThatMustNotGrowCostsItsInputAlone) {
  _folder.write("a.eml", kMessage);
  // The limit counts in blocks of 512 or 1024 bytes.
  auto finished = Process({"/bin/sh", "-c", "ulimit -f 1 && exec \"$0\" \"$@\"", FERNCASE_BINARY,
                           "import", "-", "a.eml"})
                      .folder(_folder.path())
                      .input(std::string(4096, 'x'))
                      .run();
  EXPECT_EQ(finished.exitCode, 3);
  EXPECT_EQ(finished.complaints,
            "ferncase: -: The file “standard-input.eml” couldn’t be saved: File too large.\n");
  EXPECT_THAT(finished.output, HasSubstr("Good morning"));
}

TEST_F(ImportRouteTest, EveryWayOfImportingGivesTheSameAnswers) {
  const std::string examples = FERNCASE_SOURCE_DIR "/examples";
  const auto usual = command({"--ndjson", "--extra", examples, "gone.eml"}).run();
  EXPECT_EQ(usual.exitCode, 3);
  EXPECT_EQ(jsonLines(usual.output).size(), 7u);
  for (auto way : {"--isolate=none", "--isolate=process", "-j1", "-j7", "--timeout=100",
                   "--importer=" FERNCASE_BUNDLES_DIR "/LegacyDoor.mdimporter"}) {
    SCOPED_TRACE(way);
    const auto finished = command({way, "--ndjson", "--extra", examples, "gone.eml"}).run();
    EXPECT_EQ(finished.output, usual.output);
    EXPECT_EQ(finished.complaints, usual.complaints);
    EXPECT_EQ(finished.exitCode, usual.exitCode);
  }
}

}  // namespace
}  // namespace kbx
