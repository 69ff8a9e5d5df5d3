// IndexReport: tells the user what a run of the index does.
#pragma once

#include <string>
#include <string_view>

#include "host/console/Command.h"
#include "host/console/ProgressLine.h"
#include "host/index/IndexEvents.h"

namespace kbx {

/// Failures go to the diagnostics, events to the output as JSON, one a line, where they are wanted.
class IndexReport final : public IndexListener {
 public:
  struct Wishes {
    bool hasEvents = false;  // NDJSON on the output
    unsigned columns = 0;    // of the terminal that shows the progress; 0 for none
    bool hasSummary = true;
  };

  IndexReport(Console& console, const Wishes& wishes)
      : _console(console), _wishes(wishes), _progress(console.diagnostics, wishes.columns) {}

  void compared() override { _progress.count(true); }
  void begins(std::uint64_t files) override { _progress.expect(files); }
  void isDone(bool hasFailed) override { _progress.count(!hasFailed); }
  void added(const std::string& path) override { event("added"_ns, path); }
  void changed(const std::string& path) override { event("changed"_ns, path); }
  void moved(const std::string& from, const std::string& to) override;
  void removed(const std::string& path) override { event("removed"_ns, path); }
  void failed(const std::string& path, NSError* error) override;
  void kept(const std::string& path, NSError* error) override;

  /// The line at the end, and the last event.
  void summarize(const IndexCounts& counts);

 private:
  void event(NSString* kind, const std::string& path);
  void complain(NSString* kind, const std::string& path, NSError* error);

  Console& _console;
  const Wishes _wishes;
  ProgressLine _progress;
};

/// What is shown where the streams lead now: progress on a terminal, unless the user wants quiet or
/// sees the events there.
IndexReport::Wishes wishesFor(bool hasEvents, bool isQuiet);

/// "3 added, 0 changed, 0 moved, 1 removed, 96 unchanged, 0 failed"
std::string summaryText(const IndexCounts& counts);

}  // namespace kbx
