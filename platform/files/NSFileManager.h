// NSFileManager: operations on files as a whole.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/objects/NSObject.h"

namespace kbx {

class NSArray;
class NSError;
class NSString;
class NSURL;

enum NSURLRelationship : std::uint8_t {
  NSURLRelationshipContains = 0,
  NSURLRelationshipSame = 1,
  NSURLRelationshipOther = 2,
};

/// Folders that have a place in the system, and whose: those that are answered here.
enum NSSearchPathDirectory : std::uint8_t { NSApplicationDirectory = 1 };
enum NSSearchPathDomainMask : std::uint8_t { NSUserDomainMask = 1, NSLocalDomainMask = 2 };

/// Safe from any thread.
class KBX_PLATFORM NSFileManager final : public NSObject {
  KBX_OBJECT(NSFileManager, NSObject)
 public:
  /// The one object of the process, never freed. (defaultManager)
  static NSFileManager* defaultManager();

  /// Removes a file or an empty folder. (removeItemAtURL:error:)
  ///
  /// Fails in NSCocoaErrorDomain with the path and an underlying POSIX error: 4 no such file, 513
  /// no permission, 642 read-only volume, 512 anything else.
  bool removeItemAtURL(NSURL* url, Ref<NSError>* error);

  /// The names to show for a path, from the volume on: the names of the volume and of each folder,
  /// as localizedName() gives them. (componentsToDisplayForPath:)
  ///
  /// Volumes below /media, /run/media, /mnt and /Volumes stand for themselves; everything else is
  /// shown from the root, by the name of its volume or "/". Absent for an absent or relative path
  /// and when nothing is there.
  Ref<NSArray> componentsToDisplayForPath(NSString* path) const;

  /// How an item relates to a folder: whether it is the same, or lies in it at any depth.
  /// (getRelationship:ofDirectoryAtURL:toItemAtURL:error:)
  ///
  /// relationship  where to store the answer; untouched when false comes back
  ///
  /// Links are followed in both, and files are compared by what they are, not by name: the item is
  /// in the folder when one of the folders on its way from the root is that folder. Fails with
  /// NSCocoaErrorDomain 260 and so on when one of the two cannot be looked at; raises
  /// NSInvalidArgumentException when it is absent.
  bool getRelationship(NSURLRelationship* relationship, NSURL* directory, NSURL* item,
                       Ref<NSError>* error) const;

  /// Where the applications of the user or of this machine are.
  /// (URLForDirectory:inDomain:appropriateForURL:create:error:, without a related location, and
  /// nothing is created)
  ///
  /// The machine's are in /usr/share/applications where desktop applications are installed, else in
  /// /opt; the user's in "applications" of the user's own folder of shared data. Fails with
  /// NSCocoaErrorDomain 260 when there is no such folder.
  Ref<NSURL> URLForDirectory(NSSearchPathDirectory directory, NSSearchPathDomainMask domain,
                             Ref<NSError>* error) const;

  /// The text of a path's bytes (FileNames.h); absent when there are none, and for a NUL among
  /// them, which no path has.
  /// (stringWithFileSystemRepresentation:length:)
  Ref<NSString> stringWithFileSystemRepresentation(const char* path, std::size_t length) const;

 private:
  NSFileManager() = default;
};

}  // namespace kbx
