// Copies: of inputs that workers cannot reach themselves.
#pragma once

#include <cstddef>
#include <string>

#include "host/import/ScratchFolder.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// Each lies in a folder of its own, which is gone with this object or when it is let go.
class Copies {
 public:
  /// folder  where the folders are made; all workers may read what is in it
  explicit Copies(const ScratchFolder& folder) : _folder(folder) {}

  /// The path of a file with what standard input gives; empty, with the reason, when that fails.
  std::string ofStandardInput(Ref<NSError>* error);
  /// The path of a file with the contents and the name of another; empty, with the reason.
  std::string ofFile(NSURL* file, Ref<NSError>* error);
  /// Removes a copy.
  void letGo(const std::string& path);

 private:
  std::string newFolder();

  const ScratchFolder& _folder;
  std::size_t _count = 0;
};

}  // namespace kbx
