// ImportLog: what importers write to the classic log while they work.
#pragma once

#include <deque>

#include "host/console/Diagnostics.h"
#include "platform/logging/NSLog.h"

namespace kbx {

/// The classic log of this process. Keeps lines for whoever records, and shows them when asked to.
class ImportLog : public ClassicLog {
 public:
  /// diagnostics  where each line is shown too; nullptr for nowhere
  explicit ImportLog(Diagnostics* diagnostics) : _diagnostics(diagnostics) {}

  void write(NSString* message) final;

  using Lines = std::deque<Ref<NSString>>;

  /// Keeps what its thread writes to the log while it lives: the last 64 lines. The innermost of a
  /// thread keeps them.
  class Recording {
   public:
    Recording();
    ~Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    const Lines& lines() const noexcept { return _lines; }
    /// From now on lines have another path where they name one, shown to the user as well.
    void replacePath(NSString* path, NSString* shown);

   private:
    friend class ImportLog;
    Lines _lines;
    Ref<NSString> _replacedPath;
    Ref<NSString> _shownPath;
    Recording* const _outer;
  };

 protected:
  /// Called for each line when it is written.
  virtual void show(NSString* line) {
    if (_diagnostics) _diagnostics->log(line);
  }

 private:
  Diagnostics* const _diagnostics;
};

}  // namespace kbx
