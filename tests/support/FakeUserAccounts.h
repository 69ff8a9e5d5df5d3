// FakeUserAccounts: users that a test makes up.
#pragma once

#include <map>
#include <string>

#include "platform/accounts/UserAccounts.h"

namespace kbx {

/// Install it with ScopedService<UserAccounts>.
class FakeUserAccounts final : public UserAccounts {
 public:
  std::optional<PasswordEntry> entryOfUser(std::uint32_t user) override {
    ++lookups;
    auto entry = entries.find(user);
    return entry == entries.end() ? std::nullopt : std::optional(entry->second);
  }
  std::string loginName() override { return login; }
  std::string homeDirectory() override { return home; }

  std::map<std::uint32_t, PasswordEntry> entries;  // the password database, by number
  std::string login = "ada";
  std::string home = "/home/ada";
  int lookups = 0;  // questions to the database
};

}  // namespace kbx
