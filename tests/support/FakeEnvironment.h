// FakeEnvironment: the environment variables that a test wants.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/system/Environment.h"

namespace kbx {

/// FakeEnvironment environment{{"HOME=/nowhere"}}; install it with ScopedService<Environment>.
class FakeEnvironment final : public Environment {
 public:
  explicit FakeEnvironment(std::vector<std::string> variables = {})
      : entries(std::move(variables)) {}

  std::vector<std::string> variables() override { return entries; }

  std::vector<std::string> entries;  // each "NAME=value"
};

}  // namespace kbx
