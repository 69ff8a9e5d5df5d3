// RawValues: attributes without their names, for other programs.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/results/Results.h"

namespace kbx {

/// For each file the values of the named attributes in the order of the names, a NUL behind each;
/// the marker where there is none, and for each name of a file that failed.
///
/// A string is its text in UTF-8 without its own NULs, lone surrogates being U+FFFD; an array is
/// its elements with line feeds between them; anything else is its description.
std::unique_ptr<Results> makeRawValues(Output& output, std::vector<std::string> names,
                                       std::string nullMarker);

}  // namespace kbx
