// What `ferncase import` reads, prints and refuses.
#include "host/import/ImportCommand.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"
#include "platform/propertylists/NSPropertyListSerialization.h"
#include "tests/host/ImportCommandFixture.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

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
    auto results = jsonLines(output);
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
    auto results = jsonLines(finished.output);
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].at("path"), "-");
    EXPECT_EQ(textOf(results[0]), kMessage);
  }
}

TEST_F(ImportCommandTest, AMaildirHoldsMessagesWhateverTheyAreCalled) {
  for (auto name : {"mail/cur", "mail/new", "mail/tmp"})
    std::filesystem::create_directories(_folder / name);
  _folder.write("mail/cur/1288.M5P6.host:2,S", kMessage);
  _folder.write("mail/new/1289.host.example.zip", kMessage);
  _folder.write("mail/tmp/1290.host", kMessage);
  auto [code, output, complaints] = command({"--ndjson", (_folder / "mail").string()}).run();
  auto results = jsonLines(output);
  ASSERT_EQ(results.size(), 2u) << complaints;
  for (const auto& result : results) EXPECT_EQ(textOf(result), "Good morning\n");
}

TEST_F(ImportCommandTest, ExtraAttributesAreShownWhenAskedFor) {
  _folder.write("a.eml", kMessage);
  auto attributes = [&](std::vector<std::string> options) {
    options.insert(options.end(), {"--ndjson", "a.eml"});
    auto finished = command(std::move(options)).folder(_folder.path()).run();
    return jsonLines(finished.output).at(0).at("attributes");
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
  EXPECT_EQ(textOf(jsonLines(finished.output).at(0)), "b\nb.eml");
  EXPECT_EQ(textOf(jsonLines(finished.output).at(1)), "a.eml");
  finished = run({"--files-from", "gone"});
  EXPECT_EQ(finished.exitCode, 4);
  EXPECT_THAT(finished.complaints, StartsWith("ferncase: gone: "));
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

TEST_F(ImportCommandTest, StandardInputKeepsItsPlaceAmongFiles) {
  for (auto name : {"a.eml", "b.eml"}) _folder.write(name, "Subject: x\n\n" + std::string(name));
  auto finished = command({"--ndjson", "-j2", "a.eml", "-", "b.eml"})
                      .folder(_folder.path())
                      .input("Subject: x\n\ninput")
                      .run();
  EXPECT_EQ(finished.exitCode, 0) << finished.complaints;
  std::vector<std::string> texts;
  for (const auto& result : jsonLines(finished.output)) texts.push_back(textOf(result));
  EXPECT_THAT(texts, ElementsAre("a.eml", "input", "b.eml"));
}

}  // namespace
}  // namespace kbx
