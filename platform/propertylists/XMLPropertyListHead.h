// XMLPropertyListHead: the three lines that begin a property list in XML.
#pragma once

#include <string_view>

namespace kbx {

inline constexpr std::string_view kXMLDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
inline constexpr std::string_view kXMLDocumentType =
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">";
inline constexpr std::string_view kXMLPlistTag = "<plist version=\"1.0\">";

}  // namespace kbx
