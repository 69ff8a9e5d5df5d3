// IndexStatus: `ferncase index status`, what a store holds and what it could not take in.
#pragma once

#include <string>

#include "host/console/Command.h"

namespace kbx {

/// Prints the store's size, the folders that it keeps up with, and each file that gave no message
/// with its reason. kStoreFailed when there is no store to read.
ExitCode printIndexStatus(const std::string& storePath, bool isJSON, Console& console);

}  // namespace kbx
