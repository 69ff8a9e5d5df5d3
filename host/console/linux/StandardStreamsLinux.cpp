#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <initializer_list>

#include "host/console/StandardStreams.h"

namespace kbx {
namespace {

bool isClosed(int descriptor) { return ::fcntl(descriptor, F_GETFD) < 0 && errno == EBADF; }

}  // namespace

void prepareStandardStreams() {
  // In this order each opening takes the number that was just found free.
  for (int descriptor : {STDIN_FILENO, kStandardOutput, kStandardError}) {
    const int wrongWay = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    if (isClosed(descriptor) && ::open("/dev/null", wrongWay) != descriptor) ::_exit(1);
  }
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace kbx
