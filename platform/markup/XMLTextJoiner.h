// XMLTextJoiner: puts text together from pieces, copying as little as it can.
#pragma once

#include <string_view>

#include "platform/markup/XMLTree.h"

namespace kbx {

/// Appends text to nodes of a tree. Pieces that lie one behind the other in the tree's source stay
/// there; others are put together in memory that grows by doubling, so that many pieces take no
/// more time than one.
class XMLTextJoiner {
 public:
  XMLTextJoiner(XMLTree& tree, std::string_view source) : _tree(tree), _source(source) {}

  /// Makes the piece part of the text that `parent` ends in, or a new text there.
  void append(XMLNode* parent, std::string_view piece);
  /// Takes back the last byte of the last piece; a text of nothing is removed.
  void removeLast();

 private:
  bool isFromSource(std::string_view piece) const;
  void appendToLast(std::string_view piece);

  XMLTree& _tree;
  const std::string_view _source;
  XMLNode* _last = nullptr;
  std::size_t _room = 0;  // bytes behind the last text into which it can grow
};

}  // namespace kbx
