#include <unistd.h>

#include <cstdlib>
#include <memory>

#include "platform/files/WorkingFolder.h"

namespace kbx {

std::string workingFolder() {
  const std::unique_ptr<char, decltype(&std::free)> path(::getcwd(nullptr, 0), &std::free);
  return path ? path.get() : "";
}

}  // namespace kbx
