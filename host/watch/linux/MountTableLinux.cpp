#include "host/watch/linux/MountTableLinux.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

namespace kbx {
namespace {

constexpr const char* kTable = "/proc/self/mountinfo";

}  // namespace

MountTable::MountTable() : _descriptor(::open(kTable, O_RDONLY | O_CLOEXEC)) {}

MountTable::~MountTable() {
  if (_descriptor >= 0) ::close(_descriptor);
}

bool MountTable::hasChanged() {
  pollfd table{_descriptor, POLLPRI, 0};
  return ::poll(&table, 1, 0) > 0;
}

std::map<int, std::string> MountTable::read() {
  std::map<int, std::string> mounts;
  std::ifstream table(kTable);
  for (std::string line; std::getline(table, line);) {
    std::istringstream fields(line);
    int number = 0, parent = 0;
    std::string device;
    if (fields >> number >> parent >> device) mounts[number] = device;
  }
  return mounts;
}

}  // namespace kbx
