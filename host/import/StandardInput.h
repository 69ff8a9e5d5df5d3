// StandardInput: a message that comes through a pipe, as a file.
#pragma once

#include "host/import/ScratchFolder.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// Importers work on files, so standard input is copied to one, which is gone with this object.
class StandardInput {
 public:
  /// Reads to the end. Without a location the error says why: reading or writing failed, or there
  /// was more than a file of 2^31 - 1 bytes can take.
  explicit StandardInput(Ref<NSError>* error) { copyTo(_folder, error); }
  /// The same in a folder that somebody else removes.
  StandardInput(const ScratchFolder& folder, Ref<NSError>* error) : _folder("") {
    copyTo(folder, error);
  }

  /// The copy; absent when there is none.
  NSURL* url() const noexcept { return _url; }

 private:
  void copyTo(const ScratchFolder& folder, Ref<NSError>* error);

  ScratchFolder _folder;
  Ref<NSURL> _url;
};

}  // namespace kbx
