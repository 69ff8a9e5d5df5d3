// LinuxSystemControl: kernel values read from the file systems /proc and /sys.
#pragma once

#include <string>

#include "platform/system/SystemControl.h"

namespace kbx {

/// Knows hw.model, hw.physicalcpu_max, hw.cpufrequency_max and the processes of a user. What Linux
/// does not tell (in a virtual machine or a container, for example) is a name that is not known.
class KBX_PLATFORM LinuxSystemControl final : public SystemControl {
 public:
  /// root  the folder in which /proc and /sys are looked for; empty for the real ones
  explicit LinuxSystemControl(std::string root = "") : _root(std::move(root)) {}

  int valueByName(std::string_view name, void* buffer, std::size_t* length) override;
  int value(std::span<const int> name, void* buffer, std::size_t* length) override;

 private:
  std::string _root;
};

}  // namespace kbx
