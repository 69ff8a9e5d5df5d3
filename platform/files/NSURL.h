// NSURL: the location of a file.
#pragma once

#include <string>

#include "platform/objects/NSObject.h"
#include "platform/objects/NSString.h"
#include "platform/resources/ResourceCache.h"

namespace kbx {

class NSArray;
class NSError;

// ---- Resource keys: docs/files.md says where the answers come from ----

/// The name to show, a string.
inline NSString* NSURLLocalizedNameKey() { return "NSURLLocalizedNameKey"_ns; }
/// Whether it is a folder that is shown as one file, a boolean.
inline NSString* NSURLIsPackageKey() { return "NSURLIsPackageKey"_ns; }
/// Whether it is an application, a boolean.
inline NSString* NSURLIsApplicationKey() { return "NSURLIsApplicationKey"_ns; }
/// Whether it is the root folder of a volume, a boolean.
inline NSString* NSURLIsVolumeKey() { return "NSURLIsVolumeKey"_ns; }
/// An object that is equal for two items when they lie on one volume.
inline NSString* NSURLVolumeIdentifierKey() { return "NSURLVolumeIdentifierKey"_ns; }
/// The name of the item's volume, a string.
inline NSString* NSURLVolumeLocalizedNameKey() { return "NSURLVolumeLocalizedNameKey"_ns; }
/// The uniform type identifier, a string.
inline NSString* NSURLTypeIdentifierKey() { return "NSURLTypeIdentifierKey"_ns; }

/// An immutable absolute location in the file system. May be shared between threads.
///
/// Holds the path as the bytes that the system calls take, without trailing slashes, and beside it
/// whether the location was given as a folder; so a folder's mark never gets into a system call.
/// Every location is that of a file. What it was told of the file it remembers, see
/// resourceValueForKey().
class KBX_PLATFORM NSURL final : public NSObject {
  KBX_OBJECT(NSURL, NSObject)
 public:
  /// The location of a path, a relative one below the working folder. Asks the file system whether
  /// it is a folder; a trailing slash says so as well. Absent for an absent or empty path and for
  /// one that no file can have. (fileURLWithPath:)
  static Ref<NSURL> fileURLWithPath(NSString* path);
  /// The same without a question to the file system. (fileURLWithPath:isDirectory:)
  static Ref<NSURL> fileURLWithPath(NSString* path, bool isDirectory);
  /// The same for a path in bytes.
  static Ref<NSURL> fileURLWithFileSystemRepresentation(std::string_view path, bool isDirectory);

  /// The path as text, without a trailing slash. Never absent.
  Ref<NSString> path() const;
  /// The path as system calls take it.
  const std::string& fileSystemRepresentation() const noexcept { return _path; }
  bool hasDirectoryPath() const noexcept { return _isDirectory; }
  /// "file:///Volumes/My%20Disk/": the path in UTF-8 with percent escapes. (absoluteString)
  Ref<NSString> absoluteString() const;

  /// "/" for the root.
  Ref<NSString> lastPathComponent() const;
  /// The text behind the last dot of the name; "" without one and for a leading dot alone.
  Ref<NSString> pathExtension() const;
  /// The location of `name` in this one; a trailing slash makes it a folder's. An absent or
  /// impossible name gives an absent result. (URLByAppendingPathComponent:)
  Ref<NSURL> URLByAppendingPathComponent(NSString* name) const;
  /// The folder around this location; the root's is the root. (URLByDeletingLastPathComponent)
  Ref<NSURL> URLByDeletingLastPathComponent() const;
  /// The location with a dot and the extension behind the name. (URLByAppendingPathExtension:)
  ///
  /// Itself for an empty extension and for the root. An absent extension, one with a slash and one
  /// that no file can have give an absent result.
  Ref<NSURL> URLByAppendingPathExtension(NSString* extension) const;
  /// The location without what pathExtension() answers and its dot; itself where that is empty.
  /// (URLByDeletingPathExtension)
  Ref<NSURL> URLByDeletingPathExtension() const;
  /// Without empty, "." and ".." components; links are not followed. (URLByStandardizingPath)
  Ref<NSURL> URLByStandardizingPath() const;
  /// The same with every link replaced by where it leads; what does not exist stays as it is.
  /// Links are left as they are when there are more than 40. (URLByResolvingSymlinksInPath)
  Ref<NSURL> URLByResolvingSymlinksInPath() const;
  /// The names on the way from the root, which is the first: "/", "a", "b". (pathComponents)
  Ref<NSArray> pathComponents() const;

  /// What the system knows of the file under a resource key. (getResourceValue:forKey:error:)
  ///
  /// A value that was found is kept and answered again until it is removed, whatever becomes of the
  /// file. A link at the end is the file itself, but for the type identifier, where it counts as
  /// what it leads to. A key that is not known here has no value and no error, and so has an item
  /// without such a value. Fails with NSCocoaErrorDomain 260 where there is no file.
  Ref<NSObject> resourceValueForKey(NSString* key, Ref<NSError>* error) const;
  /// Makes the next question for the key ask the system. (removeCachedResourceValueForKey:)
  void removeCachedResourceValueForKey(NSString* key) const;
  /// The same for every key. (removeAllCachedResourceValues)
  void removeAllCachedResourceValues() const;

  /// The absolute string.
  Ref<NSString> description() const override;
  bool isEqual(NSObject* other) const override;
  std::size_t hash() const override;

 private:
  NSURL(std::string path, bool isDirectory) : _path(std::move(path)), _isDirectory(isDirectory) {}
  static Ref<NSURL> make(std::string path, bool isDirectory);

  const std::string _path;
  const bool _isDirectory;
  mutable ResourceCache _resources;
};

}  // namespace kbx
