// The whole command as a user runs it, with the importer that the build made.
#include "host/import/ImportCommand.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <nlohmann/json.hpp>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"
#include "platform/propertylists/NSPropertyListSerialization.h"
#include "platform/text/TextDetection.h"
#include "tests/support/Process.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

const char kImporter[] = FERNCASE_SPOTLIGHT_DIR "/FerncaseSpotlightImporter.mdimporter";
const char kMessage[] = "Subject: Hello\n\nGood morning\n";

class ImportCommandTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(kImporter)) GTEST_SKIP() << "no importer is built";
  }

  Process command(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {FERNCASE_BINARY, "import"});
    return Process(std::move(arguments));
  }
  /// In the folder of the test's files; the answers are the raw text.
  Finished run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "--raw-fallback");
    return command(std::move(arguments)).folder(_folder.path()).run();
  }
  /// The objects of the lines that `--ndjson` prints.
  static std::vector<json> lines(const std::string& output) {
    std::vector<json> found;
    std::istringstream stream(output);
    for (std::string line; std::getline(stream, line);) found.push_back(json::parse(line));
    return found;
  }
  std::vector<json> runLines(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "--ndjson");
    return lines(run(std::move(arguments)).output);
  }

  TemporaryFolder _folder;
};

std::string textOf(const json& result) {
  return result.at("attributes").at("kMDItemTextContent").get<std::string>();
}

TEST_F(ImportCommandTest, OneFileIsShownWithoutAHeading) {
  _folder.write("a.eml", kMessage);
  auto [code, output, complaints] = run({"a.eml"});
  EXPECT_EQ(code, 0);
  EXPECT_EQ(output,
            "kMDItemTextContent = \"Subject: Hello\n"
            "                      \n"
            "                      Good morning\n"
            "                      \"\n");
  EXPECT_EQ(complaints, "");
}

TEST_F(ImportCommandTest, SeveralFilesAreShownUnderHeadings) {
  _folder.write("a.eml", "a");
  _folder.write("b.eml", "b");
  const std::string both =
      "== ./a.eml\nkMDItemTextContent = \"a\"\n\n== ./b.eml\nkMDItemTextContent = \"b\"\n";
  EXPECT_EQ(run({"./a.eml", "./b.eml"}).output, both);
  EXPECT_EQ(run({"."}).output, both);
}

TEST_F(ImportCommandTest, AHostileMessageCannotDriveTheTerminal) {
  _folder.write("a.eml",
                "\x1B]0;owned\x07\xC2\x9B"
                "31m\xE2\x80\xAE");
  EXPECT_EQ(run({"a.eml"}).output,
            "kMDItemTextContent = \"\\u001b]0;owned\\u0007\\u009b31m\\u202e\"\n");
}

TEST_F(ImportCommandTest, LinesOfObjectsKeepTheOrderOfTheInputs) {
  for (auto name : {"c.eml", "a.eml", "b.eml"}) _folder.write(name, name);
  auto results = runLines({"c.eml", "missing.eml", ".", "b.eml"});
  std::vector<std::string> paths;
  for (const auto& result : results) paths.push_back(result.at("path"));
  EXPECT_THAT(paths, ElementsAre("c.eml", "missing.eml", "./a.eml", "./b.eml", "./c.eml", "b.eml"));
  EXPECT_EQ(textOf(results[2]), "a.eml");
}

TEST_F(ImportCommandTest, TheArrayHoldsWhatTheLinesHold) {
  _folder.write("a.eml", "\"\\\x01 \xC3\xA4\xE2\x80\xAE\xF0\x9F\x98\x80\r\n");
  const std::vector<std::string> inputs{"a.eml", "missing.eml", "a.eml"};
  auto arguments = inputs;
  arguments.insert(arguments.begin(), "--json");
  auto array = json::parse(run(arguments).output);
  EXPECT_EQ(array, json(runLines(inputs)));
  EXPECT_EQ(array.size(), 3u);
  EXPECT_EQ(array[1].at("error").at("code"), 260);
}

