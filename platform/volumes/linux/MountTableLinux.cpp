#include <filesystem>
#include <optional>
#include <system_error>

#include "platform/files/BoundedFile.h"
#include "platform/files/FileSystem.h"
#include "platform/volumes/linux/MountInfo.h"

namespace kbx {
namespace {

constexpr std::size_t kLargestTable = std::size_t{8} << 20;
constexpr int kMostLabels = 1024;

std::string_view nextField(std::string_view& line) {
  const std::size_t end = std::min(line.find(' '), line.size());
  const std::string_view field = line.substr(0, end);
  line.remove_prefix(std::min(end + 1, line.size()));
  return field;
}

/// The value of `count` digits at the position; absent when they are not all there.
std::optional<int> digits(std::string_view text, std::size_t at, std::size_t count, int base) {
  if (at + count > text.size()) return std::nullopt;
  int value = 0;
  for (const char c : text.substr(at, count)) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    const std::size_t digit = kDigits.find(c);
    if (digit >= static_cast<std::size_t>(base)) return std::nullopt;
    value = value * base + static_cast<int>(digit);
  }
  return value;
}

/// Decodes what the kernel ("\040") or the device manager ("\x20") has escaped.
std::string unescaped(std::string_view text, std::string_view escape, std::size_t count, int base) {
  std::string result;
  for (std::size_t i = 0; i < text.size();) {
    const bool isEscape = text.substr(i).starts_with(escape);
    const auto value = isEscape ? digits(text, i + escape.size(), count, base) : std::nullopt;
    result += value ? static_cast<char>(*value) : text[i];
    i += value ? escape.size() + count : 1;
  }
  return result;
}

/// 36 35 98:0 /root /mount/point rw,noatime master:1 - ext3 /dev/sda1 rw
std::optional<Mount> mountOfLine(std::string_view line) {
  nextField(line), nextField(line);
  Mount mount;
  mount.device = nextField(line);
  nextField(line);
  mount.mountPoint = unescaped(nextField(line), "\\", 3, 8);
  while (!line.empty() && nextField(line) != "-") continue;
  nextField(line);
  mount.source = unescaped(nextField(line), "\\", 3, 8);
  if (mount.device.empty() || !mount.mountPoint.starts_with('/')) return std::nullopt;
  return mount;
}

class LinuxMountTable final : public MountTable {
 public:
  std::vector<Mount> mounts() override {
    const auto text = contentsOfFile("/proc/self/mountinfo", kLargestTable);
    return text ? mountsInMountInfo(*text) : std::vector<Mount>();
  }
  std::string labelOf(const Mount& mount) override {
    return mount.source.starts_with('/') ? labelInFolder("/dev/disk/by-label", mount.source) : "";
  }
};

}  // namespace

std::vector<Mount> mountsInMountInfo(std::string_view text) {
  std::vector<Mount> mounts;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    if (auto mount = mountOfLine(text.substr(at, end - at))) mounts.push_back(std::move(*mount));
    at = end + 1;
  }
  return mounts;
}

std::string labelInFolder(const std::string& folder, const std::string& source) {
  auto& files = FileSystem::current();
  FileStatus device, found;
  if (files.statusOfPath(source, &device) < 0) return "";
  std::error_code failure;
  std::filesystem::directory_iterator entry(folder, failure);
  for (int i = 0; !failure && i < kMostLabels && entry != end(entry);
       ++i, entry.increment(failure)) {
    const std::string path = entry->path().string();
    if (files.statusOfPath(path, &found) == 0 && found.isSameFile(device))
      return unescaped(std::string_view(path).substr(path.rfind('/') + 1), "\\x", 2, 16);
  }
  return "";
}

KBX_SERVICE(MountTable, LinuxMountTable)

}  // namespace kbx
