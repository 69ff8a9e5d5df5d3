#include "platform/plugins/PlugInServices.h"

#include "platform/plugins/PlugInLoader.h"

namespace kbx {

PlugInServices::~PlugInServices() = default;

KBX_SERVICE(PlugInServices, PlugInLoader)

}  // namespace kbx
