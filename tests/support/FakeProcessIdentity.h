// FakeProcessIdentity: a process with the name and the numbers that a test wants.
#pragma once

#include <string>
#include <utility>

#include "platform/system/ProcessIdentity.h"

namespace kbx {

/// Install it with ScopedService<ProcessIdentity>.
class FakeProcessIdentity final : public ProcessIdentity {
 public:
  explicit FakeProcessIdentity(std::string processName = "Host") : name(std::move(processName)) {}

  std::string processName() override { return name; }
  std::int32_t processIdentifier() override { return identifier; }
  std::uint32_t realUserIdentifier() override { return user; }

  std::string name;
  std::int32_t identifier = 4711;
  std::uint32_t user = 501;
};

}  // namespace kbx
