#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "platform/system/ProcessIdentity.h"
#include "platform/system/linux/ExecutableName.h"

namespace kbx {
namespace {

class LinuxProcessIdentity final : public ProcessIdentity {
 public:
  std::string processName() override {
    // An executable does not change while it runs, but its file may be renamed or replaced.
    static const auto* const name = new std::string(readName());
    return *name;
  }
  std::int32_t processIdentifier() override { return getpid(); }
  std::uint32_t realUserIdentifier() override { return getuid(); }

 private:
  static std::string readName() {
    auto name = executableName("/proc/self");
    return name.empty() ? program_invocation_short_name : name;
  }
};

}  // namespace

std::string executableName(const std::string& processFolder) {
  std::error_code failure;
  std::string path = std::filesystem::read_symlink(processFolder + "/exe", failure).string();
  constexpr std::string_view kDeleted = " (deleted)";  // the kernel's remark on a removed file
  if (path.ends_with(kDeleted)) path.resize(path.size() - kDeleted.size());
  return path.substr(path.rfind('/') + 1);
}

KBX_SERVICE(ProcessIdentity, LinuxProcessIdentity)

}  // namespace kbx
