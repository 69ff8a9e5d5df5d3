#include "platform/logging/StandardErrorLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

#include "tests/support/Text.h"

namespace kbx {
namespace {

/// Takes the place of standard error while it lives, and keeps each write apart.
class CapturedStandardError {
 public:
  CapturedStandardError() : _before(dup(STDERR_FILENO)) {
    if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, _ends) != 0) throw std::bad_alloc();
    dup2(_ends[1], STDERR_FILENO);
    close(_ends[1]);
  }
  ~CapturedStandardError() {
    putBack();
    close(_ends[0]);
  }

  std::vector<std::string> writes() {
    putBack();
    std::vector<std::string> result;
    char packet[1 << 16];
    for (ssize_t size; (size = read(_ends[0], packet, sizeof packet)) > 0;)
      result.emplace_back(packet, static_cast<std::size_t>(size));
    return result;
  }

 private:
  void putBack() {
    if (_before < 0) return;
    dup2(_before, STDERR_FILENO);
    close(std::exchange(_before, -1));
  }

  int _before;
  int _ends[2];
};

/// What each message is written as.
std::vector<std::string> written(std::initializer_list<NSString*> messages) {
  CapturedStandardError captured;
  StandardErrorLog log;
  for (NSString* message : messages) log.write(message);
  return captured.writes();
}

TEST(StandardErrorLog, AMessageIsOneLineInOneWrite) {
  EXPECT_THAT(
      written({"first"_ns, "second"_ns}),
      testing::ElementsAre(testing::EndsWith("] first\n"), testing::EndsWith("] second\n")));
}

TEST(StandardErrorLog, TheLineTellsWhenAndWho) {
  const std::string who = std::string(" ") + program_invocation_short_name + "[" +
                          std::to_string(getpid()) + ":" + std::to_string(gettid()) + "] here\n";
  EXPECT_THAT(written({"here"_ns}),
              testing::ElementsAre(testing::AllOf(
                  testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}"
                                        "\\.[0-9]{3} (.|\n)*"),
                  testing::EndsWith(who))));
}

TEST(StandardErrorLog, EveryMessageCanBeWritten) {
  std::string longText(20000, 'x');
  EXPECT_THAT(
      written({nullptr, ""_ns, NSString::stringWithUTF16(u"\xD800"), "two\nlines"_ns,
               string(longText)}),
      testing::ElementsAre(testing::EndsWith("] (null)\n"), testing::EndsWith("] \n"),
                           testing::EndsWith("] \uFFFD\n"), testing::EndsWith("] two\nlines\n"),
                           testing::EndsWith(longText + "\n")));
}

TEST(StandardErrorLog, ALogThatNobodyReadsStopsNothing) {
  const int before = dup(STDERR_FILENO);
  close(STDERR_FILENO);
  StandardErrorLog().write("lost"_ns);
  dup2(before, STDERR_FILENO);
  close(before);
}

}  // namespace
}  // namespace kbx
