#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <initializer_list>
#include <utility>

#include "host/workers/WorkerNursery.h"

namespace kbx {
namespace {

constexpr int kCouldNotBegin = -1;  // no status that waitpid() gives
constexpr int kFirstFree = 3;       // the descriptor behind the standard streams

struct Order {
  enum class Verb : std::uint32_t { Start, End } verb;
  WorkerNursery::Identifier worker;
  unsigned place;
};

struct Ended {
  WorkerNursery::Identifier worker;
  int status;
};

/// Sends an order, with a descriptor unless that is negative. Whether it went out.
bool sendOrder(int control, Order order, int descriptor) {
  alignas(cmsghdr) char space[CMSG_SPACE(sizeof descriptor)] = {};
  iovec part{&order, sizeof order};
  msghdr message{};
  message.msg_iov = &part;
  message.msg_iovlen = 1;
  if (descriptor >= 0) {
    message.msg_control = space;
    message.msg_controllen = sizeof space;
    cmsghdr* head = CMSG_FIRSTHDR(&message);
    *head = {CMSG_LEN(sizeof descriptor), SOL_SOCKET, SCM_RIGHTS};
    std::memcpy(CMSG_DATA(head), &descriptor, sizeof descriptor);
  }
  ssize_t count;
  do count = ::sendmsg(control, &message, MSG_NOSIGNAL);
  while (count < 0 && errno == EINTR);
  return count == sizeof order;
}

/// The next order; false when there is nobody left to give one. The descriptor is negative where
/// none came with it.
bool receiveOrder(int control, Order* order, int* descriptor) {
  alignas(cmsghdr) char space[CMSG_SPACE(sizeof *descriptor)] = {};
  iovec part{order, sizeof *order};
  msghdr message{};
  message.msg_iov = &part;
  message.msg_iovlen = 1;
  message.msg_control = space;
  message.msg_controllen = sizeof space;
  ssize_t count;
  do count = ::recvmsg(control, &message, MSG_CMSG_CLOEXEC);
  while (count < 0 && errno == EINTR);
  *descriptor = -1;
  if (cmsghdr* head = CMSG_FIRSTHDR(&message); count > 0 && head)
    std::memcpy(descriptor, CMSG_DATA(head), sizeof *descriptor);
  return count == sizeof *order;
}

/// What a worker writes can drive a terminal, and standard output holds the master's data alone.
void closeStandardStreams(bool isHeard) {
  const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  for (int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (stream != STDERR_FILENO || !isHeard) ::dup2(null, stream);
}

/// Leaves the standard streams and this descriptor open, which gets another number.
int keepAlone(int descriptor) {
  if (descriptor != kFirstFree) ::dup2(descriptor, kFirstFree);
  ::close_range(kFirstFree + 1, ~0U, 0);
  return kFirstFree;
}

/// The life of the nursery's process.
class Nursery {
 public:
  Nursery(int control, const WorkerNursery::Work& work) : _control(control), _work(work) {}
  [[noreturn]] void live();

 private:
  bool obeyNext();
  void start(const Order& order, int stream);
  [[noreturn]] void becomeWorker(const Order& order, int stream, pid_t nursery);
  void end(WorkerNursery::Identifier worker);
  void bury();
  void tell(Ended ended) { (void)::send(_control, &ended, sizeof ended, MSG_NOSIGNAL); }

  const int _control;
  const WorkerNursery::Work& _work;
  int _deaths = -1;  // readable when a child has ended
  std::map<pid_t, WorkerNursery::Identifier> _children;
};

sigset_t childSignal() {
  sigset_t set;
  ::sigemptyset(&set);
  ::sigaddset(&set, SIGCHLD);
  return set;
}

void Nursery::live() {
  // A terminal asks the whole group of processes to end; the master decides for all of them.
  for (int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, SIG_IGN);
  const sigset_t set = childSignal();
  ::sigprocmask(SIG_BLOCK, &set, nullptr);
  _deaths = ::signalfd(-1, &set, SFD_CLOEXEC);
  pollfd events[] = {{_control, POLLIN, 0}, {_deaths, POLLIN, 0}};
  while (_deaths >= 0) {
    if (::poll(events, 2, -1) < 0 && errno != EINTR) break;
    if (events[1].revents) bury();
    if (events[0].revents && !obeyNext()) break;
  }
  for (const auto& [process, worker] : _children) ::kill(process, SIGKILL);
  while (::waitpid(-1, nullptr, 0) > 0 || errno == EINTR) continue;  // nobody else may do it
  ::_exit(0);
}

bool Nursery::obeyNext() {
  Order order;
  int stream;
  if (!receiveOrder(_control, &order, &stream)) return false;
  if (order.verb == Order::Verb::End)
    end(order.worker);
  else
    start(order, stream);
  if (stream >= 0) ::close(stream);
  return true;
}

void Nursery::start(const Order& order, int stream) {
  const pid_t nursery = ::getpid();
  const pid_t process = ::fork();
  if (process == 0) becomeWorker(order, stream, nursery);
  if (process < 0)
    tell({order.worker, kCouldNotBegin});
  else
    _children.emplace(process, order.worker);
}

void Nursery::becomeWorker(const Order& order, int stream, pid_t nursery) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != nursery) ::_exit(0);
  const sigset_t set = childSignal();
  ::sigprocmask(SIG_UNBLOCK, &set, nullptr);
  try {
    _work(order.place, keepAlone(stream));
  } catch (...) {
    ::_exit(1);
  }
  ::_exit(0);
}

void Nursery::end(WorkerNursery::Identifier worker) {
  for (const auto& [process, running] : _children)
    if (running == worker) ::kill(process, SIGKILL);
}

void Nursery::bury() {
  signalfd_siginfo ignored;
  (void)!::read(_deaths, &ignored, sizeof ignored);
  int status;
  for (pid_t process; (process = ::waitpid(-1, &status, WNOHANG)) > 0;) {
    const auto child = _children.find(process);
    if (child == _children.end()) continue;
    tell({child->second, status});
    _children.erase(child);
  }
}

}  // namespace

