#include "mail/FlowedText.h"

#include <algorithm>

namespace kbx {

std::string textFromFlowed(std::string_view text, bool dropsBlank) {
  std::string result;
  result.reserve(text.size());
  bool isOpen = false;  // the line before goes on
  std::size_t openDepth = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    const std::string_view marks =
        line.substr(0, std::min(line.find_first_not_of('>'), line.size()));
    line.remove_prefix(marks.size());
    if (line.starts_with(' ')) line.remove_prefix(1);
    const bool isSignature = line == "-- ";
    if (isOpen && (isSignature || openDepth != marks.size())) {
      result += '\n';
      isOpen = false;
    }
    if (!isOpen && !marks.empty()) (result += marks) += ' ';
    isOpen = line.ends_with(' ') && !isSignature;
    openDepth = marks.size();
    if (isOpen && dropsBlank) line.remove_suffix(1);
    result += line;
    if (!isOpen) result += '\n';
  }
  return result;
}

}  // namespace kbx
