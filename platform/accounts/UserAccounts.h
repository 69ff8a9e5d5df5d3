// UserAccounts: who the user is, and where the user's files are.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/Export.h"
#include "platform/system/Service.h"

namespace kbx {

/// What the password database knows of a user, in bytes.
struct PasswordEntry {
  std::string name;
  std::optional<std::string> homeDirectory;
};

/// The answers of the system about users. Called from any thread.
class KBX_PLATFORM UserAccounts {
 public:
  virtual ~UserAccounts();
  /// The entry of the user with that number; absent when there is none, or the database cannot be
  /// asked.
  virtual std::optional<PasswordEntry> entryOfUser(std::uint32_t user) = 0;
  /// The name under which the user of this process has logged in.
  virtual std::string loginName() = 0;
  /// Where the process is to look for the user's files: an absolute path. In a sandbox this is the
  /// sandbox's own folder.
  virtual std::string homeDirectory() = 0;

  KBX_SERVICE_INTERFACE(UserAccounts)
};

}  // namespace kbx
