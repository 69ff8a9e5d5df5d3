// HTMLTextSink: the text alone, without a tree.
#pragma once

#include <string_view>

#include "platform/html/HTMLTreeBuilder.h"
#include "platform/markup/GrowingBytes.h"

namespace kbx {

/// Collects what a reader sees of a document: no head, no script; one blank for what is shown
/// where frames are not.
class HTMLTextSink {
 public:
  struct Place {};
  struct Mark {};
  struct Attributes {
    void clear() {}
    void add(std::string_view, std::string_view) {}
  };

  explicit HTMLTextSink(std::size_t expectedLength) : _text(expectedLength) {}

  Ref<NSData> take() { return _text.take(); }

  Attributes& attributes() { return _attributes; }
  Place html() { return {}; }
  Place head() { return {}; }
  Place body() { return {}; }
  void adoptAttributes(Place) {}
  Place append(Place, const HTMLToken&, HTMLVocabulary) { return {}; }
  void rawText(Place, std::string_view, bool) {}
  void comment(Place, std::string_view) {}
  void doctype(std::string_view) {}

  Mark mark(Place) { return {}; }
  void text(Place, std::string_view piece) {
    if (_framelessDepth == 0) _text.append(piece);
  }
  void lines(Place, Mark, std::uint32_t count) {
    if (_framelessDepth == 0) _text.append(count, '\n');
  }
  void removeBlank() {
    if (_framelessDepth == 0) _text.removeLast();
  }
  void beginFrameless() {
    if (_framelessDepth++ == 0) _text.append(' ');
  }
  void endFrameless() { --_framelessDepth; }

 private:
  GrowingBytes _text;
  Attributes _attributes;
  std::uint32_t _framelessDepth = 0;
};

}  // namespace kbx
