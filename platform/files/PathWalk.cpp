#include "platform/files/PathWalk.h"

#include <algorithm>
#include <cerrno>

namespace kbx {
namespace {

constexpr int kMostLinks = 40;  // as many as Linux follows itself

/// How many bytes of both paths are the same folder by name; 0 for the root.
std::size_t commonLength(std::string_view a, std::string_view b) {
  const auto [end, other] = std::ranges::mismatch(a, b);
  const auto same = static_cast<std::size_t>(end - a.begin());
  const bool endsThere =
      (same == a.size() || a[same] == '/') && (same == b.size() || b[same] == '/');
  return endsThere ? same : a.substr(0, same).rfind('/');
}

}  // namespace

bool PathWalk::follow(std::string_view path) {
  _ahead = path;
  _passed.resize(1);
  _failure = FileSystem::current().statusOfLink("/", &_passed[0]);
  return goOn();
}

bool PathWalk::followBeside(const PathWalk& before, std::string_view path) {
  if (before._links > 0 || before._failure < 0) return follow(path);
  const std::size_t common = commonLength(before._behind, path);
  if (common == std::string_view::npos) return follow(path);
  _behind = path.substr(0, common);
  _ahead = path.substr(common);
  const auto names = std::ranges::count(_behind, '/');
  _passed.assign(before._passed.begin(), before._passed.begin() + names + 1);
  return goOn();
}

bool PathWalk::goOn() {
  while (_at < _ahead.size()) {
    const std::size_t start = _at, end = std::min(_ahead.find('/', _at), _ahead.size());
    _at = end + 1;
    if (!step(std::string_view(_ahead).substr(start, end - start))) return false;
  }
  return true;
}

bool PathWalk::step(std::string_view name) {
  if (name.empty() || name == ".") return true;
  if (name == "..") {
    goUp();
    return true;
  }
  const std::size_t parent = _behind.size();
  _behind.append("/").append(name);
  if (_failure < 0) return true;  // nothing can be seen below that either
  FileStatus status;
  const int result = FileSystem::current().statusOfLink(_behind, &status);
  if (result < 0)
    fail(result, parent);
  else if (status.kind == FileStatus::Kind::SymbolicLink)
    return followLink(parent);
  else
    _passed.push_back(status);
  return true;
}

bool PathWalk::followLink(std::size_t parent) {
  if (++_links > kMostLinks) return false;
  std::string target;
  const int result = FileSystem::current().readLink(_behind, &target);
  if (result < 0 || target.empty()) {
    fail(result < 0 ? result : -ENOENT, parent);
    return true;
  }
  const bool isAbsolute = target.front() == '/';
  if (isAbsolute) _passed.resize(1);
  _behind.resize(isAbsolute ? 0 : parent);
  if (_at < _ahead.size()) target.append("/").append(_ahead, _at);
  _ahead.swap(target);
  _at = 0;
  return true;
}

void PathWalk::goUp() {
  if (_behind.empty()) return;
  _behind.resize(_behind.rfind('/'));
  if (_failure == 0)
    _passed.pop_back();
  else if (_behind.size() <= _failedBelow)
    _failure = 0;  // left behind
}

void PathWalk::fail(int result, std::size_t parent) {
  _failure = result;
  _failedBelow = parent;
}

}  // namespace kbx
