// ServiceManager: what a service tells the system that started it.
#pragma once

#include <string_view>

namespace kbx {

/// Tells whoever supervises the process how it stands: "READY=1", "STATUS=…", "STOPPING=1", several
/// separated by line feeds. Nothing happens where nobody asked to be told (NOTIFY_SOCKET), or where
/// the telling fails: a service does its work unheard as well.
void tellServiceManager(std::string_view state);

}  // namespace kbx