TEST_F(ImportCommandTest, ThePropertyListHoldsWhatTheArrayHolds) {
  _folder.write("a.eml", "<&>\xC3\xA4\xF0\x9F\x98\x80\r\n");
  _folder.write("caf\xE9.eml", "b");
  auto [code, output, complaints] = run({"--plist", "a.eml", "missing.eml", "caf\xE9.eml"});
  EXPECT_EQ(code, 3);
  auto list = NSPropertyListSerialization::propertyListWithData(
      data(output), NSPropertyListImmutable, nullptr, nullptr);
  ASSERT_TRUE(cast<NSArray>(list)) << output;
  const json array = json::parse(run({"--json", "a.eml"}).output);
  auto* entries = cast<NSArray>(list);
  ASSERT_EQ(entries->count(), 3u);
  auto* first = cast<NSDictionary>(entries->objectAtIndex(0));
  EXPECT_EQ(text(first->objectForKey("path"_ns)), "a.eml");
  auto* attributes = cast<NSDictionary>(first->objectForKey("attributes"_ns));
  EXPECT_EQ(text(attributes->objectForKey("kMDItemTextContent"_ns)), textOf(array[0]));
  auto* error =
      cast<NSDictionary>(cast<NSDictionary>(entries->objectAtIndex(1))->objectForKey("error"_ns));
  EXPECT_EQ(text(error->objectForKey("code"_ns)), "260");
  EXPECT_EQ(text(error->objectForKey("domain"_ns)), "NSCocoaErrorDomain");
  auto* path = cast<NSData>(cast<NSDictionary>(entries->objectAtIndex(2))->objectForKey("path"_ns));
  EXPECT_EQ(text(path), "caf\xE9.eml");
}

/// What a terminal behind standard error is sent.
std::string sentToTerminal(Process& command) {
  const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (terminal < 0 || ::grantpt(terminal) || ::unlockpt(terminal))
    throw std::runtime_error("no terminal");
  const int side = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC);
  command.complaintsTo(side).run();
  ::close(side);
  std::string sent(1 << 16, '\0');
  const auto count = ::read(terminal, sent.data(), sent.size());
  ::close(terminal);
  sent.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return sent;
}

TEST_F(ImportCommandTest, OnATerminalErrorsAreLinesOfTheirOwn) {
  _folder.write("a.eml", kMessage);
  auto process = command({"--ndjson", "a.eml", "gone.eml"});
  process.folder(_folder.path()).variable("TERM=xterm");
  const std::string sent = sentToTerminal(process);
  EXPECT_THAT(sent, StartsWith("ferncase: gone.eml: "));
  EXPECT_THAT(sent, EndsWith("\r\n"));
}

TEST_F(ImportCommandTest, EachBadInputIsOneErrorAndTheOthersAreDelivered) {
  _folder.write("good.eml", "good");
  ASSERT_EQ(::mkfifo((_folder / "pipe.eml").c_str(), 0600), 0);
  std::filesystem::create_directory(_folder / "empty");
  std::filesystem::create_symlink("nowhere", _folder / "dangling.eml");
  std::filesystem::create_symlink("circle.eml", _folder / "circle.eml");
  _folder.write("large.eml", "");
  std::filesystem::resize_file(_folder / "large.eml", std::uint64_t{1} << 31);
  struct Case {
    const char* path;
    std::int64_t code;
    const char* reason;
  };
  const std::string tooLong(300, 'n');
  for (auto [path, code, reason] : {Case{"missing.eml", 260, "there is no such file"},
                                    {"good.eml/inside", 260, "there is no such file"},
                                    {"dangling.eml", 260, "there is no such file"},
                                    {"circle.eml", 256, "Too many levels of symbolic links"},
                                    {"pipe.eml", 256, "it is no regular file"},
                                    {"/dev/null", 256, "it is no regular file"},
                                    {"/dev/zero", 256, "it is no regular file"},
                                    {tooLong.c_str(), 256, "File name too long"},
                                    {"large.eml", 263, "it is too large"},
                                    {"empty", 2, "The folder holds no message"},
                                    {"", 3, "No file can have this path"}}) {
    SCOPED_TRACE(path);
    auto [exitCode, output, complaints] = run({"--ndjson", path, "good.eml"});
    auto results = lines(output);
    ASSERT_EQ(results.size(), 2u);
    EXPECT_EQ(results[0].at("path"), path);
    EXPECT_EQ(results[0].at("error").at("code"), code);
    EXPECT_THAT(results[0].at("error").at("description").get<std::string>(), HasSubstr(reason));
    EXPECT_EQ(textOf(results[1]), "good");
    EXPECT_EQ(exitCode, 3);
    const std::string shown = *path ? path : "''";
    EXPECT_THAT(complaints, StartsWith("ferncase: " + shown + ": "));
    EXPECT_THAT(complaints, HasSubstr(reason));
    EXPECT_EQ(run({path}).exitCode, 4);
    EXPECT_EQ(run({path}).output, "");
  }
}

