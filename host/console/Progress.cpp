#include "host/console/Progress.h"

#include <cmath>
#include <string>

#include "platform/system/Clock.h"

namespace kbx {
namespace {

constexpr double kFirst = 0.5;  // seconds: what is shorter needs no progress
constexpr double kNext = 0.1;

}  // namespace

Progress::Progress(Diagnostics& diagnostics, unsigned columns)
    : _diagnostics(diagnostics),
      _columns(columns),
      _start(columns ? Clock::current().secondsSince1970() : 0) {}

Progress::~Progress() {
  if (_columns) _diagnostics.status({});
}

void Progress::count(bool isDelivered) {
  ++_done;
  if (!isDelivered) ++_failed;
  if (!_columns) return;
  const double seconds = Clock::current().secondsSince1970() - _start;
  if (seconds < kFirst || seconds - _shown < kNext) return;
  _shown = seconds;
  show(seconds);
}

void Progress::show(double seconds) {
  const auto rate = std::llround(static_cast<double>(_done) / seconds);
  std::string line = std::to_string(_done) + " done, " + std::to_string(rate) + " a second";
  if (_failed) line += ", " + std::to_string(_failed) + " failed";
  // The last column stays free: a line that fills it may end in the next one.
  _diagnostics.status(std::string_view(line).substr(0, _columns - 1));
}

}  // namespace kbx
