// EndReason: in plain words, why a worker is no more.
#pragma once

#include <string>

#include "host/workers/ImportSettings.h"

namespace kbx {

/// status  as waitpid() tells it
std::string endReason(int status, const ImportLimits& limits);
/// For a worker that was ended because it did nothing any more.
std::string hangReason(const ImportLimits& limits);

}  // namespace kbx
