#include "host/workers/MessageLimits.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace kbx {
namespace {

/// A message is in memory a few times at most: as bytes, as text, as the text of its HTML.
constexpr std::uint64_t kCopies = 8;
/// Steps in which the limit changes, so that small messages need no system call.
constexpr std::uint64_t kStep = std::uint64_t{64} << 20;

// The sanitizers reserve more memory than there is in any machine.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool canLimitMemory = false;
#else
constexpr bool canLimitMemory = true;
#endif

/// Bytes that the process can write to and shares with nobody; 0 when nobody knows.
std::uint64_t dataSize() {
  std::ifstream file("/proc/self/statm");
  std::uint64_t total, resident, shared, code, none, data = 0;
  file >> total >> resident >> shared >> code >> none >> data;
  return data * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

/// Sets what is in force, never above what the process may set.
void setLimit(__rlimit_resource_t resource, rlim_t value) {
  rlimit limit{};
  if (::getrlimit(resource, &limit) != 0) return;
  limit.rlim_cur = std::min(value, limit.rlim_max);
  ::setrlimit(resource, &limit);
}

/// Rounded up.
rlim_t processorSecondsSoFar() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  const auto microseconds = usage.ru_utime.tv_usec + usage.ru_stime.tv_usec;
  return static_cast<rlim_t>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
                             microseconds / 1'000'000 + 1);
}

}  // namespace

MessageLimits::MessageLimits(const ImportLimits& limits)
    : _limits(limits), _base(canLimitMemory ? dataSize() : 0) {
  setLimit(RLIMIT_CORE, 0);
  begin(0);
}

void MessageLimits::begin(std::uint64_t size) {
  setLimit(RLIMIT_CPU, processorSecondsSoFar() + _limits.processorSeconds);
  if (_base > 0) limitMemory(_base + _limits.memory + size * kCopies / kStep * kStep);
}

void MessageLimits::limitMemory(std::uint64_t bytes) {
  if (bytes == _allowed) return;
  _allowed = bytes;
  setLimit(RLIMIT_DATA, bytes);
}

}  // namespace kbx
