// FailureReasons: why bundles failed, by path.
#pragma once

#include <map>
#include <mutex>
#include <string>

namespace kbx {

/// Safe from any thread. Keeps few: when there are too many, all are forgotten.
class FailureReasons {
 public:
  /// An empty reason says that nothing failed.
  void set(const std::string& path, std::string reason);
  /// Empty when nothing is known.
  std::string get(const std::string& path);

 private:
  static constexpr std::size_t kMost = 256;

  std::mutex _lock;
  std::map<std::string, std::string> _reasons;
};

}  // namespace kbx
