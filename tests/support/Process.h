// Process: runs a program to its end and keeps what it wrote.
#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace kbx {

struct Finished {
  int exitCode;        // -1 when a signal ended it
  std::string output;  // empty when it went elsewhere
  std::string complaints;
};

/// What it took besides.
struct Measured : Finished {
  double cpuSeconds;      // with that of its children
  std::size_t peakBytes;  // of it or its largest child; at least the peak of the calling process
};

/// Set it up, then run() it. Its streams are files, so no program waits for a reader.
class Process {
 public:
  explicit Process(std::vector<std::string> command) : _command(std::move(command)) {}

  /// What it reads from standard input; nothing otherwise.
  Process& input(std::string_view bytes) {
    _files.write("in", bytes);
    return *this;
  }
  /// Adds "NAME=value" to the environment.
  Process& variable(std::string entry) {
    _variables.push_back(std::move(entry));
    return *this;
  }
  /// Standard output goes to this descriptor, or is closed when it is negative.
  Process& outputTo(int descriptor) {
    _output = descriptor;
    _hasOutput = false;
    return *this;
  }
  /// Standard error goes to this descriptor.
  Process& complaintsTo(int descriptor) {
    _complaints = descriptor;
    return *this;
  }
  /// The folder in which it runs.
  Process& folder(const std::filesystem::path& path) {
    _folder = path.string();
    return *this;
  }

  Finished run() { return measure(); }

  Measured measure() {
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    open(actions, 0, "in", O_RDONLY);
    if (_hasOutput)
      open(actions, 1, "out", O_WRONLY);
    else if (_output >= 0)
      ::posix_spawn_file_actions_adddup2(&actions, _output, 1);
    else
      ::posix_spawn_file_actions_addclose(&actions, 1);
    if (_complaints >= 0)
      ::posix_spawn_file_actions_adddup2(&actions, _complaints, 2);
    else
      open(actions, 2, "err", O_WRONLY);
    if (!_folder.empty()) ::posix_spawn_file_actions_addchdir_np(&actions, _folder.c_str());
    const pid_t process = spawn(actions);
    ::posix_spawn_file_actions_destroy(&actions);
    struct rusage usage {};
    const int exitCode = wait(process, &usage);
    return {{exitCode, _hasOutput ? _files.read("out") : "", _files.read("err")},
            seconds(usage.ru_utime) + seconds(usage.ru_stime),
            static_cast<std::size_t>(usage.ru_maxrss) * 1024};
  }

 private:
  void open(posix_spawn_file_actions_t& actions, int descriptor, std::string_view name, int flags) {
    if (flags != O_RDONLY || !std::filesystem::exists(_files / name)) _files.write(name, "");
    ::posix_spawn_file_actions_addopen(&actions, descriptor, (_files / name).c_str(), flags, 0600);
  }

  static std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> list;
    for (auto& text : texts) list.push_back(text.data());
    list.push_back(nullptr);
    return list;
  }

  pid_t spawn(posix_spawn_file_actions_t& actions) {
    // The first entry of a name counts, so ours go first.
    std::vector<std::string> variables = _variables;
    for (char** entry = environ; *entry; ++entry) variables.emplace_back(*entry);
    pid_t process = 0;
    const int failure = ::posix_spawn(&process, _command[0].c_str(), &actions, nullptr,
                                      pointers(_command).data(), pointers(variables).data());
    if (failure) throw std::runtime_error("cannot run " + _command[0]);
    return process;
  }

  static int wait(pid_t process, struct rusage* usage) {
    int status = 0;
    while (::wait4(process, &status, 0, usage) < 0 && errno == EINTR) continue;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  static double seconds(const struct timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  }

  std::vector<std::string> _command;
  std::vector<std::string> _variables;
  std::string _folder;
  int _output = -1;
  int _complaints = -1;
  bool _hasOutput = true;
  TemporaryFolder _files;
};

}  // namespace kbx