TEST_F(ImportCommandTest, AnEmptyFileHasAnEmptyText) {
  _folder.write("a.eml", "");
  EXPECT_EQ(textOf(runLines({"a.eml"}).at(0)), "");
}

TEST_F(ImportCommandTest, MalformedTextIsDelivered) {
  _folder.write("a.eml", "caf\xE9 \xFF\xFE\x80");
  auto [code, output, complaints] = run({"--json", "a.eml"});
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(json::parse(output)[0].at("attributes").at("kMDItemTextContent").is_string());
  EXPECT_EQ(complaints, "");
}

TEST_F(ImportCommandTest, OddNamesAreDelivered) {
  const std::vector<std::string> names{"-dash.eml", "a b.eml",      "line\nfeed.eml", "[Gmail].eml",
                                       "{}.eml",    "caf\xE9.eml",  "ä€😀.eml",        "--.eml",
                                       "'\"\\.eml", "\x1B[31m.eml", "a,b.eml",        "%s.eml"};
  for (const auto& name : names) _folder.write(name, name);
  auto arguments = names;
  arguments.insert(arguments.begin(), {"--ndjson", "--"});
  auto [code, output, complaints] = run(arguments);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(complaints, "");
  EXPECT_EQ(std::ranges::count(output, '\n'), static_cast<std::ptrdiff_t>(names.size()));
  EXPECT_EQ(run({"--ndjson", "."}).exitCode, 0);
}

TEST_F(ImportCommandTest, ANameInBracketsIsOneOperand) {
  std::filesystem::create_directory(_folder / "[Gmail]");
  _folder.write("[Gmail]/a.eml", "a");
  _folder.write("[a,b]", "b");
  auto results = runLines({"[Gmail]", "[a,b]"});
  ASSERT_EQ(results.size(), 2u);
  EXPECT_EQ(results[0].at("path"), "[Gmail]/a.eml");
  EXPECT_EQ(textOf(results[1]), "b");
}

TEST_F(ImportCommandTest, AnErrorLineCannotBeFakedByAName) {
  auto [code, output, complaints] = run({"x\nferncase: fake: \x1B[31m\xE9"});
  EXPECT_EQ(code, 4);
  EXPECT_THAT(complaints, StartsWith("ferncase: x\\nferncase: fake: \\u001b[31m\\xe9: "));
  EXPECT_EQ(std::ranges::count(complaints, '\n'), 1);
}

TEST_F(ImportCommandTest, StandardInputIsAMessage) {
  for (auto arguments : {std::vector<std::string>{"--raw-fallback", "--ndjson", "-"},
                         {"--raw-fallback", "--ndjson", "--", "-"}}) {
    auto finished = command(arguments).input(kMessage).run();
    auto results = lines(finished.output);
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].at("path"), "-");
    EXPECT_EQ(textOf(results[0]), kMessage);
  }
}

