// WorkerNursery: the process from which workers are forked.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>

namespace kbx {

/// Forks a small process early, and that process forks a worker whenever one is wanted. So a worker
/// begins with what the program was at its start: without its later threads, its open files and
/// what it has in memory. When this object or its process ends, in whatever way, so do all workers.
///
/// Workers take no notice of signals that ask the program to end. Belongs to one thread.
class WorkerNursery {
 public:
  /// What a worker does, with a stream to its master; the process ends when it returns.
  using Work = std::function<void(unsigned place, int stream)>;
  using Identifier = std::uint32_t;

  struct Started {
    Identifier worker;
    int stream;  // the master's end, to be closed by the caller; sending never raises a signal
  };

  /// To be made while the process has one thread.
  ///
  /// isHeard  whether what workers write to standard error goes to that of this process; else
  ///          nowhere, as what they write to standard output
  WorkerNursery(const Work& work, bool isHeard);
  ~WorkerNursery();
  WorkerNursery(const WorkerNursery&) = delete;
  WorkerNursery& operator=(const WorkerNursery&) = delete;

  /// Absent when the system gives no stream, or the nursery is gone.
  std::optional<Started> start(unsigned place);
  /// Kills the worker unless it has ended, and answers how it ended, as waitpid() tells it; absent
  /// when it could not even begin.
  std::optional<int> end(Identifier worker);

 private:
  int _control = -1;
  int _process = -1;
  Identifier _last = 0;
  std::map<Identifier, int> _ended;  // how those ended that nobody has asked for yet
};

}  // namespace kbx
