// WatchReport: tells the user, other programs and the service manager what a watch does.
#pragma once

#include <cstdint>
#include <string>

#include "host/console/Command.h"
#include "host/index/IndexReport.h"
#include "host/watch/WatchLoop.h"

namespace kbx {

/// Keeps what is written until it is true.
class HeldOutput final : public Output {
 public:
  explicit HeldOutput(Output& output) : _output(output) {}

  /// From now on.
  void hold() { _isHeld = true; }
  /// Writes out what was kept.
  void release();

 private:
  int deliver(std::string_view bytes) override;

  Output& _output;
  bool _isHeld = false;
  std::string _kept;
};

/// Troubles go to the diagnostics, events to the output as JSON, one a line, where they are wanted.
/// What the index does is told when it can be searched; but the first update, which may be large,
/// is told as it goes on, some seconds ahead.
class WatchReport final : public WatchListener, public IndexListener {
 public:
  WatchReport(Console& console, const IndexReport::Wishes& wishes);
  /// Tells the service manager that the watch ends.
  ~WatchReport() override;

  void ready(std::size_t folders) override;
  void rescanning() override;
  void folderEvent(const WatchedFolders::Event& event) override;
  void waiting(NSError* error) override;
  void failed(NSError* error) override;
  void updated(std::size_t folders) override;

  void compared() override;
  void begins(std::uint64_t files) override;
  void isDone(bool hasFailed) override;
  void added(const std::string& path) override { _index.added(path); }
  void changed(const std::string& path) override { _index.changed(path); }
  void moved(const std::string& from, const std::string& to) override { _index.moved(from, to); }
  void removed(const std::string& path) override { _index.removed(path); }
  void failed(const std::string& path, NSError* error) override { _index.failed(path, error); }
  void kept(const std::string& path, NSError* error) override { _index.kept(path, error); }

 private:
  void tellStatus(const std::string& status);

  Console& _console;
  const bool _hasEvents;
  const bool _isQuiet;
  HeldOutput _held;
  Console _indexConsole;
  IndexReport _index;
  bool _isReady = false;
  std::string _status;  // as the service manager knows it
};

}  // namespace kbx
