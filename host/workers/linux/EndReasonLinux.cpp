#include <sys/wait.h>

#include <csignal>
#include <cstring>

#include "host/workers/EndReason.h"

namespace kbx {
namespace {

std::string inSeconds(unsigned seconds) {
  return std::to_string(seconds) + (seconds == 1 ? " second" : " seconds");
}

std::string nameOf(int signal) {
  const char* name = ::sigabbrev_np(signal);
  return name ? "SIG" + std::string(name) : "signal " + std::to_string(signal);
}

}  // namespace

std::string endReason(int status, const ImportLimits& limits) {
  if (WIFEXITED(status))
    return "The importer ended its process (exit code " + std::to_string(WEXITSTATUS(status)) +
           ").";
  const std::string name = nameOf(WTERMSIG(status));
  switch (WTERMSIG(status)) {
    case SIGXCPU:
      return "The importer took more than " + inSeconds(limits.processorSeconds) +
             " of the processor’s time and was stopped.";
    case SIGSYS:
      return "The importer was stopped: it tried what no importer may do (" + name + ").";
    case SIGKILL:
      return "The importer was killed (" + name + "); maybe the machine ran out of memory.";
    default:
      return "The importer crashed (" + name + ").";
  }
}

std::string hangReason(const ImportLimits& limits) {
  return "The importer took longer than " + inSeconds(limits.seconds) + " and was stopped.";
}

}  // namespace kbx
