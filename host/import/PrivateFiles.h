// PrivateFiles: who may read what the process writes.
#pragma once

namespace kbx {

/// For the start of the process: files that it makes from now on are the user's alone. Copies of a
/// message must not show what the message itself keeps from others.
void keepNewFilesPrivate();

}  // namespace kbx
