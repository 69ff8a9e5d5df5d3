// Values: attributes and errors as bytes, on their way between processes.
#pragma once

#include <string>
#include <string_view>

#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// The bytes of a dictionary in which faultInAnswer() finds nothing; empty when they cannot be made
/// even so.
///
/// They are a mark and a binary property list. What such a list cannot hold, text with a surrogate
/// alone and null markers, is written around.
std::string bytesOfValues(NSDictionary* values);

/// The dictionary in such bytes; absent for any others. Whoever wrote them need not be trusted.
Ref<NSDictionary> valuesOfBytes(std::string_view bytes);

/// An error as such bytes: its domain, its code and its description.
std::string bytesOfError(NSError* error);
/// Absent for bytes that hold none.
Ref<NSError> errorOfBytes(std::string_view bytes);

}  // namespace kbx
