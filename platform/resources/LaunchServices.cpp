#include "platform/resources/LaunchServices.h"

#include "platform/files/FileSystem.h"
#include "platform/files/NSURL.h"
#include "platform/plugins/Bridge.h"
#include "platform/resources/BundleLayout.h"
#include "platform/volumes/Volumes.h"

namespace kbx {
namespace {

LSItemInfoFlags flagsOfFolder(const std::string& path) {
  LSItemInfoFlags flags = kLSItemInfoIsContainer;
  if (isPackage(path)) flags |= kLSItemInfoIsPackage;
  if (isApplication(path)) flags |= kLSItemInfoIsApplication;
  if (isMountPoint(path)) flags |= kLSItemInfoIsVolume;
  return flags;
}

class SystemLaunchServices final : public LaunchServices {
 public:
  OSStatus basicFlags(NSURL* item, LSItemInfoFlags* flags) override {
    const std::string& path = item->fileSystemRepresentation();
    FileStatus status;
    if (FileSystem::current().statusOfLink(path, &status) < 0) return fnfErr;
    switch (status.kind) {
      case FileStatus::Kind::Directory:
        *flags = flagsOfFolder(path);
        break;
      case FileStatus::Kind::SymbolicLink:
        *flags = kLSItemInfoIsSymlink;
        break;
      case FileStatus::Kind::Regular:
      case FileStatus::Kind::Other:
        *flags = kLSItemInfoIsPlainFile;
        break;
    }
    return 0;
  }
};

}  // namespace

LaunchServices::~LaunchServices() = default;

KBX_SERVICE(LaunchServices, SystemLaunchServices)

OSStatus LSCopyItemInfoForURL(CFURLRef item, LSRequestedInfo what, LSItemInfoRecord* info) {
  if (!item || !info || what != kLSRequestBasicFlagsOnly) return paramErr;
  LSItemInfoFlags flags = 0;
  const OSStatus result = LaunchServices::current().basicFlags(fromCF(item), &flags);
  if (result == 0) info->flags = flags;
  return result;
}

}  // namespace kbx
