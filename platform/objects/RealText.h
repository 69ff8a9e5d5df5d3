// RealText: a real number in decimal digits.
#pragma once

#include <string>

namespace kbx {

/// The fewest digits that read back the same, as "100000" or "0.1"; with a power of ten, "1e+21",
/// only below 0.0001 and from 1e21 on. "inf" and "nan" for what is no number.
std::string realText(double value);

}  // namespace kbx
