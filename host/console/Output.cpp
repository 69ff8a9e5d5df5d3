#include "host/console/Output.h"

#include <cerrno>
#include <cstdint>

#include "platform/files/FileSystem.h"

namespace kbx {

Output::Output() { _waiting.reserve(kCapacity); }

void Output::writeMuch(std::string_view bytes) {
  flush();
  if (bytes.size() <= kCapacity) {
    _waiting.append(bytes);
  } else if (_failure == 0) {
    _failure = -deliver(bytes);
  }
}

void Output::writeBlanks(std::size_t count) {
  constexpr std::string_view kBlanks = "                                ";
  for (; count > kBlanks.size(); count -= kBlanks.size()) write(kBlanks);
  write(kBlanks.substr(0, count));
}

bool Output::flush() {
  if (!_waiting.empty() && _failure == 0) _failure = -deliver(_waiting);
  _waiting.clear();
  return _failure == 0;
}

int DescriptorOutput::deliver(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::int64_t count = FileSystem::current().write(_descriptor, bytes.data(), bytes.size());
    if (count < 0) return static_cast<int>(count);
    if (count == 0) return -EIO;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

const std::string& StringOutput::text() {
  flush();
  return _text;
}

int StringOutput::deliver(std::string_view bytes) {
  _text.append(bytes);
  return 0;
}

}  // namespace kbx
