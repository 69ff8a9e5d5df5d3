#include <cerrno>
#include <cstring>
#include <optional>
#include <vector>

#include "platform/system/linux/Hardware.h"
#include "platform/system/linux/LinuxSystemControl.h"
#include "platform/system/linux/ProcessList.h"

namespace kbx {
namespace {

// Room for processes that start between the question for the size and the one for the list.
constexpr std::size_t kSpareRecords = 5;

template <class Number>
std::string_view bytesOf(const Number& number) {
  return {reinterpret_cast<const char*>(&number), sizeof number};
}

kinfo_proc recordOf(const std::string& name) {
  kinfo_proc record{};
  std::memcpy(record.p_comm, name.data(), std::min(name.size(), sizeof record.p_comm - 1));
  return record;
}

}  // namespace

int LinuxSystemControl::valueByName(std::string_view name, void* buffer, std::size_t* length) {
  if (name == "hw.model") {
    const auto model = machineModel(_root);
    return model ? answer({model->c_str(), model->size() + 1}, buffer, length) : ENOENT;
  }
  if (name == "hw.physicalcpu_max") {
    const auto count = physicalProcessorCount(_root);
    return count ? answer(bytesOf(*count), buffer, length) : ENOENT;
  }
  if (name == "hw.cpufrequency_max") {
    const auto frequency = maximumProcessorFrequency(_root);
    return frequency ? answer(bytesOf(*frequency), buffer, length) : ENOENT;
  }
  return ENOENT;
}

int LinuxSystemControl::value(std::span<const int> name, void* buffer, std::size_t* length) {
  if (name.size() != 4 || name[0] != CTL_KERN || name[1] != KERN_PROC || name[2] != KERN_PROC_RUID)
    return ENOENT;
  std::vector<kinfo_proc> records;
  for (const auto& process : processNamesOfUser(_root, static_cast<std::uint32_t>(name[3])))
    records.push_back(recordOf(process));
  if (!buffer) records.resize(records.size() + kSpareRecords);
  return answer(
      {reinterpret_cast<const char*>(records.data()), records.size() * sizeof(kinfo_proc)}, buffer,
      length);
}

KBX_SERVICE(SystemControl, LinuxSystemControl)

}  // namespace kbx
