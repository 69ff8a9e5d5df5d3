#include "host/index/IndexPlan.h"

#include "host/console/Interruption.h"
#include "platform/files/FileErrors.h"
#include "platform/files/NSURL.h"

namespace kbx {
namespace {

using Kind = Difference::Kind;

Ref<NSError> readingError(const std::string& path, int failure) {
  auto url = NSURL::fileURLWithFileSystemRepresentation(path, true);
  return fileError(url, FileAction::Reading, failure);
}

}  // namespace

bool IndexPlan::make(Database& store, const std::vector<std::string>& roots,
                     IndexListener& listener, Ref<NSError>* error) {
  _store = &store;
  _roots = roots;
  for (const std::string& root : roots)
    if (!compareRoot(root, listener, error)) return false;
  return true;
}

bool IndexPlan::compareRoot(const std::string& root, IndexListener& listener, Ref<NSError>* error) {
  Comparison comparison(*_store, root, _kind);
  Ref<NSError> failure;
  while (auto difference = comparison.next(&failure)) {
    if (Interruption::isWished()) return true;
    if (difference->kind == Kind::Unreadable && difference->path == root) ++_futileRoots;
    take(std::move(*difference), listener);
    listener.compared();
  }
  if (failure && error) *error = failure;
  return !failure;
}

bool IndexPlan::isWork(const Difference& difference) const {
  const bool isToRetry = difference.known && difference.known->hasFailed && _retriesFailures;
  return difference.kind != Kind::Gone && difference.kind != Kind::Unreadable &&
         (difference.kind != Kind::Unchanged || isToRetry);
}

void IndexPlan::take(Difference difference, IndexListener& listener) {
  if (isWork(difference)) return keep(std::move(difference));
  switch (difference.kind) {
    case Kind::Unreadable:
      ++_troubles;
      return listener.kept(difference.path, readingError(difference.path, difference.failure));
    case Kind::Gone:
      return _gone.add(std::move(*difference.known));
    default:
      ++(difference.known->hasFailed ? _stillFailed : _unchanged);
  }
}

void IndexPlan::keep(Difference difference) {
  ++_pending;
  if (_isKept && _work.size() < _mostKept) return _work.push_back(std::move(difference));
  _isKept = false;
  std::vector<Difference>().swap(_work);
}

std::optional<Difference> IndexPlan::next(Ref<NSError>* error) {
  if (!_isKept) return nextOfAll(error);
  if (_position == _work.size()) return std::nullopt;
  return std::move(_work[_position++]);
}

std::optional<Difference> IndexPlan::nextOfAll(Ref<NSError>* error) {
  Ref<NSError> failure;
  while (_again || _position < _roots.size()) {
    if (!_again) _again.emplace(*_store, _roots[_position++], _kind);
    while (auto difference = _again->next(&failure))
      if (isWork(*difference)) return difference;
    if (failure && error) *error = failure;
    if (failure) return std::nullopt;
    _again.reset();
  }
  return std::nullopt;
}

std::optional<std::string> IndexPlan::missingVolume(const KnownFile& file) const {
  std::string folder = file.path;
  std::uint64_t device = 0;
  do {
    folder.resize(std::max<std::size_t>(folder.rfind('/'), 1));
  } while (folder.size() > 1 && FolderReader::current().deviceOfFolder(folder, &device) != 0);
  const bool isSame =
      device == file.state.device || _renumbered.contains({file.state.device, device});
  return isSame ? std::nullopt : std::optional(folder);
}

}  // namespace kbx
