#include "platform/files/FileSystem.h"

#include "platform/files/SystemFiles.h"

namespace kbx {

FileSystem::~FileSystem() = default;

KBX_SERVICE(FileSystem, SystemFiles)

}  // namespace kbx
