// ArchiveFault: what is wrong with an archive that is read.
#pragma once

#include <string>
#include <utility>

namespace kbx {

/// The first fault that was found, as the end of a sentence.
class ArchiveFault {
 public:
  /// False, for callers to hand on.
  bool fail(std::string what) {
    if (_text.empty()) _text = std::move(what);
    return false;
  }
  /// Empty while none was found.
  const std::string& text() const noexcept { return _text; }

 private:
  std::string _text;
};

}  // namespace kbx
