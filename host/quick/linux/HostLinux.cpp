#include <sys/auxv.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string>

#include "host/console/Command.h"
#include "host/console/StandardStreams.h"
#include "host/quick/Host.h"

namespace kbx {
namespace {

/// Where this program lies; where /proc is missing, where it was started from.
std::string ownPath() {
  std::array<char, PATH_MAX> path;
  const auto length = ::readlink("/proc/self/exe", path.data(), path.size());
  if (length > 0) return {path.data(), static_cast<std::size_t>(length)};
  const auto* name = reinterpret_cast<const char*>(::getauxval(AT_EXECFN));
  return name ? name : "";
}

}  // namespace

bool isForTerminal() { return ::isatty(kStandardOutput) == 1; }

int becomeHost(char** argv) {
  const std::string own = ownPath();
  // "bin/ferncase": the same way leads there in the build folder and where it is installed.
  const std::string host = own.substr(0, own.rfind('/') + 1) + FERNCASE_HOST;
  ::execv(host.c_str(), argv);
  std::fprintf(stderr, "ferncase: %s: %s\n", host.c_str(), std::strerror(errno));
  return kBroken;
}

}  // namespace kbx
