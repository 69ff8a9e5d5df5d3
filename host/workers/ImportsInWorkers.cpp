#include "host/workers/ImportsInWorkers.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>

#include "host/console/FerncaseErrors.h"
#include "host/console/Interruption.h"
#include "host/workers/EndReason.h"
#include "host/workers/ImportFiles.h"
#include "host/workers/ImportWorker.h"
#include "host/workers/ImporterOfSettings.h"
#include "host/workers/Stream.h"
#include "host/workers/Values.h"
#include "platform/files/FileSystem.h"

namespace kbx {
namespace {

using Clock = WorkerLink::Clock;

constexpr std::size_t kMostWorkers = 256;
/// Inputs between `next` and `take` for each worker: what it has, and what it has done while
/// another one is busy with an earlier message.
constexpr std::size_t kMostJobsPerWorker = 128;
constexpr std::size_t kMostHeldBytes = std::size_t{64} << 20;
constexpr unsigned kMostFailedStarts = 3;
constexpr char kNoProcess[] = "no worker process can be started";

std::size_t countOf(const ImportSettings& settings) {
  const std::size_t wanted =
      settings.workers ? settings.workers : std::thread::hardware_concurrency();
  return std::clamp<std::size_t>(wanted, 1, kMostWorkers);
}

Ref<NSError> endedError(std::string_view reason) {
  return ferncaseError(FerncaseWorkerEndedError, reason);
}

void makeEmpty(const ScratchFolder& folder) {
  std::error_code ignored;
  std::filesystem::remove_all(folder.path(), ignored);
  if (!folder.failure()) std::filesystem::create_directory(folder.path(), ignored);
}

}  // namespace

ImportsInWorkers::ImportsInWorkers(const ImportSettings& settings)
    : _settings(settings),
      _copyFolder(_disk.path() + "/copies", _disk.failure()),
      _files(filesForImporting(settings)),
      _progress(countOf(settings)),
      _workers(countOf(settings)),
      _nursery([this](unsigned place, int stream) { work(place, stream); },
               settings.log != nullptr) {
  makeEmpty(_copyFolder);
  startWorker(0);  // gets ready while the caller looks for inputs
}

ImportsInWorkers::~ImportsInWorkers() = default;

ScratchFolder ImportsInWorkers::stagingFolder(const ScratchFolder& parent,
                                              std::size_t place) const {
  return ScratchFolder(parent.path() + "/" + std::to_string(place), parent.failure());
}

/// In the worker's process.
void ImportsInWorkers::work(unsigned place, int stream) const {
  const ScratchFolder memory = stagingFolder(_memory, place), disk = stagingFolder(_disk, place);
  AllowedFiles files = _files;
  files.readable.push_back(_copyFolder.path());
  files.writable.insert(files.writable.end(), {memory.path(), disk.path()});
  workAsImportWorker({_settings, memory, disk, files, _progress[place]}, stream);
}

// Giving work.

bool ImportsInWorkers::startWorker(std::size_t place) {
  for (const ScratchFolder* parent : {&_memory, &_disk}) makeEmpty(stagingFolder(*parent, place));
  _progress[place].end();
  if (auto started = _nursery.start(static_cast<unsigned>(place))) {
    _workers[place] = std::make_unique<WorkerLink>(*started);
    return true;
  }
  failToStart(kNoProcess);
  return false;
}

/// The worker that should get work next: one that has none before one that is not there yet before
/// one that has some. None when all have enough.
WorkerLink* ImportsInWorkers::hungriest() {
  WorkerLink* found = nullptr;
  std::size_t free = countOfWorkers();
  for (std::size_t place = 0; place < countOfWorkers(); ++place) {
    WorkerLink* worker = _workers[place].get();
    if (!worker)
      free = std::min(free, place);
    else if (worker->appetite() > 0 && (!found || worker->inputs().size() < found->inputs().size()))
      found = worker;
  }
  if (found && found->inputs().empty()) return found;
  const bool isFree = free < countOfWorkers() && !_failure;
  return isFree && startWorker(free) ? _workers[free].get() : found;
}

/// Gives inputs to workers until these have enough or there are no more for now.
void ImportsInWorkers::giveWork(const Next& next) {
  while (auto number = nextToGive(next)) {
    WorkerLink* worker = hungriest();
    if (!worker) return _waiting.push_front(*number);
    give(*worker, *number);
    for (std::size_t more = worker->appetite(); more > 0; --more) {
      const auto following = nextToGive(next);
      if (!following) break;
      give(*worker, *following);
    }
    worker->send();
  }
}

std::optional<std::uint64_t> ImportsInWorkers::nextToGive(const Next& next) {
  while (true) {
    if (!_waiting.empty()) {
      const std::uint64_t number = _waiting.front();
      // Standard input may keep everyone waiting, so all that comes before it is handed over first.
      const Job& waiting = job(number);
      const bool isBlocked = waiting.input.path == kStandardInputName && number != _first;
      if (isBlocked) return std::nullopt;
      _waiting.pop_front();
      prepare(number);
      if (job(number).state == Job::State::Waiting) return number;
      continue;
    }
    const bool isFull =
        _jobs.size() >= kMostJobsPerWorker * countOfWorkers() || _heldBytes >= kMostHeldBytes;
    if (_isExhausted || isFull || Interruption::isWished()) return std::nullopt;
    auto input = next();
    if (!input) {
      _isExhausted = true;
      return std::nullopt;
    }
    const std::uint64_t number = _first + _jobs.size();
    _jobs.emplace_back().input = std::move(*input);
    _waiting.push_back(number);
  }
}

/// Finishes a job for which there is nothing to be done by a worker.
void ImportsInWorkers::prepare(std::uint64_t number) {
  Job& found = job(number);
  Ref<NSError> error = found.input.error;
  if (_failure && !error)
    error = ferncaseError(FerncaseNoWorkerError, "The importer can’t be used: " + _failure->reason);
  const bool isStandardInput = found.input.path == kStandardInputName;
  if (!error && isStandardInput && found.copy.empty())
    found.copy = _copies.ofStandardInput(&error);
  else if (!error && !isStandardInput)
    (void)locationOf(found.input, &error);
  if (error) finish(number, error);
}

void ImportsInWorkers::give(WorkerLink& worker, std::uint64_t number) {
  Job& given = job(number);
  given.state = Job::State::Given;
  if (given.input.path == kStandardInputName)
    worker.give(number, given.copy, "");
  else
    worker.give(number, given.input.path, given.copy);
}

// Waiting for answers.

void ImportsInWorkers::waitForWorkers() {
  std::vector<WatchedStream> streams;
  std::vector<std::size_t> places;
  for (std::size_t place = 0; place < countOfWorkers(); ++place) {
    if (!_workers[place]) continue;
    streams.push_back({_workers[place]->stream(), _workers[place]->isWaitingToSend()});
    places.push_back(place);
  }
  if (places.empty() || !waitForStreams(streams, millisecondsToDeadline())) return;
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (streams[i].canSend) _workers[places[i]]->send();
    if (streams[i].canReceive) hear(places[i]);
  }
  for (std::size_t place : places)
    if (isTooLate(place)) {
      hear(place);  // it may have answered in this moment
      if (isTooLate(place)) lose(place, hangReason(_settings.limits));
    }
}

