#include <algorithm>
#include <charconv>
#include <filesystem>
#include <set>
#include <utility>
#include <vector>

#include "platform/system/linux/Hardware.h"
#include "platform/system/linux/SmallFile.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;

std::optional<std::string> textOf(const std::string& path) {
  std::string text = readSmallFile(path);
  const std::size_t end = text.find_first_of(std::string_view("\0\n", 2));
  if (end != std::string::npos) text.resize(end);
  while (text.ends_with(' ')) text.pop_back();
  return text.empty() ? std::nullopt : std::optional(text);
}

std::optional<std::int64_t> numberOf(const std::string& path) {
  const std::string text = readSmallFile(path);
  std::int64_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() ? std::optional(number) : std::nullopt;
}

/// The folders cpu0, cpu1, … of the processors.
std::vector<std::string> processorFolders(const std::string& root) {
  std::vector<std::string> result;
  std::error_code failure;
  for (fs::directory_iterator entry(root + "/sys/devices/system/cpu", failure), end;
       !failure && entry != end; entry.increment(failure)) {
    const std::string name = entry->path().filename().string();
    if (name.size() > 3 && name.starts_with("cpu") &&
        name.find_first_not_of("0123456789", 3) == std::string::npos)
      result.push_back(entry->path().string());
  }
  return result;
}

/// The highest "cpu MHz" of the processor list, in hertz.
std::optional<std::int64_t> listedFrequency(const std::string& root) {
  const std::string list = readSmallFile(root + "/proc/cpuinfo");
  double highest = 0;
  for (std::size_t line = list.find("cpu MHz"); line != std::string::npos;
       line = list.find("cpu MHz", line + 1)) {
    const std::size_t start = list.find_first_of("0123456789\n", line);
    double megahertz = 0;
    if (start != std::string::npos)
      std::from_chars(list.data() + start, list.data() + list.size(), megahertz);
    highest = std::max(highest, megahertz);
  }
  if (highest <= 0 || highest > 1e6) return std::nullopt;
  return static_cast<std::int64_t>(highest * 1e6);
}

}  // namespace

std::optional<std::string> machineModel(const std::string& root) {
  if (auto name = textOf(root + "/sys/class/dmi/id/product_name")) return name;
  return textOf(root + "/proc/device-tree/model");
}

std::optional<std::int32_t> physicalProcessorCount(const std::string& root) {
  const auto processors = processorFolders(root);
  std::set<std::pair<std::int64_t, std::int64_t>> cores;
  for (const std::string& folder : processors) {
    const auto core = numberOf(folder + "/topology/core_id");
    const auto package = numberOf(folder + "/topology/physical_package_id");
    if (core) cores.emplace(package.value_or(0), *core);
  }
  const std::size_t count = cores.empty() ? processors.size() : cores.size();
  return count == 0 ? std::nullopt : std::optional(static_cast<std::int32_t>(count));
}

std::optional<std::int64_t> maximumProcessorFrequency(const std::string& root) {
  std::int64_t highest = 0;  // in kilohertz
  for (const std::string& folder : processorFolders(root))
    highest = std::max(highest, numberOf(folder + "/cpufreq/cpuinfo_max_freq").value_or(0));
  if (highest <= 0 || highest > INT64_MAX / 1000) return listedFrequency(root);
  return highest * 1000;
}

}  // namespace kbx
