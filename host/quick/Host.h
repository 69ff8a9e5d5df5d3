// Host: the program that does everything.
#pragma once

namespace kbx {

/// Whether standard output leads to a terminal, where the host shows more than paths.
bool isForTerminal();

/// Replaces this program by the host, with the same words. Comes back only when it cannot be
/// started; standard error says why then, and what comes back is the exit code.
int becomeHost(char** argv);

}  // namespace kbx
