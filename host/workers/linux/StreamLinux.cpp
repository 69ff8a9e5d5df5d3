#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "host/workers/Stream.h"

namespace kbx {
namespace {

bool wouldWait() { return errno == EAGAIN || errno == EINTR; }

}  // namespace

bool sendAll(int stream, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::send(stream, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

std::ptrdiff_t sendSome(int stream, std::string_view bytes) {
  const ssize_t count = ::send(stream, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  return count < 0 && wouldWait() ? 0 : count;
}

std::size_t receiveSome(int stream, std::span<char> room) {
  ssize_t count;
  do count = ::recv(stream, room.data(), room.size(), 0);
  while (count < 0 && errno == EINTR);
  return count < 0 ? 0 : static_cast<std::size_t>(count);
}

std::ptrdiff_t receiveWhatIsThere(int stream, std::span<char> room) {
  const ssize_t count = ::recv(stream, room.data(), room.size(), MSG_DONTWAIT);
  if (count < 0 && wouldWait()) return 0;
  return count == 0 ? -1 : count;
}

void closeStream(int stream) { ::close(stream); }

bool waitForStreams(std::span<WatchedStream> streams, int milliseconds) {
  std::vector<pollfd> events;
  for (const WatchedStream& watched : streams)
    events.push_back(
        {watched.stream, static_cast<short>(watched.isSending ? POLLIN | POLLOUT : POLLIN), 0});
  if (::poll(events.data(), events.size(), milliseconds) < 0) return false;
  for (std::size_t i = 0; i < events.size(); ++i) {
    streams[i].canSend = events[i].revents & POLLOUT;
    streams[i].canReceive = events[i].revents & ~POLLOUT;
  }
  return true;
}

}  // namespace kbx
