#include <poll.h>

#include "host/console/StandardStreams.h"
#include "host/search/LiveSearch.h"

namespace kbx {

bool waitForReader(int milliseconds) {
  // Without an event to wait for, only the end of a pipe's reader is told.
  struct pollfd output {
    kStandardOutput, 0, 0
  };
  const int count = ::poll(&output, 1, milliseconds);
  return count <= 0 || (output.revents & (POLLERR | POLLNVAL)) == 0;
}

}  // namespace kbx
