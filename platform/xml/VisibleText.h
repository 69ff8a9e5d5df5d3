// VisibleText: what a reader sees of a document, found in one pass and without a tree.
#pragma once

#include "platform/Export.h"
#include "platform/objects/NSData.h"

namespace kbx {

/// The visible text of a document in UTF-8; empty for no bytes. Never fails.
///
/// It is what comes out when the bytes are parsed with both tidying options, the canonical form
/// without comments is parsed again with the option for HTML, and a stylesheet puts out the text of
/// the result without XHTML's head and script elements and with a blank for each noframes element;
/// nothing where that form is empty.
KBX_PLATFORM Ref<NSData> visibleText(NSData* bytes);

}  // namespace kbx
