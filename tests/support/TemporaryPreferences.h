// TemporaryPreferences: preferences of a test's own, gone with the test.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "platform/preferences/FilePreferences.h"
#include "platform/preferences/NSUserDefaults.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {

/// Installed while it lives. Arguments and registered defaults of the process go with it.
class TemporaryPreferences {
 public:
  TemporaryPreferences() { forgetProcess(); }
  ~TemporaryPreferences() { forgetProcess(); }

  /// Preferences of another process on the same files.
  FilePreferences other() const {
    return FilePreferences(_folder.path().string(), std::chrono::milliseconds(0));
  }
  const TemporaryFolder& folder() const { return _folder; }
  std::string read(const std::string& domain) const { return _folder.read(domain + ".plist"); }
  /// A dictionary in XML of which only the inside is given.
  void write(const std::string& domain, std::string_view entries) const {
    _folder.write(domain + ".plist", "<dict>" + std::string(entries) + "</dict>");
  }

 private:
  static void forgetProcess() {
    for (auto* name : {NSArgumentDomain(), NSRegistrationDomain()})
      NSUserDefaults::standardUserDefaults()->removeVolatileDomainForName(name);
  }

  TemporaryFolder _folder;
  FilePreferences _preferences{_folder.path().string(), std::chrono::milliseconds(0)};
  ScopedService<Preferences> _installed{_preferences};
};

}  // namespace kbx
