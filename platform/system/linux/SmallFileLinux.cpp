#include <fstream>

#include "platform/system/linux/SmallFile.h"

namespace kbx {

std::string readSmallFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text(std::size_t{1} << 16, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(file.gcount()));
  return text;
}

}  // namespace kbx
