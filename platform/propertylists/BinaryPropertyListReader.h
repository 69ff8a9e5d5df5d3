// BinaryPropertyListReader: a property list from the binary form of version 1.0.
#pragma once

#include <string_view>

#include "platform/propertylists/PropertyListReading.h"

namespace kbx {

/// Whether the bytes claim to be of the binary form, of any version.
bool isBinaryPropertyList(std::string_view bytes);

/// The list in the bytes. A fault names the byte.
///
/// isMutable  whether arrays and dictionaries shall be changeable; then no two places share one
///
/// Objects that lie outside the file's objects, hold themselves or belong to archives only are
/// refused, and so is a list that grows, written out, to more than 250,000 values and four
/// for each byte, or to more than 16 million bytes of text and data and 1024 for each byte.
PropertyListReading propertyListFromBinary(std::string_view bytes, bool isMutable);

/// The same for an archive, whose references become NSKeyedArchiverUID objects. Immutable.
PropertyListReading archiveFromBinary(std::string_view bytes);

}  // namespace kbx
