// NSURL: the location of a file.
#pragma once

#include <string>

#include "platform/objects/NSObject.h"
#include "platform/objects/NSString.h"

namespace kbx {

class NSError;

inline NSString* NSURLTypeIdentifierKey() { return "NSURLTypeIdentifierKey"_ns; }

/// An immutable absolute location in the file system. May be shared between threads.
///
/// Holds the path as the bytes that the system calls take, without trailing slashes, and beside it
/// whether the location was given as a folder; so a folder's mark never gets into a system call.
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
  /// Without empty, "." and ".." components; links are not followed. (URLByStandardizingPath)
  Ref<NSURL> URLByStandardizingPath() const;

  /// What the file system knows of the file under a resource key. (getResourceValue:forKey:error:)
  ///
  /// NSURLTypeIdentifierKey gives the uniform type identifier as a string. A key that is not known
  /// here has no value and no error. Fails with NSCocoaErrorDomain 260 where there is no file.
  Ref<NSObject> resourceValueForKey(NSString* key, Ref<NSError>* error) const;

  /// The absolute string.
  Ref<NSString> description() const override;
  bool isEqual(NSObject* other) const override;
  std::size_t hash() const override;

 private:
  NSURL(std::string path, bool isDirectory) : _path(std::move(path)), _isDirectory(isDirectory) {}
  static Ref<NSURL> make(std::string path, bool isDirectory);

  const std::string _path;
  const bool _isDirectory;
};

}  // namespace kbx
