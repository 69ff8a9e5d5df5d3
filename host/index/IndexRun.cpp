#include "host/index/IndexRun.h"

#include <algorithm>
#include <cerrno>
#include <map>
#include <utility>

#include "host/console/FerncaseErrors.h"
#include "host/console/Interruption.h"
#include "host/import/MaildirState.h"
#include "host/index/FolderReader.h"
#include "host/index/IndexedFolders.h"
#include "host/index/LargePages.h"
#include "host/index/RowMaker.h"
#include "platform/files/FileErrors.h"
#include "platform/files/NSURL.h"
#include "platform/system/Clock.h"

namespace kbx {
namespace {

using Kind = Difference::Kind;
using End = IndexRun::End;

/// File systems count time in steps; the coarsest are of two seconds.
constexpr double kCoarsestStep = 2;
constexpr double kNanosecondsPerSecond = 1e9;

/// So many files fill much memory with their words.
constexpr std::uint64_t kManyFiles = 200;

/// A time that no file has: the next run does not take the file for unchanged.
constexpr std::int64_t kNoTime = 0;

FileState doubtful(FileState state) {
  state.changed = kNoTime;
  return state;
}

/// Now, or the farthest time that can be written down, with room for the step of a clock.
std::int64_t nanosecondsSince1970() {
  constexpr double kFarthest = 9.2e18;
  const double now = Clock::current().secondsSince1970() * kNanosecondsPerSecond;
  return static_cast<std::int64_t>(std::clamp(now, -kFarthest, kFarthest));
}

/// What to remember of a state: a file that has changed this very moment may change once more and
/// have the same time again.
FileState remembered(const FileState& state) {
  constexpr auto kStep = static_cast<std::int64_t>(kCoarsestStep * kNanosecondsPerSecond);
  return state.changed > nanosecondsSince1970() - kStep ? doubtful(state) : state;
}

/// Whether a failure tells of the system at that moment rather than of the message.
bool mayPass(NSError* error) {
  return isEqual(error->domain(), NSPOSIXErrorDomain()) ||
         (isEqual(error->domain(), FerncaseErrorDomain()) &&
          error->code() == FerncaseStagingFailedError);
}

/// Whether nothing can be imported any more, whatever the message is.
bool isWithoutWorkers(NSError* error) {
  return isEqual(error->domain(), FerncaseErrorDomain()) && error->code() == FerncaseNoWorkerError;
}

/// The state of a file at this moment, or why it cannot be told (an `errno` value).
int stateNow(const std::string& path, FileState* state) {
  FolderEntry entry;
  const int failure = FolderReader::current().stateOfFile(path, &entry);
  *state = entry.state;
  return entry.isFolder ? EISDIR : failure;
}

/// Whether there is no such file, as opposed to one of which nothing is known.
bool isGone(int failure) {
  return failure == ENOENT || failure == ENOTDIR || failure == EISDIR || failure == ENOTSUP;
}

Ref<NSError> readingError(const std::string& path, int failure) {
  auto url = NSURL::fileURLWithFileSystemRepresentation(path, false);
  return fileError(url, FileAction::Reading, failure);
}

Ref<NSError> noImporterError(const std::string& path, const std::string& reason) {
  return ferncaseError(FerncaseImportFailedError, path + ": " + reason);
}

/// A worker answered with something else than a row.
Ref<NSError> unfitAnswerError() {
  return ferncaseError(FerncaseWorkerEndedError, "The importer disturbed its process.");
}

Ref<NSError> missingVolumeError(std::uint64_t count) {
  return ferncaseError(FerncaseImportFailedError,
                       "The volume that was here is missing, so the store keeps " +
                           std::to_string(count) + " of its messages.");
}

}  // namespace

End IndexRun::run(const std::vector<std::string>& roots, Ref<NSError>* error) {
  const auto key = contentKey(_store, error);
  if (!key) return End::StoreFailed;
  _key = *key;
  const std::int64_t start = nanosecondsSince1970();
  if (!_plan.make(_store.database(), roots, _listener, error)) return End::StoreFailed;
  _counts.unchanged = _plan.unchanged();
  _counts.stillFailed = _plan.stillFailed();
  _committed = _counts;
  _hasTroubles = _plan.hasTroubles();
  if (Interruption::isWished()) return End::Interrupted;
  if (_plan.isFutile()) return End::Futile;
  const End end = work(roots, error);
  const bool isNoted =
      end != End::Done || noteIndexed(_store, roots, start, _batches.hasChanges(), error);
  return isNoted ? end : End::StoreFailed;
}

End IndexRun::work(const std::vector<std::string>& roots, Ref<NSError>* error) {
  _listener.begins(_plan.pending());
  End end = importAll(roots, error);
  // What has not been looked at may be what a file that has gone was renamed to.
  if (end == End::Done) end = removeGone();
  if (!_batches.finish()) {
    if (error) *error = _batches.error();
    end = End::StoreFailed;
  }
  return end;
}

// ---- What is new or changed ---------------------------------------------------------------------

End IndexRun::importAll(const std::vector<std::string>& roots, Ref<NSError>* error) {
  Ref<NSError> failure;
  std::optional<Input> first = nextInput(&failure);
  if (first) {
    // Workers are made only where there is work for them.
    ImportSettings settings = _settings.imports;
    settings.inputs = roots;
    settings.maker = std::make_shared<RowMaker>(_key);
    ImportWorkers workers(settings);
    std::string path, reason;
    if (!workers.load(&path, &reason)) {
      if (error) *error = noImporterError(path, reason);
      return End::NoImporter;
    }
    std::optional<LargePages> largePages;
    if (_plan.pending() >= kManyFiles) largePages.emplace();
    workers.runMaking(
        [&] { return first ? std::exchange(first, std::nullopt) : nextInput(&failure); },
        [&](const Input&, const std::string& made, NSError* why) { take(made, why); });
  }
  if (failure || _stop) {
    if (error) *error = failure ? failure : _stop;
    return failure ? End::StoreFailed : End::NoImporter;
  }
  return Interruption::isWished() ? End::Interrupted : End::Done;
}

std::optional<Input> IndexRun::nextInput(Ref<NSError>* error) {
  while (_batches.isGood() && !_stop && !Interruption::isWished()) {
    const auto difference = _plan.next(error);
    if (!difference) break;
    if (auto input = inputFor(*difference)) return input;
    _listener.isDone(false);
  }
  return std::nullopt;
}

/// Looks at the file once more, since a long run comes to it late. Absent when it need not be
/// imported.
std::optional<Input> IndexRun::inputFor(const Difference& difference) {
  const auto& known = difference.known;
  Pending file{difference.path, {}, {}, known && !known->hasFailed};
  if (const int failure = stateNow(file.path, &file.state)) {
    if (!isGone(failure)) keep(file.path, readingError(file.path, failure));
    return std::nullopt;
  }
  if (isSettled(difference, file)) return std::nullopt;
  _pending.push_back(file);
  return Input{std::move(file.path), nullptr};
}

/// Reads the file when it is asked for the first time.
std::optional<ContentHash> IndexRun::hashOf(Pending& file) const {
  if (!file.hash) file.hash = messageHashOf(file.path, _key);
  return file.hash;
}

/// Whether the store knows the content already, here or from another place.
bool IndexRun::isSettled(const Difference& difference, Pending& file) {
  const auto hash = [&] { return hashOf(file); };
  const auto& known = difference.known;
  if (file.hasMessage && known->state.size == file.state.size) {
    const bool isSame = difference.kind == Kind::Renumbered && difference.state == file.state;
    if (isSame || (known->hash && hash() == known->hash)) {
      _plan.noteSameFile(known->state, file.state);
      touch(file);
      return true;
    }
  }
  const auto from = _plan.gone().take(file.path, file.state, hash);
  if (from) move(*from, file);
  return from.has_value();
}

void IndexRun::touch(const Pending& file) {
  _batches.change(0, [&](StoreWriter& store, Ref<NSError>* error) {
    ++_counts.unchanged;
    return store.touch(file.path, remembered(file.state), error);
  });
}

void IndexRun::move(const KnownFile& from, const Pending& file) {
  const bool isMade = _batches.change(0, [&](StoreWriter& store, Ref<NSError>* error) {
    ++_counts.moved;
    // A mail program that marks a message in a Maildir does nothing else than to rename it.
    const auto state = maildirState(file.path);
    return store.move(from.path, file.path, remembered(file.state), error) &&
           (!state || store.changeStates(file.path, state, error));
  });
  if (isMade) _listener.moved(from.path, file.path);
}

// ---- What the workers answer --------------------------------------------------------------------

void IndexRun::take(const std::string& made, NSError* error) {
  const Pending file = std::move(_pending.front());
  _pending.pop_front();
  // The next run does what is left; nothing is to be said of these files.
  if (error && isWithoutWorkers(error)) {
    _stop = error;
    return;
  }
  if (error)
    takeFailure(file, error);
  else
    takeMessage(file, made);
  _listener.isDone(error != nullptr);
}

void IndexRun::takeMessage(const Pending& file, const std::string& made) {
  const auto row = madeRowIn(made);
  if (!row) return takeFailure(file, unfitAnswerError());
  FileState state;
  // A hash of something else than what was imported would be a lie.
  const bool isSame = stateNow(file.path, &state) == 0 && state == file.state;
  const auto hash = file.hash ? file.hash : row->hash;
  const std::string hashBytes = isSame && hash ? bytesOf(*hash) : "";
  const FileState stored = isSame ? remembered(file.state) : doubtful(file.state);
  const bool isMade = _batches.change(state.size, [&](StoreWriter& store, Ref<NSError>* failure) {
    ++(file.hasMessage ? _counts.changed : _counts.added);
    return store.put(file.path, stored, hashBytes, row->message, failure);
  });
  if (!isMade) return;
  if (file.hasMessage)
    _listener.changed(file.path);
  else
    _listener.added(file.path);
}

void IndexRun::takeFailure(const Pending& file, NSError* error) {
  FileState state;
  if (isGone(stateNow(file.path, &state))) return;  // the next run sees that
  const bool isSame = state == file.state && !mayPass(error);
  const FileState stored = isSame ? remembered(file.state) : doubtful(file.state);
  const std::string reason = error->localizedDescription()->lossyUTF8();
  const bool isMade = _batches.change(0, [&](StoreWriter& store, Ref<NSError>* failure) {
    ++_counts.failed;
    return store.putFailure(file.path, stored, reason, failure);
  });
  if (isMade) _listener.failed(file.path, error);
}

// ---- What has gone ------------------------------------------------------------------------------

End IndexRun::removeGone() {
  std::map<std::string, std::uint64_t> missing;  // by the folder in which a volume is missed
  _plan.gone().each([&](const KnownFile& file) {
    if (auto folder = _plan.missingVolume(file))
      ++missing[*folder];
    else
      remove(file);
    return _batches.isGood() && !Interruption::isWished();
  });
  for (const auto& [folder, count] : missing) keep(folder, missingVolumeError(count));
  return Interruption::isWished() ? End::Interrupted : End::Done;
}

void IndexRun::remove(const KnownFile& file) {
  const bool isMade = _batches.change(0, [&](StoreWriter& store, Ref<NSError>* error) {
    ++_counts.removed;
    return store.remove(file.path, error);
  });
  if (isMade) _listener.removed(file.path);
}

void IndexRun::keep(const std::string& path, NSError* error) {
  _hasTroubles = true;
  _listener.kept(path, error);
}

}  // namespace kbx