bool ImportsInWorkers::isTooLate(std::size_t place) const {
  return _workers[place] && deadlineOf(place) <= Clock::now();
}

/// When a worker will have taken too long; far away for one that has nothing to do.
Clock::time_point ImportsInWorkers::deadlineOf(std::size_t place) const {
  const WorkerLink& worker = *_workers[place];
  const auto allowed = std::chrono::seconds(_settings.limits.seconds);
  if (!worker.isReady) return worker.startTime() + allowed;
  if (_progress[place].number == Progress::kNothing) return Clock::time_point::max();
  return Clock::time_point(Clock::duration(_progress[place].since)) + allowed;
}

/// -1 for none; never so long that a worker which begins meanwhile is overlooked.
int ImportsInWorkers::millisecondsToDeadline() const {
  auto deadline = Clock::now() + std::chrono::seconds(_settings.limits.seconds);
  for (std::size_t place = 0; place < countOfWorkers(); ++place)
    if (_workers[place]) deadline = std::min(deadline, deadlineOf(place));
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return static_cast<int>(std::clamp<std::int64_t>(left, 0, 1000 * 3600));
}

/// Takes in what a worker says.
void ImportsInWorkers::hear(std::size_t place) {
  const bool isThere = _workers[place]->receive();
  while (_workers[place]) {
    const auto frame = _workers[place]->next();
    if (!frame) break;
    takeFrame(place, *frame);
  }
  if (_workers[place] && claimsTooMuch(*_workers[place]))
    lose(place, "The importer’s answer is too large.");
  if (_workers[place] && !isThere) lose(place, "");
}

