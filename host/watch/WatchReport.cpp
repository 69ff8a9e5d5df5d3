#include "host/watch/WatchReport.h"

#include "host/index/EventLine.h"
#include "host/watch/ServiceManager.h"
#include "platform/files/FileErrors.h"
#include "platform/files/NSURL.h"

namespace kbx {
namespace {

using Kind = WatchedFolders::Event::Kind;

std::string followingText(std::size_t folders) {
  return "Following " + std::to_string(folders) + (folders == 1 ? " folder" : " folders");
}

Ref<NSString> textOf(const WatchedFolders::Event& event) {
  switch (event.kind) {
    case Kind::Lost:
      return "It is gone, or what was mounted there. The store keeps its messages; it is looked "
             "for from time to time."_ns;
    case Kind::Found:
      return "It is back."_ns;
    case Kind::Limited:
      return NSString::stringWithLossyUTF8(
          "The system lets no more folders be watched (fs.inotify.max_user_watches is " +
          folderWatchLimit() +
          "). This one, and others that follow, are gone through every five minutes instead; "
          "\"sysctl fs.inotify.max_user_watches=N\" as root raises the limit.");
    default: {
      auto url = NSURL::fileURLWithFileSystemRepresentation(event.path, true);
      return fileError(url, FileAction::Reading, event.failure)->localizedDescription();
    }
  }
}

NSString* nameOf(Kind kind) {
  switch (kind) {
    case Kind::Lost:
      return "lost"_ns;
    case Kind::Found:
      return "found"_ns;
    default:
      return "unwatched"_ns;
  }
}

}  // namespace

void HeldOutput::release() {
  flush();
  _output.write(_kept);
  _output.flush();
  _kept.clear();
}

int HeldOutput::deliver(std::string_view bytes) {
  if (_isHeld) {
    _kept.append(bytes);
    return 0;
  }
  _output.write(bytes);
  return _output.flush() ? 0 : -_output.failure();
}

WatchReport::WatchReport(Console& console, const IndexReport::Wishes& wishes)
    : _console(console),
      _hasEvents(wishes.hasEvents),
      _isQuiet(!wishes.hasSummary),
      _held(console.output),
      _indexConsole{_held, console.diagnostics},
      _index(_indexConsole, wishes) {
  tellStatus("Bringing the store up to date");
}

WatchReport::~WatchReport() { tellServiceManager("STOPPING=1"); }

void WatchReport::tellStatus(const std::string& status) {
  if (status == _status) return;
  _status = status;
  tellServiceManager("STATUS=" + status);
}

void WatchReport::ready(std::size_t folders) {
  _isReady = true;
  _console.diagnostics.status({});  // the line of progress
  _held.hold();
  tellServiceManager("READY=1");
  if (!_isQuiet) _console.diagnostics.message(followingText(folders));
  if (_hasEvents) EventLine(_console.output, "ready"_ns).count("folders"_ns, folders);
}

void WatchReport::updated(std::size_t folders) {
  _held.release();
  tellStatus(followingText(folders));
}

void WatchReport::rescanning() {
  tellStatus("Going through all folders");
  if (!_isQuiet)
    _console.diagnostics.message("too much happened at once; going through all folders");
  if (_hasEvents) EventLine(_console.output, "rescan"_ns);
}

void WatchReport::folderEvent(const WatchedFolders::Event& event) {
  const Ref<NSString> reason = textOf(event);
  _console.diagnostics.failure(event.path, reason);
  if (!_hasEvents) return;
  EventLine line(_console.output, nameOf(event.kind));
  line.path("path"_ns, event.path);
  line.string("reason"_ns, reason);
}

void WatchReport::waiting(NSError* error) {
  const std::string reason = error->localizedDescription()->lossyUTF8();
  tellStatus("Waiting: " + reason);
  _console.diagnostics.message(reason + "; waiting");
}

void WatchReport::failed(NSError* error) { _console.diagnostics.failure(error); }

// The line that shows progress belongs to the first update; later ones are small and many.

void WatchReport::compared() {
  if (!_isReady) _index.compared();
}

void WatchReport::begins(std::uint64_t files) {
  if (!_isReady) _index.begins(files);
}

void WatchReport::isDone(bool hasFailed) {
  if (!_isReady) _index.isDone(hasFailed);
}

}  // namespace kbx
