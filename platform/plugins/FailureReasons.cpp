#include "platform/plugins/FailureReasons.h"

namespace kbx {

void FailureReasons::set(const std::string& path, std::string reason) {
  std::lock_guard held(_lock);
  if (reason.empty()) {
    _reasons.erase(path);
    return;
  }
  if (_reasons.size() >= kMost && !_reasons.contains(path)) _reasons.clear();
  _reasons[path] = std::move(reason);
}

std::string FailureReasons::get(const std::string& path) {
  std::lock_guard held(_lock);
  auto found = _reasons.find(path);
  return found == _reasons.end() ? "" : found->second;
}

}  // namespace kbx
