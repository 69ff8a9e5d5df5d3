// XMLPropertyListReader: a property list from the platform's XML form.
#pragma once

#include <string_view>

#include "platform/Export.h"
#include "platform/propertylists/PropertyListReading.h"

namespace kbx {

/// The list in an XML text of any encoding that the text itself tells; the "plist" element around
/// it may be missing. A fault names the line.
///
/// isMutable  whether arrays and dictionaries shall be changeable
///
/// A tag may be 32 KiB long, a comment or CDATA section 256 KiB, other text as long as it likes.
/// Nothing but the text is read: no document type, no entities, no network. Nothing is printed.
KBX_PLATFORM PropertyListReading propertyListFromXML(std::string_view text, bool isMutable);

}  // namespace kbx
