#include "platform/objects/RealText.h"

#include <charconv>
#include <cmath>

namespace kbx {

std::string realText(double value) {
  const double size = std::fabs(value);
  const bool isPlain = size == 0 || (size >= 1e-4 && size < 1e21);
  const auto form = isPlain ? std::chars_format::fixed : std::chars_format::scientific;
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, value, form).ptr};
}

}  // namespace kbx
