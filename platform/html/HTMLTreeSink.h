// HTMLTreeSink: makes the nodes of an HTML document.
#pragma once

#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/html/HTMLTreeBuilder.h"
#include "platform/markup/XMLTextJoiner.h"
#include "platform/markup/XMLTree.h"
#include "platform/objects/SeededHash.h"

namespace kbx {

/// The attributes of a tag that XML can hold: the first of each name, in small letters.
class HTMLTreeAttributes {
 public:
  explicit HTMLTreeAttributes(Arena& arena) : _arena(arena) {}

  void clear();
  /// A name that XML could not write, a prefix other than "xml" and a namespace declaration are
  /// left out.
  void add(std::string_view name, std::string_view value);
  /// Makes them the node's.
  void giveTo(XMLNode& node);

 private:
  bool isKnown(std::string_view name);
  std::string_view lowered(std::string_view name);
  std::string_view decoded(std::string_view value);

  Arena& _arena;
  std::vector<XMLAttribute> _attributes;
  std::unordered_set<std::string_view, SeededHash> _names;  // only once there are many
};

/// Fills a tree with html, head, title, body and what is in them.
class HTMLTreeSink {
 public:
  using Place = XMLNode*;
  using Attributes = HTMLTreeAttributes;
  struct Mark {
    XMLNode* parent = nullptr;
    XMLNode* behind = nullptr;  // a child; nullptr for the front
  };

  /// source  the text that is parsed; what is seen of it is not copied
  HTMLTreeSink(XMLTree& tree, std::string_view source);

  /// To be called at the end: a document without a title gets an empty one.
  void finish();

  Attributes& attributes() { return _attributes; }
  Place html() { return _html; }
  Place head() { return _head; }
  Place body() { return _body; }
  void adoptAttributes(Place place) { _attributes.giveTo(*place); }
  Place append(Place parent, const HTMLToken& token, HTMLVocabulary vocabulary);
  void rawText(Place element, std::string_view content, bool hasReferences);
  void comment(Place parent, std::string_view text);
  void doctype(std::string_view text);

  Mark mark(Place place) { return {place, place->lastChild}; }
  void text(Place parent, std::string_view piece) { _texts.append(parent, piece); }
  void lines(Place parent, const Mark& mark, std::uint32_t count);
  void removeBlank() { _texts.removeLast(); }
  void beginFrameless() {}
  void endFrameless() {}

 private:
  XMLNode* makeElement(std::string_view name, std::string_view uri);

  XMLTree& _tree;
  XMLTextJoiner _texts;
  HTMLTreeAttributes _attributes;
  XMLNode* const _html;
  XMLNode* const _head;
  XMLNode* const _body;
  bool _hasTitle = false;
};

}  // namespace kbx
