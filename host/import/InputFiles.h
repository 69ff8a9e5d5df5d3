// InputFiles: the files that a command line names, itself or through folders.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/objects/NSError.h"

namespace kbx {

/// The argument that stands for standard input, also where a folder has that name.
inline constexpr std::string_view kStandardInputName = "-";

/// A file to import, or something that turned out to be none.
struct Input {
  std::string path;    // bytes, as named on the command line or put together from it
  Ref<NSError> error;  // why there is nothing to import; absent for a file
};

/// Gives the arguments in their order, folders replaced by the messages in them: all files that are
/// messages by their names or by the layout of their folder (MessageNames), with those of inner
/// folders, sorted by the bytes of their names.
///
/// A link to a folder is followed where an argument names it, never inside a folder, so that no
/// link leads in circles. What an importer is just writing beside a message is passed over. A
/// folder that cannot be read gives an error, and so does an argument's folder in which there is
/// nothing. Any other argument is given as it is, whether there is such a file or not.
class InputFiles {
 public:
  explicit InputFiles(std::vector<std::string> arguments) : _arguments(std::move(arguments)) {}

  /// The next one; absent after the last.
  std::optional<Input> next();

 private:
  struct Entry {
    std::string name;
    bool isFolder;
  };
  struct Folder {
    std::string path;
    std::vector<Entry> entries;  // sorted
    std::size_t position = 0;
  };

  std::optional<Input> nextArgument();
  std::optional<Input> nextOfFolders();
  std::optional<Input> enter(std::string path);

  const std::vector<std::string> _arguments;
  std::size_t _position = 0;
  std::vector<Folder> _folders;  // the way from an argument to the folder that is being walked
  bool _foundNothing = false;    // in the argument's folder, so far
};

}  // namespace kbx
