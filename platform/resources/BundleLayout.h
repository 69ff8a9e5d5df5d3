// BundleLayout: which folders are to be treated as one file.
#pragma once

#include <string>

#include "platform/Export.h"

namespace kbx {

/// Whether the folder is laid out as an application: it is called NAME.app, has Contents/Info.plist
/// and the folder of executables Contents/Linux or Contents/MacOS.
KBX_PLATFORM bool isApplication(const std::string& path);

/// Whether the folder is shown as one file: an application, a folder of any name that is laid out
/// like one, or one whose extension says so, such as .mdimporter or .rtfd.
KBX_PLATFORM bool isPackage(const std::string& path);

}  // namespace kbx
