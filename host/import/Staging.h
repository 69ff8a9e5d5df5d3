// Staging: shows a message to an importer in a private folder instead of its own.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/import/ScratchFolder.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// The folders in which the messages of a run are staged, one at a time. An importer may write
/// beside a message: here that disturbs nobody, costs no disk, and works for messages in folders
/// that cannot be written. Belongs to one thread at a time.
class Staging {
 public:
  Staging() : _memory(ScratchFolder::Place::Memory) {}
  /// In folders that another process has made for this one.
  Staging(const ScratchFolder& memory, const ScratchFolder& disk);

  /// The folder for a message: in memory, unless the message would take much of what is free there.
  ///
  /// size  of the message, in bytes
  ScratchFolder& folderForSize(std::uint64_t size);

 private:
  bool fitsIntoMemory(std::uint64_t size) const;

  ScratchFolder _memory;
  std::optional<ScratchFolder> _disk;  // made when it is needed
};

/// Puts the user's paths into the values that are paths of a private folder. Both folders are
/// without a slash at the end.
void restorePaths(NSMutableDictionary* attributes, NSString* folder, NSString* originalFolder);

/// The folder in which a file lies, without a slash at the end.
std::string_view folderOf(NSURL* file);

/// A message under its own name in a staging folder: a link to the original. Gone with this object,
/// with whatever an importer has left beside it.
class StagedMessage {
 public:
  /// Without a url() the error says why.
  ///
  /// contents  where the message's bytes lie; its own place or a copy
  StagedMessage(ScratchFolder& folder, NSURL* original, NSURL* contents, Ref<NSError>* error);
  ~StagedMessage();
  StagedMessage(const StagedMessage&) = delete;
  StagedMessage& operator=(const StagedMessage&) = delete;

  /// What to give to the importer; absent when it could not be staged.
  NSURL* url() const noexcept { return _url; }
  /// The paths of the staging folder and of the original's folder, without a slash at the end: what
  /// to replace, and by what, in everything that the user is told.
  NSString* folder() const noexcept { return _folderPath; }
  NSString* originalFolder() const noexcept { return _originalFolder; }

 private:
  ScratchFolder& _folder;
  Ref<NSURL> _url;
  Ref<NSString> _folderPath;
  Ref<NSString> _originalFolder;
};

}  // namespace kbx
