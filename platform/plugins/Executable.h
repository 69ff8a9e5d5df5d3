// Executable: the code of a bundle.
#pragma once

#include <string>

namespace kbx {

/// The folder inside "Contents" that holds the executables of this operating system.
const char* executableFolder();

/// Loads the code; its symbols are seen by nobody else. Null, and the system's words in `reason`,
/// when that fails. Opening what is open gives the same handle once more. Any thread.
///
/// Code that was opened stays mapped for ever, also when every handle is closed: classes that it
/// has made are immortal and point into it, objects of them may be anywhere, and the release that
/// ends the last instance still has to return into it.
void* openExecutable(const std::string& path, std::string* reason);
void closeExecutable(void* handle);

/// An exported function, or null.
void* executableFunction(void* handle, const std::string& name);

}  // namespace kbx
