// FakePreferences: preference domains that a test fills in.
#pragma once

#include <map>
#include <string>

#include "platform/preferences/NSUserDefaults.h"

namespace kbx {

/// Installed while it lives.
class FakePreferences final : public Preferences {
 public:
  Ref<NSDictionary> domain(NSString* name) override {
    auto found = name ? domains.find(name->lossyUTF8()) : domains.end();
    return found == domains.end() ? nullptr : found->second;
  }

  std::map<std::string, Ref<NSDictionary>> domains;

 private:
  ScopedService<Preferences> _installed{*this};
};

}  // namespace kbx