TEST_F(ImportCommandTest, TheMailImporterIsTheDefault) {
  _folder.write("a.eml", kMessage);
  for (auto arguments : {std::vector<std::string>{"--ndjson", "a.eml"},
                         {"--force", "--ndjson", "a.eml"},
                         {"--stage=beside", "--ndjson", "a.eml"}}) {
    auto finished = command(arguments).folder(_folder.path()).run();
    EXPECT_EQ(finished.complaints, "");
    auto attributes = lines(finished.output).at(0).at("attributes");
    EXPECT_EQ(attributes.at("kMDItemSubject"), "Hello");
    EXPECT_EQ(attributes.at("kMDItemTextContent"), "Good morning\n");
    EXPECT_EQ(_folder.count(), 1u);
  }
}

TEST_F(ImportCommandTest, AnEmlxFileGoesStraightToTheMailImporter) {
  _folder.write("1.emlx",
                "28\nSubject: Hello\n\nGood morning\n<plist version=\"1.0\"><dict><key>flags"
                "</key><integer>1</integer></dict></plist>\n");
  auto finished = command({"--ndjson", "1.emlx"}).folder(_folder.path()).run();
  ASSERT_EQ(finished.exitCode, 0) << finished.complaints;
  auto attributes = lines(finished.output).at(0).at("attributes");
  EXPECT_EQ(attributes.at("kMDItemSubject"), "Hello");
  EXPECT_EQ(attributes.at("com_apple_mail_read"), true);
}

TEST_F(ImportCommandTest, AnEmlxFileOfHTMLAloneHasTheTextOfTheSameMessage) {
  const std::string message = "Content-Type: text/html\n\n<p>Good<p>morning";
  _folder.write("1.emlx", std::to_string(message.size()) + "\n" + message);
  _folder.write("2.eml", message);
  auto results =
      lines(command({"--ndjson", "1.emlx", "2.eml"}).folder(_folder.path()).run().output);
  ASSERT_EQ(results.size(), 2u);
  EXPECT_EQ(textOf(results[0]), "Good\nmorning");
  for (auto name : {"kMDItemTextContent", "kMDItemHTMLContent", "KBXTextContentIsSynthesized"})
    EXPECT_EQ(results[0].at("attributes").at(name), results[1].at("attributes").at(name)) << name;
}

TEST_F(ImportCommandTest, AMaildirHoldsMessagesWhateverTheyAreCalled) {
  for (auto name : {"mail/cur", "mail/new", "mail/tmp"})
    std::filesystem::create_directories(_folder / name);
  _folder.write("mail/cur/1288.M5P6.host:2,S", kMessage);
  _folder.write("mail/new/1289.host.example.zip", kMessage);
  _folder.write("mail/tmp/1290.host", kMessage);
  auto [code, output, complaints] = command({"--ndjson", (_folder / "mail").string()}).run();
  auto results = lines(output);
  ASSERT_EQ(results.size(), 2u) << complaints;
  for (const auto& result : results) EXPECT_EQ(textOf(result), "Good morning\n");
}

TEST_F(ImportCommandTest, AUsersImporterTakesTheTypesThatItDeclares) {
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
  auto results = lines(finished.output);
  EXPECT_EQ(results.at(0).at("attributes").at("LegacyContentType"), "public.vcard");
  EXPECT_EQ(results.at(1).at("attributes").at("kMDItemSubject"), "Hello");
}

TEST_F(ImportCommandTest, ExtraAttributesAreShownWhenAskedFor) {
  _folder.write("a.eml", kMessage);
  auto attributes = [&](std::vector<std::string> options) {
    options.insert(options.end(), {"--ndjson", "a.eml"});
    auto finished = command(std::move(options)).folder(_folder.path()).run();
    return lines(finished.output).at(0).at("attributes");
  };
  EXPECT_FALSE(attributes({}).contains("org_ferncase_mail_size"));
  EXPECT_EQ(attributes({"--extra"}).at("org_ferncase_mail_size"), sizeof kMessage - 1);
  EXPECT_FALSE(attributes({"--no-text"}).contains("kMDItemTextContent"));
  EXPECT_EQ(attributes({"--name", "kMDItemSubject", "--name=kMDItemKind"}),
            json({{"kMDItemSubject", "Hello"}, {"kMDItemKind", "Mail Message"}}));
}

