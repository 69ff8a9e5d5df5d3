#include "host/watch/linux/WaitingLinux.h"

#include <csignal>
#include <ctime>

#include "host/console/Interruption.h"

namespace kbx {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

std::optional<timespec> timeUntil(std::optional<Moment> until) {
  if (!until) return std::nullopt;
  using std::chrono::nanoseconds;
  const Moment now = Moment::clock::now();
  const auto left = *until > now ? nanoseconds(*until - now) : nanoseconds(0);
  return timespec{static_cast<std::time_t>(left.count() / kNanosecondsPerSecond),
                  static_cast<long>(left.count() % kNanosecondsPerSecond)};
}

}  // namespace

/// The signals are let in by the system call itself.
void waitFor(std::span<pollfd> descriptors, std::optional<Moment> until) {
  for (pollfd& descriptor : descriptors) descriptor.revents = 0;
  sigset_t ending, before;
  sigemptyset(&ending);
  for (int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&ending, signal);
  ::pthread_sigmask(SIG_BLOCK, &ending, &before);
  if (!Interruption::isWished()) {
    const auto time = timeUntil(until);
    ::ppoll(descriptors.data(), descriptors.size(), time ? &*time : nullptr, &before);
  }
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace kbx
