// MarkupParser: a tree from the bytes of a document, XML or HTML.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/markup/XMLTree.h"
#include "platform/objects/NSData.h"

namespace kbx {

/// What may be done to a document that is no well-formed XML.
enum class Tidying : std::uint8_t {
  None,
  HTML,        // all but XHTML is HTML
  XMLAndHTML,  // all but well-formed XML is HTML
};

/// The tree of a document; absent only without tidying, for what is no well-formed XML.
///
/// A document of instructions and comments alone has no root, where XML may be taken as it is.
std::shared_ptr<XMLTree> parseMarkup(NSData* bytes, Tidying tidying);

}  // namespace kbx
