// FakeOperatingSystem: a system whose four answers about its version are the test's.
#pragma once

#include <map>

#include "platform/system/OperatingSystem.h"

namespace kbx {

/// Install it with ScopedService<OperatingSystem>. The availability check and the Gestalt numbers
/// agree with the version until a test sets them apart.
class FakeOperatingSystem final : public OperatingSystem {
 public:
  FakeOperatingSystem() : FakeOperatingSystem(1677.104, {10, 15, 7}) {}
  FakeOperatingSystem(double foundation, NSOperatingSystemVersion version)
      : foundationNumber(foundation), reportedVersion(version), availableVersion(version) {
    gestaltAnswers[gestaltSystemVersionMajor] = static_cast<std::int32_t>(version.majorVersion);
    gestaltAnswers[gestaltSystemVersionMinor] = static_cast<std::int32_t>(version.minorVersion);
    gestaltAnswers[gestaltSystemVersionBugFix] = static_cast<std::int32_t>(version.patchVersion);
  }

  double foundationVersionNumber() override { return foundationNumber; }
  NSOperatingSystemVersion version() override { return reportedVersion; }
  bool isAvailable(NSOperatingSystemVersion version) override {
    return availableVersion >= version;
  }
  std::optional<std::int32_t> gestalt(OSType selector) override {
    auto answer = gestaltAnswers.find(selector);
    return answer == gestaltAnswers.end() ? std::nullopt : std::optional(answer->second);
  }

  double foundationNumber;
  NSOperatingSystemVersion reportedVersion;
  NSOperatingSystemVersion availableVersion;
  std::map<OSType, std::int32_t> gestaltAnswers;  // a selector that is not here fails
};

}  // namespace kbx
