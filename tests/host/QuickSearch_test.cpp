#include "host/quick/QuickSearch.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include "host/console/Command.h"
#include "tests/support/MailStore.h"
#include "tests/support/Process.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

constexpr char kHost[] = FERNCASE_BUILD_DIR "/lib/ferncase/ferncase";

class QuickSearchTest : public testing::Test {
 protected:
  Words command(const std::string& program, const Words& arguments) const {
    Words words{program, "search", "--db", _store.path()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
  }

  /// The program without the host: what it answers, it answers by itself.
  std::string loneProgram() const {
    const fs::path program = _folder / "ferncase";
    if (!fs::exists(program)) fs::copy_file(FERNCASE_BINARY, program);
    return program.string();
  }

  TemporaryFolder _folder;
  MailStore _store{{{.path = "/mail/a.eml",
                     .subject = "The engine",
                     .body = "It weaves patterns; don't e-mail.",
                     .authors = {"Ada Lovelace"},
                     .authorAddresses = {"ada@example.org"},
                     .date = 1715952600},
                    {.path = "/mail/odd\n\xE9.eml", .subject = "draft", .body = "engine café"},
                    {.path = "/mail/in/b.eml", .subject = "plan", .date = 1715952000}}};
};

TEST_F(QuickSearchTest, SaysWhatTheHostSays) {
  for (const Words& arguments : {Words{"engine"},
                                 {"engine", "weaves"},
                                 {"-engine"},
                                 {"\"weaves patterns\""},
                                 {"weav*"},
                                 {"don't", "E-MAIL"},
                                 {"ada@example.org"},
                                 {"from:ada", "OR", "subject:plan"},
                                 {"after:2024-05", "before:2025"},
                                 {"-after:2024"},
                                 {"after:3d"},
                                 {"-is:read"},
                                 {"*"},
                                 {"*", "--limit", "1", "--offset", "1"},
                                 {"*", "--sort", "path", "--reverse"},
                                 {"engine", "--sort", "rank"},
                                 {"-0", "*"},
                                 {"--count", "engine"},
                                 {"--count", "nowhere"},
                                 {"nowhere"},
                                 {"café"},
                                 {"kMDItemSubject == \"plan\""},
                                 {"--json", "engine"},
                                 {"form:ada"},
                                 {"engine", "OR"},
                                 {"engine", "--limit", "many"},
                                 {"engine", "--sort", "size"},
                                 {}}) {
    SCOPED_TRACE(testing::PrintToString(arguments));
    const auto quick = Process(command(FERNCASE_BINARY, arguments)).run();
    const auto host = Process(command(kHost, arguments)).run();
    EXPECT_EQ(quick.output, host.output);
    EXPECT_EQ(quick.complaints, host.complaints);
    EXPECT_EQ(quick.exitCode, host.exitCode);
  }
}

TEST_F(QuickSearchTest, PlainSearchesNeedNoHost) {
  const auto found = Process(command(loneProgram(), {"engine", "-draft"})).run();
  EXPECT_EQ(found.output, "/mail/a.eml\n");
  EXPECT_EQ(found.exitCode, 0);
  EXPECT_EQ(Process(command(loneProgram(), {"--count", "*"})).run().output, "3\n");
  EXPECT_EQ(Process(command(loneProgram(), {"nowhere"})).run().exitCode, 1);
}

TEST_F(QuickSearchTest, AMissingHostIsTold) {
  const auto finished = Process({loneProgram(), "--version"}).run();
  EXPECT_EQ(finished.output, "");
  EXPECT_EQ(finished.complaints, "ferncase: " + (_folder / "../lib/ferncase/ferncase").string() +
                                     ": No such file or directory\n");
  EXPECT_EQ(finished.exitCode, 1);
}

TEST_F(QuickSearchTest, TroublesAreToldAsTheHostTellsThem) {
  for (const std::string& program : {std::string(FERNCASE_BINARY), std::string(kHost)}) {
    const auto missing =
        Process({program, "search", "--db", (_folder / "none.db").string(), "word"}).run();
    EXPECT_EQ(missing.exitCode, kStoreFailed);
    EXPECT_EQ(missing.complaints, "ferncase: " + (_folder / "none.db").string() +
                                      ": there is no store; `ferncase index FOLDER` makes one\n");
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    const auto unwritten = Process(command(program, {"engine"})).outputTo(full).run();
    ::close(full);
    EXPECT_EQ(unwritten.exitCode, kBroken);
    EXPECT_EQ(unwritten.complaints, "ferncase: standard output: No space left on device\n");
  }
}

TEST_F(QuickSearchTest, ADamagedStoreIsTheHostsMatter) {
  const std::string path = (_folder / "broken.db").string();
  _folder.write("broken.db", "SQLite format 3, and nothing more");
  const auto quick = Process({FERNCASE_BINARY, "search", "--db", path, "word"}).run();
  const auto host = Process({kHost, "search", "--db", path, "word"}).run();
  EXPECT_EQ(quick.exitCode, kStoreFailed);
  EXPECT_EQ(quick.complaints, host.complaints);
  EXPECT_EQ(quick.output, "");
}

}  // namespace
}  // namespace kbx
