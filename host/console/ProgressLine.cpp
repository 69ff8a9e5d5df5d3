#include "host/console/ProgressLine.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "platform/system/Clock.h"

namespace kbx {
namespace {

constexpr double kFirst = 0.5;  // seconds: what is shorter needs no progress
constexpr double kNext = 0.1;

std::string timeText(double seconds) {
  const auto whole = static_cast<std::uint64_t>(std::ceil(seconds));
  if (whole < 120) return std::to_string(whole) + " s";
  if (whole < 7200) return std::to_string((whole + 59) / 60) + " min";
  return std::to_string((whole + 3599) / 3600) + " h";
}

std::string partText(std::uint64_t done, std::uint64_t total) {
  return std::to_string(done) + " of " + std::to_string(total) + " (" +
         std::to_string(done * 100 / total) + " %)";
}

}  // namespace

ProgressLine::ProgressLine(Diagnostics& diagnostics, unsigned columns)
    : _diagnostics(diagnostics),
      _columns(columns),
      _start(columns ? Clock::current().secondsSince1970() : 0) {}

ProgressLine::~ProgressLine() {
  if (_columns) _diagnostics.status({});
}

void ProgressLine::expect(std::uint64_t total) {
  _total = total;
  _done = _failed = 0;
  _shown = 0;
  if (_columns) _start = Clock::current().secondsSince1970();
}

void ProgressLine::count(bool isDelivered) {
  if (!isDelivered) ++_failed;
  advance(1);
}

void ProgressLine::advance(std::uint64_t count) {
  _done += count;
  if (_columns) refresh();
}

void ProgressLine::refresh() {
  const double seconds = Clock::current().secondsSince1970() - _start;
  if (seconds < kFirst || seconds - _shown < kNext) return;
  _shown = seconds;
  show(seconds);
}

void ProgressLine::show(double seconds) {
  const double rate = static_cast<double>(_done) / seconds;
  // More may turn up than were expected.
  const std::uint64_t total = std::max(_done, _total.value_or(0));
  std::string line = _total ? partText(_done, total) : std::to_string(_done) + " done";
  line += ", " + std::to_string(std::llround(rate)) + " a second";
  if (_total) line += ", " + timeText(static_cast<double>(total - _done) / rate) + " left";
  if (_failed) line += ", " + std::to_string(_failed) + " failed";
  // The last column stays free: a line that fills it may end in the next one.
  _diagnostics.status(std::string_view(line).substr(0, _columns - 1));
}

}  // namespace kbx
