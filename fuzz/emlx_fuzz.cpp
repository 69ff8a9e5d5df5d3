// Files of strangers in the .emlx layout: as much is read as there is, and never more.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/files/NSURL.h"
#include "platform/messages/EMLXFile.h"

namespace kbx {
namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

/// One file for all inputs, in memory where there is such a place.
const std::string& path() {
  static const std::string path =
      (std::filesystem::exists("/dev/shm") ? std::string("/dev/shm") : std::string("/tmp")) +
      "/emlx_fuzz-" + std::to_string(::getpid());
  static const int registered = std::atexit([] { std::filesystem::remove(path); });
  static_cast<void>(registered);
  return path;
}

void check(const std::uint8_t* bytes, std::size_t size) {
  std::ofstream(path(), std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(size));
  EMLXFile file(NSURL::fileURLWithFileSystemRepresentation(path(), false), nullptr);
  require(file.isOpen());
  std::uint64_t length = 0;
  for (auto piece = file.nextPiece(); !piece.empty(); piece = file.nextPiece())
    length += piece.size();
  require(length <= size && length == file.messageSize());
  require(file.properties() != nullptr);
  require(file.nextPiece().empty());
}

}  // namespace
}  // namespace kbx

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  kbx::check(bytes, size);
  return 0;
}