TEST_F(ImportCommandTest, BareValuesAreForOtherPrograms) {
  _folder.write("a.eml", kMessage);
  auto finished = command({"--raw", "--name", "kMDItemSubject", "a.eml", "gone.eml", "--name", "x",
                           "--null-marker", "-"})
                      .folder(_folder.path())
                      .run();
  EXPECT_EQ(finished.exitCode, 3);
  EXPECT_EQ(finished.output, std::string("Hello\0-\0-\0-\0", 12));
}

TEST_F(ImportCommandTest, PathsCanBeListedInAFileOrOnStandardInput) {
  for (auto name : {"a.eml", "b\nb.eml", "c.eml"}) _folder.write(name, name);
  _folder.write("list", "a.eml\nc.eml");
  auto results = runLines({"--files-from", "list", "b\nb.eml"});
  ASSERT_EQ(results.size(), 3u);
  EXPECT_EQ(textOf(results[0]), "b\nb.eml");
  EXPECT_EQ(textOf(results[2]), "c.eml");
  auto finished = command({"--raw-fallback", "--ndjson", "-0", "--files-from", "-"})
                      .folder(_folder.path())
                      .input(std::string("b\nb.eml\0a.eml\0", 14))
                      .run();
  EXPECT_EQ(textOf(lines(finished.output).at(0)), "b\nb.eml");
  EXPECT_EQ(textOf(lines(finished.output).at(1)), "a.eml");
  finished = run({"--files-from", "gone"});
  EXPECT_EQ(finished.exitCode, 4);
  EXPECT_THAT(finished.complaints, StartsWith("ferncase: gone: "));
}

TEST_F(ImportCommandTest, AMissingMailImporterIsNamed) {
  _folder.write("a.eml", kMessage);
  std::filesystem::create_directories(_folder / "root");
  auto finished = command({"--ndjson", "--importer", kImporter, "a.eml"})
                      .folder(_folder.path())
                      .variable("KBX_SYSTEM_ROOT=" + (_folder / "root").string())
                      .run();
  EXPECT_EQ(finished.exitCode, 4);
  auto results = lines(finished.output);
  ASSERT_EQ(results.size(), 1u);
  EXPECT_EQ(results[0].at("error").at("domain"), "FerncaseErrorDomain");
  EXPECT_THAT(results[0].at("error").at("description").get<std::string>(),
              HasSubstr("root/System/Library/Spotlight/Mail.mdimporter can’t be loaded: "));
  EXPECT_EQ(_folder.count(), 2u) << "something was left behind";
}

TEST_F(ImportCommandTest, WithTheForceFlagTheMailImporterIsUsed) {
  _folder.write("a.eml", kMessage);
  auto finished = command({"--force", "--ndjson", "--importer", kImporter, "a.eml"})
                      .folder(_folder.path())
                      .variable("KBX_SYSTEM_ROOT=" FERNCASE_BUNDLES_DIR "/root")
                      .run();
  ASSERT_EQ(finished.exitCode, 0) << finished.complaints;
  auto attributes = lines(finished.output).at(0).at("attributes");
  EXPECT_EQ(attributes.at("kMDItemSubject"), "Hello");
  EXPECT_EQ(attributes.at("kMDItemTextContent"), "Good morning\n");
  EXPECT_FALSE(attributes.contains("FoxTrot"));
  EXPECT_EQ(_folder.count(), 1u);
}

TEST_F(ImportCommandTest, VerboseShowsTheLogOnStandardError) {
  _folder.write("a.eml", kMessage);
  auto process = command({"-v", "--importer", kImporter, "a.eml"});
  auto finished = process.folder(_folder.path()).variable("KBX_SYSTEM_ROOT=/nowhere").run();
  EXPECT_THAT(finished.complaints,
              HasSubstr("log: FerncaseSpotlightImporter error (null) for file " +
                        (_folder / "a.eml").string() + "\n"));
  EXPECT_EQ(finished.output, "");
}