WorkerNursery::WorkerNursery(const Work& work, bool isHeard) {
  int ends[2];
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) < 0) return;
  _process = ::fork();
  if (_process == 0) {
    closeStandardStreams(isHeard);
    Nursery(keepAlone(ends[1]), work).live();
  }
  ::close(ends[1]);
  _control = ends[0];
}

WorkerNursery::~WorkerNursery() {
  if (_control >= 0) ::close(_control);
  while (_process > 0 && ::waitpid(_process, nullptr, 0) < 0 && errno == EINTR) continue;
}

std::optional<WorkerNursery::Started> WorkerNursery::start(unsigned place) {
  int ends[2];
  if (_process < 0 || ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) < 0)
    return std::nullopt;
  const bool wentOut = sendOrder(_control, {Order::Verb::Start, ++_last, place}, ends[1]);
  ::close(ends[1]);
  if (wentOut) return Started{_last, ends[0]};
  ::close(ends[0]);
  return std::nullopt;
}

std::optional<int> WorkerNursery::end(Identifier worker) {
  auto found = _ended.find(worker);
  if (found == _ended.end()) sendOrder(_control, {Order::Verb::End, worker, 0}, -1);
  while ((found = _ended.find(worker)) == _ended.end()) {
    Ended ended;
    const ssize_t count = ::recv(_control, &ended, sizeof ended, 0);
    if (count < 0 && errno == EINTR) continue;
    if (count != sizeof ended) return std::nullopt;  // the nursery itself is gone
    _ended.emplace(ended.worker, ended.status);
  }
  const int status = _ended.extract(found).mapped();
  return status == kCouldNotBegin ? std::nullopt : std::optional(status);
}

}  // namespace kbx
