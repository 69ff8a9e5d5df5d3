#include "platform/files/NSFileManager.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>
#include <vector>

#include "platform/desktop/DesktopFolders.h"
#include "platform/files/FileErrors.h"
#include "platform/files/FileNames.h"
#include "platform/files/FileSystem.h"
#include "platform/files/NSURL.h"
#include "platform/files/PathWalk.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"

namespace kbx {

KBX_CLASS(NSFileManager)

namespace {

bool isPassedOnTheWay(const FileStatus& folder, const PathWalk& walk) {
  const auto& passed = walk.passed();
  return std::any_of(passed.begin(), passed.end() - 1,
                     [&folder](const FileStatus& status) { return status.isSameFile(folder); });
}

/// Stores the error of a walk that did not get to its end.
bool hasArrived(bool isFollowed, const PathWalk& walk, NSURL* url, Ref<NSError>* error) {
  const int result = isFollowed ? walk.failure() : -ELOOP;
  if (result < 0 && error) *error = fileError(url, FileAction::Reading, -result);
  return result == 0;
}

}  // namespace

NSFileManager* NSFileManager::defaultManager() {
  static auto* const manager = new NSFileManager;
  return manager;
}

bool NSFileManager::removeItemAtURL(NSURL* url, Ref<NSError>* error) {
  if (!url) raiseInvalidArgument("-[NSFileManager removeItemAtURL:error:]: URL is nil");
  const int result = FileSystem::current().remove(url->fileSystemRepresentation());
  if (result < 0 && error) *error = fileError(url, FileAction::Removing, -result);
  return result >= 0;
}

Ref<NSString> NSFileManager::stringWithFileSystemRepresentation(const char* path,
                                                                std::size_t length) const {
  if (!path || std::string_view(path, length).find('\0') != std::string_view::npos) return nullptr;
  return kbx::stringWithFileSystemRepresentation({path, length});
}

bool NSFileManager::getRelationship(NSURLRelationship* relationship, NSURL* directory, NSURL* item,
                                    Ref<NSError>* error) const {
  if (!directory || !item)
    raiseInvalidArgument(
        "-[NSFileManager getRelationship:ofDirectoryAtURL:toItemAtURL:error:]: "
        "URL is nil");
  PathWalk toFolder, toItem;
  const bool isFollowed = toFolder.follow(directory->fileSystemRepresentation());
  if (!hasArrived(isFollowed, toFolder, directory, error)) return false;
  const bool isItemFollowed = toItem.followBeside(toFolder, item->fileSystemRepresentation());
  if (!hasArrived(isItemFollowed, toItem, item, error)) return false;
  const FileStatus& folder = toFolder.passed().back();
  if (folder.isSameFile(toItem.passed().back()))
    *relationship = NSURLRelationshipSame;
  else if (folder.isFolder() && isPassedOnTheWay(folder, toItem))
    *relationship = NSURLRelationshipContains;
  else
    *relationship = NSURLRelationshipOther;
  return true;
}

Ref<NSURL> NSFileManager::URLForDirectory(NSSearchPathDirectory, NSSearchPathDomainMask domain,
                                          Ref<NSError>* error) const {
  const bool isLocal = domain == NSLocalDomainMask;
  std::vector<std::string> places;
  if (isLocal)
    places = {"/usr/share/applications", "/opt"};
  else if (auto folder = userDataFolder())
    places = {*folder + "/applications"};
  for (const std::string& place : places) {
    FileStatus status;
    if (FileSystem::current().statusOfPath(place, &status) == 0 && status.isFolder())
      return NSURL::fileURLWithFileSystemRepresentation(place, true);
  }
  auto wanted = NSURL::fileURLWithFileSystemRepresentation(places.empty() ? "/" : places[0], true);
  if (error) *error = fileError(wanted, FileAction::Reading, ENOENT);
  return nullptr;
}

}  // namespace kbx
