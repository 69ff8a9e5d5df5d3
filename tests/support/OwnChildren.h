// OwnChildren: the processes that a test's own process has forked.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

namespace kbx {

inline std::vector<pid_t> childrenOf(pid_t parent) {
  std::vector<pid_t> children;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const std::string name = entry.path().filename().string();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    std::ifstream file(entry.path() / "stat");
    std::string line;
    std::getline(file, line);
    // "PID (NAME) STATE PARENT ...", and the name may hold anything
    const std::size_t end = line.rfind(") ");
    if (end == std::string::npos || line.size() < end + 4) continue;
    if (std::atoi(line.c_str() + end + 4) == parent) children.push_back(std::stoi(name));
  }
  return children;
}

inline std::vector<pid_t> ownChildren() { return childrenOf(::getpid()); }

/// With their children.
inline std::vector<pid_t> ownDescendants() {
  std::vector<pid_t> all = ownChildren();
  for (std::size_t i = 0; i < all.size(); ++i)
    for (const pid_t child : childrenOf(all[i])) all.push_back(child);
  return all;
}

/// The paths of what a process has open, as far as these are known.
inline std::vector<std::string> openFilesOf(pid_t process) {
  std::vector<std::string> paths;
  std::error_code ended;
  for (const auto& entry :
       std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/fd", ended))
    paths.push_back(std::filesystem::read_symlink(entry.path(), ended).string());
  return paths;
}

/// Kills them and returns when they have ended, so that their own children are being ended too
/// where they asked for it. They stay to be waited for.
inline void killChildren() {
  for (const pid_t child : ownChildren()) {
    ::kill(child, SIGKILL);
    siginfo_t ignored;
    ::waitid(P_PID, static_cast<id_t>(child), &ignored, WEXITED | WNOWAIT);
  }
}

}  // namespace kbx
