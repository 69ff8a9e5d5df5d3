// Hardware: what /sys and /proc tell about the machine.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kbx {

// root: the folder in which /proc and /sys are looked for; empty for the real ones.

/// The maker's name for the machine.
std::optional<std::string> machineModel(const std::string& root);
/// How many processor cores there are; several threads of one core count once.
std::optional<std::int32_t> physicalProcessorCount(const std::string& root);
/// In hertz; that of the fastest processor.
std::optional<std::int64_t> maximumProcessorFrequency(const std::string& root);

}  // namespace kbx
