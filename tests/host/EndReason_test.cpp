#include "host/workers/EndReason.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>

namespace kbx {
namespace {

TEST(EndReason, EveryEndHasPlainWords) {
  struct Case {
    int status;
    const char* reason;
  };
  const ImportLimits limits{0, 1, 2};
  for (auto [status, reason] :
       {Case{W_EXITCODE(0, SIGSEGV), "The importer crashed (SIGSEGV)."},
        {W_EXITCODE(0, SIGBUS), "The importer crashed (SIGBUS)."},
        {W_EXITCODE(0, SIGRTMAX), "The importer crashed (signal 64)."},
        {W_EXITCODE(0, SIGSYS),
         "The importer was stopped: it tried what no importer may do (SIGSYS)."},
        {W_EXITCODE(0, SIGKILL),
         "The importer was killed (SIGKILL); maybe the machine ran out of memory."},
        {W_EXITCODE(0, SIGXCPU),
         "The importer took more than 1 second of the processor’s time and was stopped."},
        {W_EXITCODE(0, 0), "The importer ended its process (exit code 0)."},
        {W_EXITCODE(9, 0), "The importer ended its process (exit code 9)."}})
    EXPECT_EQ(endReason(status, limits), reason);
  EXPECT_EQ(hangReason(limits), "The importer took longer than 2 seconds and was stopped.");
}

}  // namespace
}  // namespace kbx
