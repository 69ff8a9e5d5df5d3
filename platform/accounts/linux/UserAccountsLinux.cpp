#include <pwd.h>

#include <cerrno>
#include <string_view>

#include "platform/accounts/UserAccounts.h"
#include "platform/system/Environment.h"
#include "platform/system/ProcessIdentity.h"

namespace kbx {
namespace {

constexpr std::size_t kLargestEntry = std::size_t{1} << 20;

std::string variable(std::string_view start) {
  for (const auto& entry : Environment::current().variables())
    if (entry.starts_with(start)) return entry.substr(start.size());
  return "";
}

class LinuxUserAccounts final : public UserAccounts {
 public:
  std::optional<PasswordEntry> entryOfUser(std::uint32_t user) override {
    std::string buffer(1024, '\0');
    while (true) {
      passwd entry{};
      passwd* found = nullptr;
      const int error = ::getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found);
      if (error == EINTR) continue;
      if (error == ERANGE && buffer.size() < kLargestEntry) {
        buffer.resize(buffer.size() * 2);
        continue;
      }
      if (error != 0 || !found) return std::nullopt;
      return entryOf(*found);
    }
  }

  std::string loginName() override {
    if (auto entry = entryOfOwner(); entry && !entry->name.empty()) return entry->name;
    return variable("USER=");
  }

  std::string homeDirectory() override {
    if (auto home = variable("HOME="); home.starts_with('/')) return home;
    const auto entry = entryOfOwner();
    const bool hasHome = entry && entry->homeDirectory && entry->homeDirectory->starts_with('/');
    return hasHome ? *entry->homeDirectory : "/";
  }

 private:
  static PasswordEntry entryOf(const passwd& found) {
    PasswordEntry entry;
    if (found.pw_name) entry.name = found.pw_name;
    if (found.pw_dir) entry.homeDirectory = found.pw_dir;
    return entry;
  }
  std::optional<PasswordEntry> entryOfOwner() {
    return entryOfUser(ProcessIdentity::current().realUserIdentifier());
  }
};

}  // namespace

KBX_SERVICE(UserAccounts, LinuxUserAccounts)

}  // namespace kbx
