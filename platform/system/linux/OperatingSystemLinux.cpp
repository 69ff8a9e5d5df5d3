#include "platform/system/OperatingSystem.h"

namespace kbx {
namespace {

// Linux has no version of that other system, so it answers as one certain release would. On this
// one every newer branch is taken, and messages are answered with their raw text unless the
// caller forces the way through the mail importer.
constexpr NSOperatingSystemVersion kVersion{10, 15, 7};
constexpr double kFoundationVersionNumber = 1677.104;

class LinuxOperatingSystem final : public OperatingSystem {
 public:
  double foundationVersionNumber() override { return kFoundationVersionNumber; }
  NSOperatingSystemVersion version() override { return kVersion; }
  bool isAvailable(NSOperatingSystemVersion version) override { return kVersion >= version; }

  std::optional<std::int32_t> gestalt(OSType selector) override {
    switch (selector) {
      case gestaltSystemVersionMajor:
        return kVersion.majorVersion;
      case gestaltSystemVersionMinor:
        return kVersion.minorVersion;
      case gestaltSystemVersionBugFix:
        return kVersion.patchVersion;
      default:
        return std::nullopt;
    }
  }
};

}  // namespace

KBX_SERVICE(OperatingSystem, LinuxOperatingSystem)

}  // namespace kbx