TEST_F(ImportCommandTest, ABundleThatCannotBeLoadedIsNamedWithTheReason) {
  _folder.write("a.eml", kMessage);
  for (auto form : {"--json", "--ndjson", "-v"}) {
    auto [code, output, complaints] = run({form, "--importer", "gone.mdimporter", "a.eml"});
    EXPECT_EQ(code, 4);
    EXPECT_EQ(output, "");
    EXPECT_THAT(complaints, HasSubstr("ferncase: gone.mdimporter: No such file or directory"));
  }
}

TEST_F(ImportCommandTest, AFullDiskIsReported) {
  const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
  ASSERT_GE(full, 0);
  _folder.write("a.eml", kMessage);
  for (auto form : {"--json", "--ndjson", "-v"}) {
    auto finished = command({form, (_folder / "a.eml").string()}).outputTo(full).run();
    EXPECT_EQ(finished.exitCode, 1);
    EXPECT_EQ(finished.complaints, "ferncase: standard output: No space left on device\n");
  }
  auto help = Process({FERNCASE_BINARY, "--help"}).outputTo(full).run();
  EXPECT_EQ(help.exitCode, 1);
  ::close(full);
}

TEST_F(ImportCommandTest, AReaderThatIsGoneEndsTheCommandQuietly) {
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  ::close(ends[0]);
  _folder.write("a.eml", kMessage);
  auto finished = command({"--ndjson", (_folder / "a.eml").string()}).outputTo(ends[1]).run();
  EXPECT_EQ(finished.exitCode, 141);
  EXPECT_EQ(finished.complaints, "");
  ::close(ends[1]);
}

TEST_F(ImportCommandTest, AClosedOutputIsReportedAndNoFileTakesItsPlace) {
  _folder.write("a.eml", kMessage);
  auto finished = command({"-"}).input(kMessage).outputTo(-1).run();
  EXPECT_EQ(finished.exitCode, 1);
  EXPECT_EQ(finished.complaints, "ferncase: standard output: Bad file descriptor\n");
}

TEST_F(ImportCommandTest, WhatIsLeftBehindIsTheUsersAlone) {
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

TEST_F(ImportCommandTest, AStagedMessageLeavesNothingBehindAndIsNamedAsItIs) {
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
          lines(finished.output).at(0).at("attributes").at("TestMailPath").get<std::string>(),
          StartsWith((_folder / "mail/.temp-KBXEMLXFile-").string()));
    }
    EXPECT_TRUE(std::filesystem::is_empty(_folder / "run"));
    EXPECT_EQ(_folder.count(), 2u);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(_folder / "mail"), {}), 1);
  }
}

