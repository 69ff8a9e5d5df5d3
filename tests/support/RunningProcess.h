// RunningProcess: a program that runs beside the test, which reads its lines while it does.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace kbx {

/// Ended by SIGKILL when the test forgets it.
class RunningProcess {
 public:
  /// variables  "NAME=value", in front of those that the test has
  explicit RunningProcess(std::vector<std::string> command,
                          std::vector<std::string> variables = {}) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    _output = ends[0];
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
    const std::string complaints = (_files / "err").string();
    const int flags = O_WRONLY | O_CREAT | O_APPEND;
    ::posix_spawn_file_actions_addopen(&actions, 2, complaints.c_str(), flags, 0600);
    for (char** entry = environ; *entry; ++entry) variables.emplace_back(*entry);
    const int failure = ::posix_spawn(&_process, command[0].c_str(), &actions, nullptr,
                                      pointers(command).data(), pointers(variables).data());
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    if (failure) throw std::runtime_error("cannot run " + command[0]);
  }
  ~RunningProcess() {
    if (_process > 0) {
      tell(SIGKILL);
      wait();
    }
    ::close(_output);
  }
  RunningProcess(const RunningProcess&) = delete;
  RunningProcess& operator=(const RunningProcess&) = delete;

  /// The next line of its output. Absent when there are no more, or none came in half a minute:
  /// that long nothing takes which works.
  std::optional<std::string> line() {
    using std::chrono::steady_clock;
    const auto deadline = steady_clock::now() + std::chrono::seconds(30);
    while (true) {
      if (const std::size_t end = _waiting.find('\n'); end != std::string::npos) {
        std::string line = _waiting.substr(0, end);
        _waiting.erase(0, end + 1);
        return line;
      }
      const auto left =
          std::chrono::duration_cast<std::chrono::milliseconds>(deadline - steady_clock::now());
      pollfd input{_output, POLLIN, 0};
      if (left.count() <= 0 || ::poll(&input, 1, static_cast<int>(left.count())) == 0) return {};
      char buffer[4096];
      const ssize_t size = ::read(_output, buffer, sizeof buffer);
      if (size == 0 || (size < 0 && errno != EINTR)) return {};
      if (size > 0) _waiting.append(buffer, static_cast<std::size_t>(size));
    }
  }

  void tell(int signal) const { ::kill(_process, signal); }
  /// Its exit code; -1 when a signal ended it.
  int wait() {
    int status = 0;
    while (::waitpid(_process, &status, 0) < 0 && errno == EINTR) continue;
    _process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  /// What it wrote to standard error.
  std::string complaints() const { return _files.read("err"); }
  pid_t id() const { return _process; }

 private:
  static std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> list;
    for (auto& text : texts) list.push_back(text.data());
    list.push_back(nullptr);
    return list;
  }

  TemporaryFolder _files;
  std::string _waiting;
  int _output = -1;
  pid_t _process = -1;
};

}  // namespace kbx
