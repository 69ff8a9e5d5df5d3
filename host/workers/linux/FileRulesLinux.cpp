#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "host/workers/linux/FileRules.h"

namespace kbx {
namespace {

// Rights by the version of the rules that brought them; the system's header may know fewer.
constexpr std::uint64_t kReadFile = 1 << 2, kReadFolder = 1 << 3;
constexpr std::uint64_t kFirstRights = (1 << 13) - 1;
constexpr std::uint64_t kRefer = 1 << 13;     // version 2
constexpr std::uint64_t kTruncate = 1 << 14;  // version 3
constexpr std::uint64_t kDevices = 1 << 15;   // version 5: ioctl() on devices

// Write, remove files and folders, make files, links and folders.
constexpr std::uint64_t kChange =
    1 << 1 | 1 << 4 | 1 << 5 | 1 << 7 | 1 << 8 | 1 << 12 | kRefer | kTruncate;

/// The kernel takes as many fields as it knows, when the others are zero.
struct RulesetAttributes {
  std::uint64_t files;
  std::uint64_t network;  // version 4: bind and connect over TCP
  std::uint64_t scopes;   // version 6: abstract sockets and signals
};

std::uint64_t rightsKnownTo(int version) {
  std::uint64_t rights = kFirstRights;
  if (version >= 2) rights |= kRefer;
  if (version >= 3) rights |= kTruncate;
  if (version >= 5) rights |= kDevices;
  return rights;
}

std::size_t sizeKnownTo(int version) {
  if (version >= 6) return sizeof(RulesetAttributes);
  return version >= 4 ? 2 * sizeof(std::uint64_t) : sizeof(std::uint64_t);
}

int makeRuleset(int version) {
  RulesetAttributes attributes{rightsKnownTo(version), 0, 0};
  if (version >= 4) attributes.network = 3;
  if (version >= 6) attributes.scopes = 3;
  return static_cast<int>(
      ::syscall(SYS_landlock_create_ruleset, &attributes, sizeKnownTo(version), 0));
}

/// Passes over what cannot be opened: then there is nothing to allow.
void allow(int ruleset, const std::string& path, std::uint64_t rights) {
  const int place = ::open(path.c_str(), O_PATH | O_CLOEXEC);
  struct stat status;
  if (place < 0) return;
  if (::fstat(place, &status) == 0) {
    constexpr std::uint64_t kOfFiles = kReadFile | 1 << 1 | kTruncate;
    landlock_path_beneath_attr rule{};
    rule.parent_fd = place;
    rule.allowed_access = S_ISDIR(status.st_mode) ? rights : rights & kOfFiles;
    ::syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
  }
  ::close(place);
}

}  // namespace

int enforceFileRules(const AllowedFiles& files) {
  const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, std::size_t{0},
                                 LANDLOCK_CREATE_RULESET_VERSION);
  if (version < 0) return -errno;
  const int ruleset = makeRuleset(static_cast<int>(version));
  if (ruleset < 0) return -errno;
  const std::uint64_t known = rightsKnownTo(static_cast<int>(version));
  for (const auto& path : files.readable) allow(ruleset, path, kReadFile | kReadFolder);
  for (const auto& path : files.writable)
    allow(ruleset, path, (kReadFile | kReadFolder | kChange) & known);
  const bool isEnforced = ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
                          ::syscall(SYS_landlock_restrict_self, ruleset, 0) == 0;
  const int failure = errno;
  ::close(ruleset);
  return isEnforced ? static_cast<int>(version) : -failure;
}

}  // namespace kbx