void ImportsInWorkers::takeFrame(std::size_t place, const Frame& frame) {
  WorkerLink& worker = *_workers[place];
  switch (frame.kind) {
    case FrameKind::Ready:
      worker.isReady = true;
      _failedStarts = 0;
      _hasStarted = true;
      return noteProtections(frame.bytes);
    case FrameKind::Unready: {
      auto [path, reason] = textPairIn(frame.bytes);
      worker.isReady = true;
      _failure = Failure{std::move(path), std::move(reason)};
      return;
    }
    case FrameKind::Log:
      return showLog(frame.number, frame.bytes);
    case FrameKind::Attributes:
    case FrameKind::Made:
    case FrameKind::Failure:
    case FrameKind::Denied:
      if (worker.answered(frame.number)) return answer(frame.number, frame);
      break;
    case FrameKind::Import:
      break;
  }
  lose(place, "The importer disturbed its process.");
}

void ImportsInWorkers::answer(std::uint64_t number, const Frame& frame) {
  Job& answered = job(number);
  if (frame.kind == FrameKind::Denied) return copyAndRepeat(number);
  answered.answer = frame.kind;
  answered.bytes = frame.bytes;
  answered.state = Job::State::Done;
  _heldBytes += answered.bytes.size();
}

/// A file that lies beyond what the workers may read, because a link leads to it or because it has
/// taken the place of another one, is copied for them.
void ImportsInWorkers::copyAndRepeat(std::uint64_t number) {
  Job& repeated = job(number);
  Ref<NSError> error;
  auto file = locationOf(repeated.input, &error);
  if (!repeated.copy.empty())  // never asked for again
    error = endedError("The importer disturbed its process.");
  else
    repeated.copy = _copies.ofFile(file, &error);
  if (error) return finish(number, error);
  repeated.state = Job::State::Waiting;
  _waiting.push_front(number);
}

void ImportsInWorkers::showLog(std::uint64_t number, std::string_view bytes) {
  auto line = textOfBytes(bytes);
  if (!line || !_settings.log) return;
  if (number >= _first && number - _first < _jobs.size())
    job(number).log.emplace_back(line);
  else
    _settings.log->log(line);
}

/// Tells once, and only where the log is shown, what this machine lacks.
void ImportsInWorkers::noteProtections(std::string_view bytes) {
  Protections protections;
  if (_hasNoted || bytes.size() != sizeof protections) return;
  std::memcpy(&protections, bytes.data(), sizeof protections);
  _hasNoted = true;
  if (!protections.areComplete() && _settings.log)
    _settings.log->message("the workers are not fully protected here; see \"ferncase doctor\"");
}

/// No more than the worker itself can have in memory for its message.
bool ImportsInWorkers::claimsTooMuch(const WorkerLink& worker) const {
  const std::uint64_t claimed = worker.claimedLength();
  if (claimed <= _settings.limits.memory || worker.inputs().empty())
    return claimed > _settings.limits.memory;
  const Job& current = _jobs[worker.inputs().front() - _first];
  FileStatus status;
  FileSystem::current().statusOfPath(current.copy.empty() ? current.input.path : current.copy,
                                     &status);
  return (claimed - _settings.limits.memory) / 8 > status.size;
}

