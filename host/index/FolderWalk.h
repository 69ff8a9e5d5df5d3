// FolderWalk: the messages in a folder and in the folders inside it, one after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/index/FolderReader.h"

namespace kbx {

struct FoundFile {
  std::string path;  // of a file; of a folder only with a failure
  FileState state;
  int failure = 0;  // an `errno` value: why nothing is known of what the path names, and is in it
};

/// Gives what is found in the order of the paths' bytes, so that it can be laid beside a sorted
/// list. What cannot be read stands there as well, a folder at the place of what would be in it
/// (its path followed by a slash).
///
/// Messages are known as MessageNames knows them. Links inside the folder are not followed, and
/// hidden names are passed over but for the folders of a Maildir. Holds the lists of the folders on
/// the way to the file that comes next, and nothing else.
class FolderWalk {
 public:
  enum class Root : std::uint8_t {
    Named,  // by the user: a folder or a file of any name, which must be there; a link is followed
    Seen    // inside a folder that is indexed: what is no message, a link, or gone, is not there
  };

  /// root  an absolute path without a slash at its end
  explicit FolderWalk(std::string root, Root kind = Root::Named)
      : _root(std::move(root)), _kind(kind) {}

  std::optional<FoundFile> next();

 private:
  struct Folder {
    std::string path;
    std::vector<FolderEntry> entries;  // sorted
    std::size_t position = 0;
  };

  std::optional<FoundFile> begin();
  std::optional<FoundFile> enter(std::string path);
  bool isThere() const;

  const std::string _root;
  const Root _kind;
  bool _hasBegun = false;
  std::vector<Folder> _folders;  // the way from the root to the folder that is being walked
};

/// Whether a path is that of something inside a folder.
bool isInside(std::string_view path, std::string_view folder);

}  // namespace kbx
