// FileRules: Landlock, the kernel's rules for what a process may do with files.
#pragma once

#include "host/workers/Sandbox.h"

namespace kbx {

/// Puts the rules in force, and where the kernel can, also forbids connections over TCP, to other
/// sockets by abstract names, and signals to other processes. The version of the rules, or a
/// negative error number.
int enforceFileRules(const AllowedFiles& files);

}  // namespace kbx
