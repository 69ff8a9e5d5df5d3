// ProgressLine: how far a long command is, for whoever sits in front of it.
#pragma once

#include <cstdint>
#include <optional>

#include "host/console/Diagnostics.h"

namespace kbx {

/// Keeps a status line from half a second on until it ends: "120 done, 60 a second, 2 failed", or
/// "120 of 480 (25 %), 60 a second, 6 s left, 2 failed" where it is known how many there are.
class ProgressLine {
 public:
  /// columns  how many the terminal has; 0 to say nothing at all
  ProgressLine(Diagnostics& diagnostics, unsigned columns);
  /// Takes the line away.
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  /// So many are to be done: counting and the clock begin anew.
  void expect(std::uint64_t total);
  /// One more is done, for better or worse.
  void count(bool isDelivered);
  /// So many more are done well.
  void advance(std::uint64_t count);

 private:
  void refresh();
  void show(double seconds);

  Diagnostics& _diagnostics;
  const unsigned _columns;
  double _start;      // as the clock says
  double _shown = 0;  // seconds after it
  std::uint64_t _done = 0;
  std::uint64_t _failed = 0;
  std::optional<std::uint64_t> _total;
};

}  // namespace kbx
