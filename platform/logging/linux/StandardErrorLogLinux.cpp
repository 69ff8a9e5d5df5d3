#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <string>
#include <string_view>

#include "platform/logging/StandardErrorLog.h"

namespace kbx {
namespace {

std::string prefix() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm parts{};
  localtime_r(&now.tv_sec, &parts);
  char date[32];
  std::strftime(date, sizeof date, "%Y-%m-%d %H:%M:%S", &parts);
  char text[128];
  std::snprintf(text, sizeof text, "%s.%03ld %s[%d:%d] ", date, now.tv_nsec / 1000000,
                program_invocation_short_name, getpid(), gettid());
  return text;
}

void writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;  // a log that cannot be written must not stop anything
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace

void StandardErrorLog::write(NSString* message) {
  writeAll(STDERR_FILENO, prefix() + descriptionOf(message)->lossyUTF8() + "\n");
}

}  // namespace kbx
