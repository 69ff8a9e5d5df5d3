// Comparison: what differs between a folder and what a store knows of it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/index/FolderWalk.h"
#include "host/index/KnownFiles.h"

namespace kbx {

struct Difference {
  enum class Kind : std::uint8_t {
    Unchanged,   // nothing differs
    Added,       // the store knows nothing of it
    Changed,     // the content is another one
    Doubtful,    // the content has the same size; what is in it must tell
    Renumbered,  // the file system has another number now, and nothing else differs
    Gone,        // there is no such file any more
    Unreadable   // nobody knows: the folder or file cannot be read
  };

  Kind kind;
  std::string path;
  FileState state = {};                 // what the file system says; unless Gone or Unreadable
  std::optional<KnownFile> known = {};  // unless Added or Unreadable
  int failure = 0;                      // an `errno` value, of what is Unreadable
};

/// Gives everything below a root, in the order of the paths' bytes. What the store knows inside a
/// folder that cannot be read is passed over: it is neither there nor gone.
class Comparison {
 public:
  /// root  an absolute path without a slash at its end
  Comparison(Database& database, const std::string& root,
             FolderWalk::Root kind = FolderWalk::Root::Named)
      : _walk(root, kind), _files(database, root) {}

  /// Absent after the last one, and when the store cannot be read; only then the error is set.
  std::optional<Difference> next(Ref<NSError>* error);

 private:
  bool advance(Ref<NSError>* error);
  std::optional<Difference> gone(Ref<NSError>* error);
  std::optional<Difference> unreadable(Ref<NSError>* error);
  std::optional<Difference> found(Ref<NSError>* error);

  FolderWalk _walk;
  KnownFiles _files;
  bool _hasBegun = false;
  std::optional<FoundFile> _found;  // the next one of the file system
  std::optional<KnownFile> _known;  // the next one of the store
};

/// How a file has changed since the store took it in.
Difference::Kind changeOf(const FileState& state, const KnownFile& known);

}  // namespace kbx
