// FolderReader: what lies in one folder, with the marks by which a changed file is known.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/store/Store.h"
#include "platform/system/Service.h"

namespace kbx {

struct FolderEntry {
  std::string name;
  bool isFolder = false;
  FileState state;  // of files; the device is the folder's
};

/// Reads folders. Answers are zero or an error number (ENOENT). Safe from any thread.
class FolderReader {
 public:
  virtual ~FolderReader() = default;

  /// Stores the folders in a folder, and those of its regular files that are wanted, in no certain
  /// order. Links are left out, and so is what vanishes meanwhile.
  ///
  /// A folder that cannot be read to its end, or in which a file's state cannot be told, is an
  /// error as a whole: what is missing from half an answer must not count as gone. So is a link.
  virtual int read(const std::string& folder,
                   const std::function<bool(std::string_view)>& wantsFile,
                   std::vector<FolderEntry>* entries) = 0;
  /// Of a file that is named alone, a link at its end followed. ENOTSUP for what is neither a file
  /// nor a folder.
  virtual int stateOfFile(const std::string& path, FolderEntry* entry) = 0;
  /// On which device the folder lies.
  virtual int deviceOfFolder(const std::string& folder, std::uint64_t* device) = 0;

  KBX_SERVICE_INTERFACE(FolderReader)
};

}  // namespace kbx
