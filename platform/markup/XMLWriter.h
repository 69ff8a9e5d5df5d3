// XMLWriter: a document as XML text, everything kept.
#pragma once

#include "platform/markup/GrowingBytes.h"
#include "platform/markup/XMLTree.h"

namespace kbx {

/// The XML of a node and what is below it, in UTF-8; of a document with its declaration.
///
/// isPretty  elements that hold no text of their own have their content on lines of its own, set in
///           by four blanks for each level up to a limit
Ref<NSData> xmlOfNode(XMLNode* node, bool isPretty);

}  // namespace kbx
