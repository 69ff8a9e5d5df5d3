#include "host/workers/WorkerLink.h"

#include "host/workers/Stream.h"

namespace kbx {
namespace {

constexpr std::size_t kLargestBatch = 32;
/// A batch should take about so long: less, and the trips there and back count; more, and the
/// others wait for the last of a run.
constexpr auto kShortTime = std::chrono::milliseconds(4);
constexpr auto kLongTime = std::chrono::milliseconds(16);
constexpr std::size_t kBytesAtOnce = 1 << 16;

}  // namespace

WorkerLink::~WorkerLink() { closeStream(_stream); }

std::size_t WorkerLink::appetite() const {
  // A second batch lies ready while the first is in work.
  return _inputs.size() > _batch ? 0 : 2 * _batch - _inputs.size();
}

void WorkerLink::give(std::uint64_t number, std::string_view path, std::string_view copy) {
  if (_inputs.empty()) _batchTime = Clock::now();
  _inputs.push_back(number);
  appendFrame(_outgoing, FrameKind::Import, number, bytesOfTextPair(path, copy));
}

void WorkerLink::send() {
  const std::ptrdiff_t count = sendSome(_stream, _outgoing);
  // What cannot be sent because the worker is gone need not be: receive() will tell.
  _outgoing.erase(0, count < 0 ? _outgoing.size() : static_cast<std::size_t>(count));
}

bool WorkerLink::receive() {
  while (true) {
    const auto room = _reader.room(kBytesAtOnce);
    const std::ptrdiff_t count = receiveWhatIsThere(_stream, room);
    if (count <= 0) return count == 0;
    _reader.added(static_cast<std::size_t>(count));
    if (static_cast<std::size_t>(count) < room.size()) return true;
  }
}

bool WorkerLink::answered(std::uint64_t number) {
  if (_inputs.empty() || _inputs.front() != number) return false;
  _inputs.pop_front();
  if (++_answeredOfBatch < _batch) return true;
  const auto now = Clock::now();
  const auto time = now - _batchTime;
  if (time < kShortTime)
    _batch = std::min(2 * _batch, kLargestBatch);
  else if (time > kLongTime)
    _batch = std::max(_batch / 2, std::size_t{1});
  _batchTime = now;
  _answeredOfBatch = 0;
  return true;
}

}  // namespace kbx
