// Stream: bytes between a worker and its master.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace kbx {

/// Waits until all is sent. Whether it was; never raises a signal.
bool sendAll(int stream, std::string_view bytes);
/// Sends as much as is taken at once: a count, or negative when nobody is at the other end.
std::ptrdiff_t sendSome(int stream, std::string_view bytes);
/// Waits for bytes; 0 when there will be none.
std::size_t receiveSome(int stream, std::span<char> room);
/// Takes what is there: a count, 0 when nothing is, or negative when there will be none.
std::ptrdiff_t receiveWhatIsThere(int stream, std::span<char> room);
/// A stream for which something is waited: bytes or the end, and room for bytes when it is sending.
struct WatchedStream {
  int stream;
  bool isSending;
  bool canSend = false;
  bool canReceive = false;
};
/// Waits for any of them; false when a signal came first.
bool waitForStreams(std::span<WatchedStream> streams, int milliseconds);
/// Closes one's own end.
void closeStream(int stream);

}  // namespace kbx
