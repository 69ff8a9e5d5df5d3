#include "platform/system/SystemControl.h"

#include <cerrno>
#include <cstring>

namespace kbx {
namespace {

int failWith(int number) {
  if (number == 0) return 0;
  errno = number;
  return -1;
}

}  // namespace

SystemControl::~SystemControl() = default;

int SystemControl::answer(std::string_view value, void* buffer, std::size_t* length) {
  const bool fits = !buffer || *length >= value.size();
  if (buffer && fits && !value.empty()) std::memcpy(buffer, value.data(), value.size());
  *length = fits ? value.size() : 0;
  return fits ? 0 : ENOMEM;
}

int sysctl(const int* name, unsigned nameLength, void* oldValue, std::size_t* oldLength,
           const void* newValue, std::size_t) {
  if (newValue) return failWith(EPERM);
  return failWith(SystemControl::current().value({name, nameLength}, oldValue, oldLength));
}

int sysctlbyname(const char* name, void* oldValue, std::size_t* oldLength, const void* newValue,
                 std::size_t) {
  if (newValue) return failWith(EPERM);
  if (!name) return failWith(ENOENT);
  return failWith(SystemControl::current().valueByName(name, oldValue, oldLength));
}

}  // namespace kbx
