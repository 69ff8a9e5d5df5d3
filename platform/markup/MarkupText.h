// MarkupText: the bytes of a markup document as clean UTF-8.
#pragma once

#include <string_view>

#include "platform/Export.h"
#include "platform/objects/NSData.h"

namespace kbx {

/// Text in which every line ends in LF, there is no control character but TAB and LF, and every
/// character may stand in XML.
struct MarkupText {
  std::string_view text;
  Ref<NSData> owner;  // keeps the text alive
};

/// The text of a document, its charset found by encodingOfMarkup().
///
/// Control characters are left out, a form feed becomes a blank; malformed sequences and
/// non-characters become U+FFFD. Bytes that are clean already are not copied.
KBX_PLATFORM MarkupText markupText(NSData* bytes);

}  // namespace kbx
