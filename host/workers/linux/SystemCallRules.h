// SystemCallRules: a filter for system calls (seccomp).
#pragma once

namespace kbx {

/// From now on calls that importing never needs fail with EPERM, and those that only an attacker
/// makes end the process with SIGSYS. Zero, or a negative error number when nothing changed.
int enforceSystemCallRules();

}  // namespace kbx
