// HTMLBody: a text for what an importer delivers as HTML alone.
#pragma once

#include "platform/objects/NSDictionary.h"

namespace kbx {

/// Sets kMDItemTextContent to the visible text of the HTML body, kMDItemHTMLContent or else
/// kMDItemHTMLContentData, where there is one and no text, and says so by
/// KBXTextContentIsSynthesized. The message importer does the same for what it hosts; this is for
/// importers that are asked directly.
void addTextOfHTMLBody(NSMutableDictionary* attributes);

}  // namespace kbx
