#include "NSError+KBX.h"
#include "NSProcessInfo+KBX.h"
#include "NSURL+KBXFileBasics.h"
#include "platform/files/FileSystem.h"
#include "platform/objects/NSNumber.h"
#include "platform/plugins/Bridge.h"
#include "platform/resources/LaunchServices.h"
#include "platform/system/Clock.h"

namespace kbx {
namespace {

/// Whether there is something, links followed, and what.
bool getStatus(NSURL* url, FileStatus* status) {
  return url && FileSystem::current().statusOfPath(kbxFileSystemRepresentation(url), status) == 0;
}

bool exists(NSURL* url, FileStatus::Kind kind) {
  FileStatus status;
  return getStatus(url, &status) && status.kind == kind;
}

bool booleanOf(NSObject* value) {
  if (auto* number = cast<NSNumber>(value)) return number->boolValue();
  auto* text = cast<NSString>(value);
  return text && text->boolValue();
}

bool isLaunchServicesApplication(NSURL* url) {
  LSItemInfoRecord info;
  if (LSCopyItemInfoForURL(toCF(url), kLSRequestBasicFlagsOnly, &info) != 0) return false;
  return (info.flags & kLSItemInfoIsApplication) != 0;
}

}  // namespace

bool kbxPathExists(NSURL* url) {
  FileStatus status;
  return getStatus(url, &status);
}

bool kbxFileExists(NSURL* url) { return exists(url, FileStatus::Kind::Regular); }
bool kbxDirectoryExists(NSURL* url) { return exists(url, FileStatus::Kind::Directory); }

bool kbxSymbolicLinkExists(NSURL* url) {
  if (!url) return false;
  FileStatus status;
  return FileSystem::current().statusOfLink(kbxFileSystemRepresentation(url), &status) == 0 &&
         status.kind == FileStatus::Kind::SymbolicLink;
}

bool kbxPackageExists(NSURL* url) { return kbxBOOLForResourceKey(url, NSURLIsPackageKey(), true); }

bool kbxApplicationExists(NSURL* url) {
  if (!kbxIsMacOSAtLeast10_11()) return isLaunchServicesApplication(url);
  return kbxBOOLForResourceKey(url, NSURLIsApplicationKey(), true);
}

bool kbxVolumeExists(NSURL* url) {
  if (kbxBOOLForResourceKey(url, NSURLIsVolumeKey(), true)) return true;
  // A mount point that is not mounted at the moment still counts.
  const Ref<NSURL> parent = kbxParent(url);
  return isEqual(kbxName(parent), "Volumes"_ns) && isEqual(kbxName(kbxParent(parent)), "/"_ns);
}

bool kbxWaitUntilPathExistsWithTimeout(NSURL* url, double timeout) {
  if (!url) return false;
  auto& clock = Clock::current();
  const double deadline = clock.secondsSince1970() + timeout;
  // Deadline first, path second: a timeout of 0 is false even for an existing path.
  while (deadline - clock.secondsSince1970() > 0)
    if (kbxPathExists(url)) return true;
  return false;
}

Ref<NSObject> kbxResourceValueForKey(NSURL* url, NSString* key, Ref<NSError>* error) {
  if (!url) return nullptr;
  Ref<NSError> failure;
  if (auto value = url->resourceValueForKey(key, &failure)) return value;
  if (!error) return nullptr;
  *error = failure ? failure
                   : kbxErrorByAddingStackFrame(
                         kbxErrorWithUnsupportedKey(key, url),
                         "-[NSURL(KBXFileBasics) kbxResourceValueForKey:error:]", 389);
  return nullptr;
}

bool kbxBOOLForResourceKey(NSURL* url, NSString* key, bool followSymlinks) {
  if (!url) return false;
  const Ref<NSURL> item = followSymlinks ? url->URLByResolvingSymlinksInPath() : Ref<NSURL>(url);
  if (kbxIsMacOSAtLeast10_9()) item->removeCachedResourceValueForKey(key);
  return booleanOf(item->resourceValueForKey(key, nullptr));
}

void kbxRemoveCachedResourceValueForKey(NSURL* url, NSString* key) {
  if (!url) return;
  if (kbxIsMacOSAtLeast10_9())
    url->removeCachedResourceValueForKey(key);
  else
    CFURLClearResourcePropertyCacheForKey(toCF(url), toCF(key));
}

}  // namespace kbx
