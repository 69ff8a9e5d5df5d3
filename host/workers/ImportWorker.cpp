#include "host/workers/ImportWorker.h"

#include <chrono>
#include <optional>
#include <string>

#include "host/console/FerncaseErrors.h"
#include "host/import/ImportLog.h"
#include "host/import/ImporterChoice.h"
#include "host/workers/Frames.h"
#include "host/workers/ImporterOfSettings.h"
#include "host/workers/MessageLimits.h"
#include "host/workers/Stream.h"
#include "host/workers/Values.h"
#include "platform/files/FileErrors.h"
#include "platform/files/FileSystem.h"

namespace kbx {
namespace {

using Clock = std::chrono::steady_clock;

/// Results are sent when there are so many bytes of them, or when the first has waited so long.
constexpr std::size_t kManyBytes = 1 << 15;
constexpr auto kLongWait = std::chrono::milliseconds(10);
/// A message of this size takes a while, for which results do not wait.
constexpr std::uint64_t kLargeMessage = 1 << 20;
/// Gathers frames on their way to the master.
class Sender final : private ByteSink {
 public:
  explicit Sender(int stream) : _stream(stream) {}

  void add(FrameKind kind, std::uint64_t number, std::string_view content) {
    if (_bytes.empty()) _since = Clock::now();
    appendFrame(_bytes, kind, number, content);
    if (_bytes.size() >= kManyBytes || Clock::now() - _since >= kLongWait) flush();
  }
  void addMade(std::uint64_t number, std::string_view bytes) {
    if (_bytes.empty()) _since = Clock::now();
    appendFrameHead(_bytes, FrameKind::Made, number, bytes.size());
    append(bytes);
    if (_bytes.size() >= kManyBytes || Clock::now() - _since >= kLongWait) flush();
  }
  /// Answers are long: what is long in them goes out as it is.
  void addValues(std::uint64_t number, NSDictionary* values) {
    if (_bytes.empty()) _since = Clock::now();
    appendFrameHead(_bytes, FrameKind::Attributes, number, sizeOfValues(values));
    writeValues(*this, values);
    if (_bytes.size() >= kManyBytes || Clock::now() - _since >= kLongWait) flush();
  }
  void flush() {
    _isGone |= !_bytes.empty() && !sendAll(_stream, _bytes);
    _bytes.clear();
  }
  /// Whether nobody takes what is sent.
  bool isGone() const { return _isGone; }

 private:
  void append(std::string_view bytes) override {
    if (bytes.size() < kManyBytes) {
      _bytes.append(bytes);
      return;
    }
    flush();
    _isGone |= !_isGone && !sendAll(_stream, bytes);
  }

  const int _stream;
  std::string _bytes;
  Clock::time_point _since;  // when the first of them was added
  bool _isGone = false;
};

/// The classic log of a worker: lines are shown by the master, at once, since the next thing that
/// happens may be a crash.
class SentLog final : public ImportLog {
 public:
  SentLog(Sender& sender, const Progress& progress, bool isShown)
      : ImportLog(nullptr), _sender(sender), _progress(progress), _isShown(isShown) {}

 private:
  void show(NSString* line) override {
    if (!_isShown) return;
    _sender.add(FrameKind::Log, _progress.number, bytesOfText(line));
    _sender.flush();
  }

  Sender& _sender;
  const Progress& _progress;
  const bool _isShown;
};

class ImportWorker {
 public:
  ImportWorker(const WorkerPlace& place, int stream);
  void work();

 private:
  void load(const Protections& protections);
  bool receive();
  void import(const Frame& frame);
  void answer(std::uint64_t number, NSURL* file, NSURL* contents);
  void answerWithWhatIsMade(std::uint64_t number, Ref<NSDictionary> attributes);

  const WorkerPlace& _place;
  const int _stream;
  const Protections _protections;
  Sender _sender{_stream};
  SentLog _log;
  ScopedService<ClassicLog> _installed{_log};
  Staging _staging{_place.memory, _place.disk};
  ImporterChoice _importers;
  std::optional<MessageLimits> _limits;
  FrameReader _reader;
};

ImportWorker::ImportWorker(const WorkerPlace& place, int stream)
    : _place(place),
      _stream(stream),
      _protections(enterSandbox(place.files)),
      _log(_sender, place.progress, place.settings.log != nullptr),
      _importers(importersFor(place.settings, &_staging)) {}

void ImportWorker::work() {
  _limits.emplace(_place.settings.limits);
  std::string path, reason;
  if (_importers.loadForMessages(&path, &reason))
    _sender.add(FrameKind::Ready, 0,
                {reinterpret_cast<const char*>(&_protections), sizeof _protections});
  else
    _sender.add(FrameKind::Unready, 0, bytesOfTextPair(path, reason));
  do {
    while (auto frame = _reader.next()) import(*frame);
    _sender.flush();
  } while (!_sender.isGone() && receive());
}

/// Waits for more to do; false when there is nobody to do it for.
bool ImportWorker::receive() {
  const auto room = _reader.room(1 << 16);
  const std::size_t count = receiveSome(_stream, room);
  _reader.added(count);
  return count > 0;
}

void ImportWorker::import(const Frame& frame) {
  const auto [path, copy] = textPairIn(frame.bytes);
  auto file = NSURL::fileURLWithFileSystemRepresentation(path, false);
  auto contents = copy.empty() ? nullptr : NSURL::fileURLWithFileSystemRepresentation(copy, false);
  FileStatus status;
  FileSystem::current().statusOfPath(copy.empty() ? path : copy, &status);
  if (status.size >= kLargeMessage) _sender.flush();
  _limits->begin(status.size);
  _place.progress.begin(frame.number);
  answer(frame.number, file, contents);
  _place.progress.end();
}

bool isNotPermitted(NSError* error) {
  constexpr std::int64_t kNoPermission = 257;
  return error->code() == kNoPermission && isEqual(error->domain(), NSCocoaErrorDomain());
}

void ImportWorker::answer(std::uint64_t number, NSURL* file, NSURL* contents) {
  Ref<NSError> error;
  MessageMaker* const maker = _place.settings.maker.get();
  if (maker) maker->begin((contents ? contents : file)->fileSystemRepresentation());
  auto attributes = _importers.attributesOfFile(file, contents, &error);
  if (!attributes && !contents && isNotPermitted(error))
    return _sender.add(FrameKind::Denied, number, "");
  if (!attributes) return _sender.add(FrameKind::Failure, number, bytesOfError(error));
  if (maker) return answerWithWhatIsMade(number, std::move(attributes));
  _sender.addValues(number, attributes);
}

void ImportWorker::answerWithWhatIsMade(std::uint64_t number, Ref<NSDictionary> attributes) {
  Ref<NSError> error;
  const auto made = _place.settings.maker->make(attributes, &error);
  attributes = nullptr;  // a large message is held once less while it is sent
  if (!made) return _sender.add(FrameKind::Failure, number, bytesOfError(error));
  _sender.addMade(number, *made);
}

}  // namespace

void workAsImportWorker(const WorkerPlace& place, int stream) {
  ImportWorker(place, stream).work();
}

}  // namespace kbx
