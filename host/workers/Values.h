// Values: attributes and errors as bytes, on their way between processes.
//
// A value is a tag and what follows it: lengths and numbers of 64 bits in this machine's form, the
// bytes of texts and data, the values in a container. Unlike a property list this holds every text,
// also with a surrogate alone, and null markers; it is not sorted, shared or checked, so that
// writing and reading cost little beside an import.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// Where bytes go, piece by piece.
class ByteSink {
 public:
  virtual void append(std::string_view bytes) = 0;

 protected:
  ~ByteSink() = default;
};

/// Writes a dictionary in which faultInAnswer() finds nothing. Long texts are pieces of their own
/// and not copied.
void writeValues(ByteSink& sink, NSDictionary* values);
/// How many bytes writeValues() writes.
std::uint64_t sizeOfValues(NSDictionary* values);
/// The same as one piece, behind what is in `bytes`.
void appendValues(std::string& bytes, NSDictionary* values);
/// The dictionary in such bytes; absent for any others. Whoever wrote them need not be trusted:
/// what comes out takes memory in proportion to the bytes, and is at most 512 levels deep.
Ref<NSDictionary> valuesOfBytes(std::string_view bytes);

/// An error as such bytes: its domain, its code and its description.
std::string bytesOfError(NSError* error);
/// Absent for bytes that hold none.
Ref<NSError> errorOfBytes(std::string_view bytes);

/// A text as such bytes.
std::string bytesOfText(NSString* text);
/// Absent for bytes that hold none.
Ref<NSString> textOfBytes(std::string_view bytes);

}  // namespace kbx
