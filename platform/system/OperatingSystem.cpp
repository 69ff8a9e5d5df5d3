#include "platform/system/OperatingSystem.h"

namespace kbx {

OperatingSystem::~OperatingSystem() = default;

double NSFoundationVersionNumber() { return OperatingSystem::current().foundationVersionNumber(); }

bool isAvailable(NSOperatingSystemVersion version) {
  return OperatingSystem::current().isAvailable(version);
}

OSErr Gestalt(OSType selector, std::int32_t* response) {
  const auto value = OperatingSystem::current().gestalt(selector);
  if (!value) return gestaltUndefSelectorErr;
  *response = *value;
  return 0;
}

}  // namespace kbx