TEST_F(ImportCommandTest, AFileThatMustNotGrowCostsItsInputAlone) {
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

TEST_F(ImportCommandTest, EveryWayOfImportingGivesTheSameAnswers) {
  const std::string examples = FERNCASE_SOURCE_DIR "/examples";
  const auto usual = command({"--ndjson", "--extra", examples, "gone.eml"}).run();
  EXPECT_EQ(usual.exitCode, 3);
  EXPECT_EQ(lines(usual.output).size(), 7u);
  for (auto way : {"--isolate=none", "--isolate=process", "-j1", "-j7", "--timeout=100",
                   "--importer=" FERNCASE_BUNDLES_DIR "/LegacyDoor.mdimporter"}) {
    SCOPED_TRACE(way);
    const auto finished = command({way, "--ndjson", "--extra", examples, "gone.eml"}).run();
    EXPECT_EQ(finished.output, usual.output);
    EXPECT_EQ(finished.complaints, usual.complaints);
    EXPECT_EQ(finished.exitCode, usual.exitCode);
  }
}

TEST_F(ImportCommandTest, WaysThatMeanNothingAreRefused) {
  for (const auto& options :
       std::initializer_list<std::vector<std::string>>{{"-j", "0"},
                                                       {"-j", "x"},
                                                       {"-j", "-1"},
                                                       {"-j", "257"},
                                                       {"--isolate=some"},
                                                       {"--timeout=0"},
                                                       {"--isolate=none", "-j2"},
                                                       {"--isolate=none", "--timeout=1"}}) {
    auto arguments = options;
    arguments.push_back("a.eml");
    EXPECT_EQ(command(arguments).run().exitCode, 2) << options.back();
  }
}

TEST_F(ImportCommandTest, StandardInputKeepsItsPlaceAmongFiles) {
  for (auto name : {"a.eml", "b.eml"}) _folder.write(name, "Subject: x\n\n" + std::string(name));
  auto finished = command({"--ndjson", "-j2", "a.eml", "-", "b.eml"})
                      .folder(_folder.path())
                      .input("Subject: x\n\ninput")
                      .run();
  EXPECT_EQ(finished.exitCode, 0) << finished.complaints;
  std::vector<std::string> texts;
  for (const auto& result : lines(finished.output)) texts.push_back(textOf(result));
  EXPECT_THAT(texts, ElementsAre("a.eml", "input", "b.eml"));
}

/// The messages that others wrote, where they are at hand.
class RealMessagesTest : public ImportCommandTest {
 protected:
  void SetUp() override {
    ImportCommandTest::SetUp();
    if (!IsSkipped() && !std::filesystem::exists(messages()))
      GTEST_SKIP() << "no messages in " << messages();
  }
  static std::filesystem::path messages() { return FERNCASE_SOURCE_DIR "/../shared/data/eml"; }
};

std::string bytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The text of bytes that are not UTF-8: what the platform takes them for, or nothing.
std::string guessedText(std::string_view bytes) {
  auto guessed = stringByDetectingEncoding(data(bytes), nullptr);
  return guessed ? *guessed->UTF8String() : "";
}

TEST_F(RealMessagesTest, AllAreDeliveredAndTheirTextIsTheirBytes) {
  auto [code, output, complaints] = run({"--ndjson", messages().string()});
  EXPECT_EQ(code, 0);
  EXPECT_EQ(complaints, "");
  auto results = lines(output);
  EXPECT_EQ(results.size(), 200u);
  std::size_t exact = 0;
  for (const auto& result : results) {
    const std::string path = result.at("path"), bytes = bytesOf(path);
    const bool isUTF8 = NSString::stringWithUTF8(bytes) != nullptr;
    exact += isUTF8;
    EXPECT_TRUE(textOf(result) == (isUTF8 ? bytes : guessedText(bytes))) << path;
  }
  EXPECT_EQ(exact, 182u);
}

/// The names and bytes of the files in a folder.
std::map<std::string, std::string> filesIn(const std::filesystem::path& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    files[entry.path().filename().string()] = bytesOf(entry.path().string());
  return files;
}

TEST_F(RealMessagesTest, EveryMessageIsImportedAndItsFolderStaysAsItIs) {
  const auto before = filesIn(messages());
  auto [code, output, complaints] = command({"--ndjson", messages().string()}).run();
  EXPECT_EQ(code, 0);
  EXPECT_EQ(complaints, "");
  auto results = lines(output);
  EXPECT_EQ(results.size(), 200u);
  for (const auto& result : results) {
    const auto& attributes = result.at("attributes");
    EXPECT_EQ(attributes.at("kMDItemKind"), "Mail Message");
    EXPECT_TRUE(attributes.contains("kMDItemTextContent")) << result.at("path");
  }
  EXPECT_TRUE(filesIn(messages()) == before);
  for (auto way : {"--stage=beside", "--isolate=none",
                   "--importer=" FERNCASE_BUNDLES_DIR "/LegacyDoor.mdimporter"}) {
    auto other = command({way, "--ndjson", messages().string()}).run();
    EXPECT_TRUE(other.output == output) << way << " changed the answer";
  }
}

TEST_F(RealMessagesTest, TheArrayIsValid) {
  auto finished = run({"--json", messages().string()});
  EXPECT_EQ(json::parse(finished.output).size(), 200u);
}

TEST_F(RealMessagesTest, TheTextFormHoldsNoControlCharacter) {
  auto finished = run({messages().string()});
  EXPECT_EQ(finished.exitCode, 0);
  EXPECT_TRUE(std::ranges::all_of(finished.output, [](char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return byte == '\n' || (value >= 0x20 && value != 0x7F);
  }));
}

}  // namespace
}  // namespace kbx
