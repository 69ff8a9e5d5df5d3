#include <unistd.h>

#include "platform/system/Environment.h"

namespace kbx {
namespace {

class LinuxEnvironment final : public Environment {
 public:
  std::vector<std::string> variables() override {
    std::vector<std::string> result;
    for (char** entry = environ; entry && *entry; ++entry) result.emplace_back(*entry);
    return result;
  }
};

}  // namespace

KBX_SERVICE(Environment, LinuxEnvironment)

}  // namespace kbx
