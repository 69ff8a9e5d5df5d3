#include "host/import/ImportLog.h"

namespace kbx {
namespace {

constexpr std::size_t kMostLines = 64;

thread_local ImportLog::Recording* innermost = nullptr;

}  // namespace

ImportLog::Recording::Recording() : _outer(innermost) { innermost = this; }

ImportLog::Recording::~Recording() { innermost = _outer; }

void ImportLog::Recording::replacePath(NSString* path, NSString* shown) {
  _replacedPath = path;
  _shownPath = shown;
}

void ImportLog::write(NSString* message) {
  Ref<NSString> line = descriptionOf(message);
  if (innermost && innermost->_replacedPath)
    line = line->stringByReplacingOccurrences(innermost->_replacedPath, innermost->_shownPath);
  show(line);
  if (!innermost) return;
  if (innermost->_lines.size() == kMostLines) innermost->_lines.pop_front();
  innermost->_lines.push_back(line);
}

}  // namespace kbx
