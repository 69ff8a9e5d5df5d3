#include "KBXFunctions.h"
#include "KBXLog.h"
#include "NSURL+KBXFileBasics.h"
#include "RealHomeDirectory.h"
#include "platform/accounts/NSPathUtilities.h"
#include "platform/accounts/UserAccounts.h"
#include "platform/files/NSFileManager.h"
#include "platform/system/ProcessIdentity.h"

namespace kbx {
namespace {

constexpr const char* kFile = "KBXFoundation/Source/NSURL+KBXFileBasics";

constexpr LogSite realHomeSite(unsigned long line) {
  return {kFile, line, "+[NSURL(KBXFileBasics) kbxRealHomeDirectoryURL]"};
}

constexpr LogSite passwordSite(unsigned long line) {
  return {kFile, line, "+[NSURL(KBXFileBasics) kbxGetpwuidRealHomeDirectoryURL]"};
}

/// The home folder behind the one that the process is told, which in a sandbox is
/// HOME/Library/Containers/IDENTIFIER/Data.
Ref<NSURL> homeWithoutDatabase() {
  const Ref<NSURL> home = NSURL::fileURLWithPath(NSHomeDirectory());
  const Ref<NSString> user = NSUserName();
  if (isEqual(kbxName(home), user)) {
    KBX_LOG(realHomeSite(28), "Fallback home directory since doesn't appear to be sandboxed: %@"_ns,
            kbxAbsolutePath(home));
    return home;
  }
  Ref<NSURL> candidate = home;
  for (int level = 0; level < 4; ++level) candidate = kbxParent(candidate);
  const bool isSandboxed = isEqual(kbxName(home), "Data"_ns) && isEqual(kbxName(candidate), user);
  KBX_PRECONDITION_TEXT(isSandboxed, "NO",
                        Site(kFile, 38, NSURL::classObject(), "kbxRealHomeDirectoryURL"));
  KBX_LOG(realHomeSite(35), "Fallback constructed home directory: %@"_ns,
          kbxAbsolutePath(candidate));
  return candidate;
}

Ref<NSObject> volumeOf(NSURL* url) {
  return url ? url->resourceValueForKey(NSURLVolumeIdentifierKey(), nullptr) : nullptr;
}

}  // namespace

Ref<NSURL> RealHomeDirectory::url() {
  const std::lock_guard held(_lock);
  if (!_cachedURL) _cachedURL = kbxGetpwuidRealHomeDirectoryURL();
  return _cachedURL ? _cachedURL : homeWithoutDatabase();
}

Ref<NSURL> kbxRealHomeDirectoryURL() {
  static RealHomeDirectory& directory = *new RealHomeDirectory;
  return directory.url();
}

Ref<NSURL> kbxGetpwuidRealHomeDirectoryURL() {
  const auto user =
      UserAccounts::current().entryOfUser(ProcessIdentity::current().realUserIdentifier());
  if (!user) {
    KBX_LOG(passwordSite(46), "getpwuid returned NULL."_ns);
    return nullptr;
  }
  if (!user->homeDirectory) {
    KBX_LOG(passwordSite(51), "userInfo->pw_dir is NULL."_ns);
    return nullptr;
  }
  const Ref<NSString> path = NSFileManager::defaultManager()->stringWithFileSystemRepresentation(
      user->homeDirectory->data(), user->homeDirectory->size());
  if (!path) {
    KBX_LOG(passwordSite(57), "Home directory path is nil."_ns);
    return nullptr;
  }
  Ref<NSURL> url = NSURL::fileURLWithPath(path);
  if (!url) KBX_LOG(passwordSite(62), "Home directory URL is nil."_ns);
  return url;
}

bool kbxIsHomeDirectoryOnSeparateVolume() {
  const Ref<NSURL> home = NSURL::fileURLWithPath(NSHomeDirectory(), true);
  const Ref<NSURL> applications = NSFileManager::defaultManager()->URLForDirectory(
      NSApplicationDirectory, NSLocalDomainMask, nullptr);
  const Ref<NSObject> homeVolume = volumeOf(home), otherVolume = volumeOf(applications);
  return homeVolume && otherVolume && !isEqual(homeVolume, otherVolume);
}

}  // namespace kbx
