#include "host/index/Comparison.h"

namespace kbx {
namespace {

/// Whether a path stands before what was found, and so is not there. What is in a folder stands
/// where the folder's path with a slash would stand.
bool isBefore(const std::string& path, const FoundFile& found) {
  if (!found.failure) return path < found.path;
  const bool isHidden = path == found.path || isInside(path, found.path);
  return !isHidden && path < found.path + '/';
}

}  // namespace

Difference::Kind changeOf(const FileState& state, const KnownFile& known) {
  using Kind = Difference::Kind;
  const FileState& old = known.state;
  if (state.size != old.size) return Kind::Changed;
  // Nobody can set the time of the last change, so the same file with the same one is the same.
  const bool isSame =
      state.inode == old.inode && state.modified == old.modified && state.changed == old.changed;
  if (isSame) return state.device == old.device ? Kind::Unchanged : Kind::Renumbered;
  return known.hash ? Kind::Doubtful : Kind::Changed;
}

bool Comparison::advance(Ref<NSError>* error) {
  Ref<NSError> failure;
  _known = _files.next(&failure);
  if (failure && error) *error = failure;
  return !failure;
}

std::optional<Difference> Comparison::next(Ref<NSError>* error) {
  if (!_hasBegun) {
    _hasBegun = true;
    _found = _walk.next();
    if (!advance(error)) return std::nullopt;
  }
  if (!_found) return _known ? gone(error) : std::nullopt;
  if (_known && isBefore(_known->path, *_found)) return gone(error);
  return _found->failure ? unreadable(error) : found(error);
}

std::optional<Difference> Comparison::gone(Ref<NSError>* error) {
  Difference difference{Difference::Kind::Gone, _known->path, {}, std::move(_known)};
  return advance(error) ? std::optional(std::move(difference)) : std::nullopt;
}

std::optional<Difference> Comparison::unreadable(Ref<NSError>* error) {
  const std::string& path = _found->path;
  while (_known && (_known->path == path || isInside(_known->path, path)))
    if (!advance(error)) return std::nullopt;
  Difference difference{Difference::Kind::Unreadable, path, {}, {}, _found->failure};
  _found = _walk.next();
  return difference;
}

std::optional<Difference> Comparison::found(Ref<NSError>* error) {
  Difference difference{Difference::Kind::Added, std::move(_found->path), _found->state};
  if (_known && _known->path == difference.path) {
    difference.kind = changeOf(difference.state, *_known);
    difference.known = std::move(_known);
    if (!advance(error)) return std::nullopt;
  }
  _found = _walk.next();
  return difference;
}

}  // namespace kbx
