// QuickSearch: the searches that need nothing of the platform.
#pragma once

#include <optional>

#include "host/console/Output.h"
#include "host/quick/QuickArguments.h"

namespace kbx {

/// The exit code, everything printed and delivered; or absent and nothing printed, where the host
/// has to say more than paths and numbers: what is wrong with the query or with the store, what
/// only attributes know, what came in the way.
std::optional<int> quickSearch(const QuickArguments& arguments, Output& output, Output& complaints);

}  // namespace kbx
