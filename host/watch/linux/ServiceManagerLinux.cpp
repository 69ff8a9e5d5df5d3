#include "host/watch/ServiceManager.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <string>

#include "platform/desktop/DesktopFolders.h"

namespace kbx {
namespace {

/// The address in NOTIFY_SOCKET: a path, or with an "@" a name that is no file. Length 0 for none.
socklen_t addressOf(const std::string& place, sockaddr_un* address) {
  if (place.size() < 2 || place.size() >= sizeof address->sun_path) return 0;
  if (place[0] != '/' && place[0] != '@') return 0;
  *address = {};
  address->sun_family = AF_UNIX;
  std::memcpy(address->sun_path, place.data(), place.size());
  if (place[0] == '@') address->sun_path[0] = '\0';
  const std::size_t end = place[0] == '@' ? 0 : 1;  // only a path ends in a NUL
  return static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + place.size() + end);
}

}  // namespace

void tellServiceManager(std::string_view state) {
  sockaddr_un address;
  const socklen_t length = addressOf(environmentVariable("NOTIFY_SOCKET").value_or(""), &address);
  if (length == 0) return;
  const int descriptor = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (descriptor < 0) return;
  // Not waited for: a supervisor that does not read must not stop the service.
  ::sendto(descriptor, state.data(), state.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
           reinterpret_cast<const sockaddr*>(&address), length);
  ::close(descriptor);
}

}  // namespace kbx