/// Ends a worker, if it has not ended by itself.
///
/// reason  what to say of the message in hand; empty where the way in which it ended says it
void ImportsInWorkers::lose(std::size_t place, std::string reason) {
  const auto worker = std::move(_workers[place]);
  const std::uint64_t inHand = _progress[place].number;
  const auto status = _nursery.end(worker->identifier());
  for (const ScratchFolder* parent : {&_memory, &_disk}) makeEmpty(stagingFolder(*parent, place));
  if (reason.empty()) reason = status ? endReason(*status, _settings.limits) : kNoProcess;
  // Without the nursery all of them ended, whatever their messages are.
  const bool isInnocent = !status || !worker->isReady;
  if (isInnocent) failToStart(reason);
  // Those before the message in hand are done, but their results were not sent yet.
  const auto& inputs = worker->inputs();
  const auto guilty = status ? std::ranges::find(inputs, inHand) : inputs.end();
  const auto blamed = guilty != inputs.end() || isInnocent ? guilty : inputs.begin();
  if (blamed != inputs.end()) finish(*blamed, endedError(reason));
  for (auto input = inputs.rbegin(); input != inputs.rend(); ++input) {
    if (blamed != inputs.end() && *input == *blamed) continue;
    job(*input).state = Job::State::Waiting;
    _waiting.push_front(*input);
  }
}

/// After the very first, or a few in a row later, nobody is to be asked any more.
void ImportsInWorkers::failToStart(std::string reason) {
  const unsigned most = _hasStarted ? kMostFailedStarts : 1;
  if (++_failedStarts >= most && !_failure)
    _failure = Failure{importerPath(_settings), std::move(reason)};
}

// Handing over.

void ImportsInWorkers::finish(std::uint64_t number, NSError* error) {
  Job& done = job(number);
  done.error = error;
  done.state = Job::State::Done;
}

/// What became of a job that is done, which is used up by that.
Imported ImportsInWorkers::imported(Job& done) const {
  Imported imported;
  imported.error = done.error;
  if (imported.error) return imported;
  if (done.answer == FrameKind::Failure)
    imported.error = errorOfBytes(done.bytes);
  else if (done.answer == FrameKind::Made && _settings.maker)
    imported.made = std::move(done.bytes);
  else if (done.answer == FrameKind::Attributes && !_settings.maker)
    imported.attributes = valuesOfBytes(done.bytes);
  done.bytes = {};  // the attributes hold it all once more
  if (!imported.attributes && !imported.made && !imported.error)
    imported.error = endedError("The importer disturbed its process.");
  return imported;
}

/// Hands over what is done, as far as nothing before it is missing. False after a wish to end.
bool ImportsInWorkers::handOver(const Take& take) {
  while (!_jobs.empty() && _jobs.front().state == Job::State::Done) {
    Job done = std::move(_jobs.front());
    _jobs.pop_front();
    ++_first;
    _heldBytes -= done.bytes.size();
    _copies.letGo(done.copy);
    for (const auto& line : done.log) _settings.log->log(line);
    take(done.input, imported(done));
    if (Interruption::isWished()) return false;
  }
  return true;
}

void ImportsInWorkers::forgetJobs() {
  for (std::size_t place = 0; place < countOfWorkers(); ++place)
    if (_workers[place] && !_workers[place]->inputs().empty()) {
      _nursery.end(_workers[place]->identifier());
      _workers[place] = nullptr;
    }
  for (const Job& forgotten : _jobs) _copies.letGo(forgotten.copy);
  _first += _jobs.size();
  _jobs.clear();
  _waiting.clear();
  _heldBytes = 0;
}

bool ImportsInWorkers::load(std::string* path, std::string* reason) {
  while (!_failure && (!_workers[0] || !_workers[0]->isReady)) {
    if (!_workers[0] && !startWorker(0)) continue;
    waitForWorkers();
  }
  if (!_failure) return true;
  *path = _failure->path;
  *reason = _failure->reason;
  return false;
}

void ImportsInWorkers::run(const Next& next, const Take& take) {
  struct Forgetting {
    ImportsInWorkers& imports;
    ~Forgetting() { imports.forgetJobs(); }
  } const forgetting{*this};
  _isExhausted = false;
  while (handOver(take)) {
    // After a wish to end, what is in hand is waited for, and nothing is begun.
    if (!Interruption::isWished()) giveWork(next);
    if (_jobs.empty()) return;
    const auto state = _jobs.front().state;
    if (Interruption::isWished() && state == Job::State::Waiting) return;
    if (state != Job::State::Done) waitForWorkers();
  }
}

}  // namespace kbx
