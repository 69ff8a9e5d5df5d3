// ChildProcess: runs a part of a test in a process of its own.
#pragma once

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace kbx {

/// What the body answers there, 0 to 255; the negative number of the signal that ended it.
template <class Body>
int inChild(Body body) {
  const pid_t child = ::fork();
  if (child < 0) return -1;
  if (child == 0) ::_exit(body());
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

/// The same without the rights of the superuser, who may write everywhere: where a test has these,
/// the child becomes nobody. 99 when it cannot.
template <class Body>
int inOrdinaryChild(Body body) {
  constexpr unsigned kNobody = 65534;
  return inChild([&] {
    if (::geteuid() != 0) return body();
    if (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0) return 99;
    return body();
  });
}

}  // namespace kbx
