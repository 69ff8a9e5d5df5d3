// PathWalk: a way down a path, link by link.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/files/FileSystem.h"

namespace kbx {

/// Follows a path through the file system and keeps what it passes. For one thread.
class KBX_PLATFORM PathWalk {
 public:
  /// Goes down an absolute path from the root. False when more than 40 links had to be followed.
  ///
  /// What does not exist is passed by name, and so is what cannot be looked at; failure() says so.
  bool follow(std::string_view path);
  /// The same, but what the path has in common with the one that `before` has followed is not
  /// looked at again where that held no links.
  bool followBeside(const PathWalk& before, std::string_view path);

  /// Where it leads: without links, empty components, "." and "..".
  std::string path() const { return _behind.empty() ? "/" : _behind; }
  /// 0, or the negative error number of the last name that could not be looked at.
  int failure() const noexcept { return _failure; }
  /// Without a failure: what is on the path, the root first, the item itself last.
  const std::vector<FileStatus>& passed() const noexcept { return _passed; }

 private:
  bool goOn();
  bool step(std::string_view name);
  bool followLink(std::size_t parent);
  void goUp();
  void fail(int result, std::size_t parent);

  std::string _behind;  // the names that are done, each with a slash before it
  std::string _ahead;   // the names to come begin at _at
  std::size_t _at = 0;
  std::vector<FileStatus> _passed;
  int _links = 0;
  int _failure = 0;
  std::size_t _failedBelow = 0;  // how much is behind without what failed
};

}  // namespace kbx
