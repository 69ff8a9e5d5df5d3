// WorkerLink: what the master knows of one worker, and its end of the stream.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "host/workers/Frames.h"
#include "host/workers/WorkerNursery.h"

namespace kbx {

/// A worker from its start to its end. Adapts how much it gets at once to how fast it is.
class WorkerLink {
 public:
  using Clock = std::chrono::steady_clock;

  explicit WorkerLink(WorkerNursery::Started started)
      : _identifier(started.worker), _stream(started.stream) {}
  ~WorkerLink();
  WorkerLink(const WorkerLink&) = delete;
  WorkerLink& operator=(const WorkerLink&) = delete;

  WorkerNursery::Identifier identifier() const { return _identifier; }
  int stream() const { return _stream; }
  Clock::time_point startTime() const { return _startTime; }
  /// The numbers of the inputs that it has and has not answered, oldest first.
  const std::deque<std::uint64_t>& inputs() const { return _inputs; }
  /// How many more it should get now; several, or none.
  std::size_t appetite() const;
  bool isReady = false;  // it has said that it has an importer

  void give(std::uint64_t number, std::string_view path, std::string_view copy);
  /// Whether there is something that could not be sent yet.
  bool isWaitingToSend() const { return !_outgoing.empty(); }
  void send();
  /// Takes in what has come; false when the worker is gone.
  bool receive();
  /// The next frame that has come.
  std::optional<Frame> next() { return _reader.next(); }
  std::uint64_t claimedLength() const { return _reader.claimedLength(); }
  /// Notes that an input is answered; false when the worker did not have it.
  bool answered(std::uint64_t number);

 private:
  const WorkerNursery::Identifier _identifier;
  const int _stream;
  const Clock::time_point _startTime = Clock::now();
  std::deque<std::uint64_t> _inputs;
  std::string _outgoing;
  FrameReader _reader;
  std::size_t _batch = 1;
  std::size_t _answeredOfBatch = 0;
  Clock::time_point _batchTime = _startTime;  // when its last batch was answered
};

}  // namespace kbx
