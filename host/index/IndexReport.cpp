#include "host/index/IndexReport.h"

#include "host/console/StandardStreams.h"
#include "host/console/Terminal.h"
#include "host/index/EventLine.h"

namespace kbx {

IndexReport::Wishes wishesFor(bool hasEvents, bool isQuiet) {
  const bool isLive = !isQuiet && !(hasEvents && terminalColumns(kStandardOutput));
  return {.hasEvents = hasEvents,
          .columns = isLive ? terminalColumns(kStandardError) : 0,
          .hasSummary = !isQuiet};
}

std::string summaryText(const IndexCounts& counts) {
  struct Part {
    std::uint64_t count;
    const char* name;
  };
  std::string text;
  for (const auto [count, name] : {Part{counts.added, " added"},
                                   {counts.changed, " changed"},
                                   {counts.moved, " moved"},
                                   {counts.removed, " removed"},
                                   {counts.unchanged, " unchanged"},
                                   {counts.failed, " failed"}})
    text.append(text.empty() ? "" : ", ").append(std::to_string(count)).append(name);
  if (counts.stillFailed > 0) text += ", " + std::to_string(counts.stillFailed) + " failed before";
  return text;
}

void IndexReport::moved(const std::string& from, const std::string& to) {
  if (!_wishes.hasEvents) return;
  EventLine line(_console.output, "moved"_ns);
  line.path("path"_ns, to);
  line.path("from"_ns, from);
}

void IndexReport::failed(const std::string& path, NSError* error) {
  complain("failed"_ns, path, error);
}

void IndexReport::kept(const std::string& path, NSError* error) {
  complain("kept"_ns, path, error);
}

void IndexReport::event(NSString* kind, const std::string& path) {
  if (_wishes.hasEvents) EventLine(_console.output, kind).path("path"_ns, path);
}

void IndexReport::complain(NSString* kind, const std::string& path, NSError* error) {
  Ref<NSString> reason = error->localizedDescription();
  _console.diagnostics.failure(path, reason);
  if (!_wishes.hasEvents) return;
  EventLine line(_console.output, kind);
  line.path("path"_ns, path);
  line.string("reason"_ns, reason);
}

void IndexReport::summarize(const IndexCounts& counts) {
  if (_wishes.hasSummary) _console.diagnostics.message(summaryText(counts));
  if (!_wishes.hasEvents) return;
  EventLine line(_console.output, "done"_ns);
  line.count("added"_ns, counts.added);
  line.count("changed"_ns, counts.changed);
  line.count("moved"_ns, counts.moved);
  line.count("removed"_ns, counts.removed);
  line.count("unchanged"_ns, counts.unchanged);
  line.count("failed"_ns, counts.failed);
  line.count("failedBefore"_ns, counts.stillFailed);
}

}  // namespace kbx
