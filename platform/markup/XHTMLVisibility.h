// XHTMLVisibility: which elements of an XHTML document a reader does not see.
#pragma once

#include <cstddef>

#include "platform/markup/XMLTree.h"

namespace kbx {

/// Whether a root with this name makes a document XHTML.
inline bool isXHTMLRoot(const XMLName& name) { return name.is(kXHTMLNamespace, "html"); }

/// Follows the elements of an XHTML document, and knows whether the place is hidden: inside a head,
/// a script, a noframes, or inside what belongs to a head and stands elsewhere.
class XHTMLVisibility {
 public:
  /// At the start tag of each element and at its end.
  void start(const XMLName& name) {
    ++_depth;
    if (_hiddenDepth > 0) return;
    _isMisplaced = isOfHead(name);
    if (_isMisplaced || isHidden(name)) _hiddenDepth = _depth;
  }
  void end() {
    if (_depth-- == _hiddenDepth) _hiddenDepth = 0;
  }

  std::size_t depth() const { return _depth; }
  bool isHidden() const { return _hiddenDepth > 0; }
  /// Whether the place is the outermost element that hides what is inside.
  bool isOutermostHidden() const { return _hiddenDepth > 0 && _hiddenDepth == _depth; }
  /// Whether that element belongs to a head and stands elsewhere.
  bool isMisplaced() const { return isHidden() && _isMisplaced; }

 private:
  /// What the converter's stylesheet does not show.
  static bool isHidden(const XMLName& name) {
    const auto local = name.local();
    return name.uri == kXHTMLNamespace &&
           (local == "head" || local == "script" || local == "noframes");
  }
  /// What no stylesheet hides, and no reader sees.
  static bool isOfHead(const XMLName& name) {
    const auto local = name.local();
    if (name.uri == kXHTMLNamespace) return local == "style" || local == "title";
    return name.uri == kSVGNamespace && (local == "style" || local == "script");
  }

  std::size_t _depth = 0;
  std::size_t _hiddenDepth = 0;  // of the outermost element that hides its content; 0 for none
  bool _isMisplaced = false;
};

}  // namespace kbx
