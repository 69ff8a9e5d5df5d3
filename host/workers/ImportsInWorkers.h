// ImportsInWorkers: imports files in other processes, several at a time.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/import/ScratchFolder.h"
#include "host/workers/Copies.h"
#include "host/workers/ImportSettings.h"
#include "host/workers/Imports.h"
#include "host/workers/Progress.h"
#include "host/workers/Sandbox.h"
#include "host/workers/WorkerLink.h"
#include "host/workers/WorkerNursery.h"

namespace kbx {

/// The master of the workers. A worker that crashes, hangs or takes too much costs the message that
/// it had in hand: it is replaced, and what else it had goes to others.
class ImportsInWorkers final : public Imports {
 public:
  explicit ImportsInWorkers(const ImportSettings& settings);
  ~ImportsInWorkers() override;

  bool load(std::string* path, std::string* reason) override;
  void run(const Next& next, const Take& take) override;

 private:
  /// An input between `next` and `take`. Its number is its place in the order of all inputs.
  struct Job {
    enum class State : std::uint8_t { Waiting, Given, Done };

    Input input = {};
    State state = State::Waiting;
    std::string copy;                       // what was copied for it; else empty
    std::vector<Ref<NSString>> log = {};    // lines that have not been shown
    FrameKind answer = FrameKind::Failure;  // of a job that is done
    std::string bytes = {};                 // what its answer holds
    Ref<NSError> error = nullptr;           // in the place of an answer
  };
  struct Failure {
    std::string path, reason;
  };

  std::size_t countOfWorkers() const { return _workers.size(); }
  ScratchFolder stagingFolder(const ScratchFolder& parent, std::size_t place) const;
  void work(unsigned place, int stream) const;

  // Giving work.
  bool startWorker(std::size_t place);
  void giveWork(const Next& next);
  std::optional<std::uint64_t> nextToGive(const Next& next);
  void prepare(std::uint64_t number);
  void give(WorkerLink& worker, std::uint64_t number);
  WorkerLink* hungriest();

  // Waiting for answers.
  void waitForWorkers();
  bool isTooLate(std::size_t place) const;
  int millisecondsToDeadline() const;
  WorkerLink::Clock::time_point deadlineOf(std::size_t place) const;
  void hear(std::size_t place);
  void takeFrame(std::size_t place, const Frame& frame);
  void answer(std::uint64_t number, const Frame& frame);
  void copyAndRepeat(std::uint64_t number);
  void showLog(std::uint64_t number, std::string_view bytes);
  void noteProtections(std::string_view bytes);
  bool claimsTooMuch(const WorkerLink& worker) const;
  void lose(std::size_t place, std::string reason);
  void failToStart(std::string reason);

  // Handing over.
  Imported imported(Job& done) const;
  bool handOver(const Take& take);
  void finish(std::uint64_t number, NSError* error);
  Job& job(std::uint64_t number) { return _jobs[number - _first]; }
  void forgetJobs();

  const ImportSettings _settings;
  const ScratchFolder _memory{ScratchFolder::Place::Memory};
  const ScratchFolder _disk{ScratchFolder::Place::Disk};
  const ScratchFolder _copyFolder;
  const AllowedFiles _files;
  Copies _copies{_copyFolder};
  SharedProgress _progress;
  std::vector<std::unique_ptr<WorkerLink>> _workers;  // by place; absent where none runs
  WorkerNursery _nursery;
  std::deque<Job> _jobs;               // the first is the next to be taken
  std::uint64_t _first = 0;            // its number
  std::deque<std::uint64_t> _waiting;  // what no worker has, in order
  std::size_t _heldBytes = 0;          // in answers
  bool _isExhausted = false;           // there is no further input
  unsigned _failedStarts = 0;          // since the last that went well
  std::optional<Failure> _failure;     // why no worker can work
  bool _hasStarted = false;            // any worker, ever
  bool _hasNoted = false;
};

}  // namespace kbx
