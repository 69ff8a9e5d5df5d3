// XMLNames: the names of elements, attributes and entities as XML spells them.
#pragma once

#include <string_view>

#include "platform/markup/XMLTree.h"

namespace kbx {

/// The end of the name that begins at `p`; `p` itself when none does.
const char* endOfXMLName(const char* p, const char* end);

/// Whether a name has no colon, or one with a name on either side.
bool isQualifiedXMLName(std::string_view name);

/// A name and where its prefix ends; the namespace is not known yet.
XMLName splitXMLName(std::string_view qualified);

/// The name in the reference that a text begins with; empty when it is no reference by name.
std::string_view referenceName(std::string_view text);

/// The character of one of the five names that every document knows; empty for any other.
std::string_view predefinedCharacter(std::string_view name);

}  // namespace kbx
