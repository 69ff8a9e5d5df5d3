// PlainXMLPropertyList: the XML that writers of property lists write, read without an XML parser.
#pragma once

#include <string_view>

#include "platform/Export.h"
#include "platform/objects/NSObject.h"

namespace kbx {

/// The list in UTF-8 text of elements, character data and references alone, under the usual head
/// or none: a fraction of what a parser of all XML takes.
///
/// Absent for everything else, be it right or wrong: comments, sections, attributes, returns, other
/// encodings, faults. The reader of all XML then reads it, or tells what is wrong with it.
KBX_PLATFORM Ref<NSObject> propertyListFromPlainXML(std::string_view text, bool isMutable);

}  // namespace kbx
