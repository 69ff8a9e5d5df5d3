#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "platform/system/ProcessIdentity.h"
#include "platform/system/linux/LinuxSystemControl.h"
#include "tests/support/FakeSystemControl.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

/// A folder with a /proc and a /sys of the test's own.
class SystemControlLinux : public testing::Test {
 protected:
  void write(const std::string& path, std::string_view bytes) {
    fs::create_directories((_folder / path).parent_path());
    _folder.write(path, bytes);
  }
  void addProcess(const std::string& number, const std::string& executable, unsigned user) {
    const std::string id = std::to_string(user);
    write("proc/" + number + "/status",
          "Name:\tnobody asks\nUmask:\t0022\nUid:\t" + id + "\t0\t0\t0\nGid:\t7\t7\t7\t7\n");
    write("proc/" + number + "/comm", "short\n");
    if (!executable.empty()) fs::create_symlink(executable, _folder / ("proc/" + number + "/exe"));
  }
  void addProcessor(int number, int package, int core) {
    const std::string folder = "sys/devices/system/cpu/cpu" + std::to_string(number);
    write(folder + "/topology/physical_package_id", std::to_string(package) + "\n");
    write(folder + "/topology/core_id", std::to_string(core) + "\n");
  }
  std::string valueOf(std::string_view name) {
    std::size_t length = 0;
    if (control().valueByName(name, nullptr, &length) != 0) return "unknown";
    std::string value(length, '?');
    EXPECT_EQ(control().valueByName(name, value.data(), &length), 0);
    EXPECT_EQ(length, value.size());
    return value;
  }
  std::vector<std::string> processesOf(int user) {
    const int name[] = {CTL_KERN, KERN_PROC, KERN_PROC_RUID, user};
    std::size_t length = 0;
    EXPECT_EQ(control().value(name, nullptr, &length), 0);
    std::vector<kinfo_proc> records(length / sizeof(kinfo_proc));
    EXPECT_EQ(control().value(name, records.data(), &length), 0);
    std::vector<std::string> names;
    for (std::size_t i = 0; i < length / sizeof(kinfo_proc); ++i)
      names.push_back(records[i].p_comm);
    std::sort(names.begin(), names.end());
    return names;
  }
  LinuxSystemControl control() const { return LinuxSystemControl(_folder.path().string()); }

 private:
  TemporaryFolder _folder;
};

template <class Number>
std::string bytesOf(Number number) {
  return {reinterpret_cast<const char*>(&number), sizeof number};
}

using Names = std::vector<std::string>;

TEST_F(SystemControlLinux, WhatTheSystemDoesNotTellIsUnknown) {
  for (auto name : {"hw.model", "hw.physicalcpu_max", "hw.cpufrequency_max", "hw.nothing", ""})
    EXPECT_EQ(valueOf(name), "unknown") << name;
}

TEST_F(SystemControlLinux, TheModelIsTheMakersName) {
  write("proc/device-tree/model", "Raspberry Pi 4\0"s);
  EXPECT_EQ(valueOf("hw.model"), "Raspberry Pi 4\0"s);
  write("sys/class/dmi/id/product_name", "20XW004A  \n");
  EXPECT_EQ(valueOf("hw.model"), "20XW004A\0"s);
  write("sys/class/dmi/id/product_name", "\n");
  EXPECT_EQ(valueOf("hw.model"), "Raspberry Pi 4\0"s);
}

TEST_F(SystemControlLinux, ThreadsOfOneCoreCountOnce) {
  addProcessor(0, 0, 0);
  addProcessor(1, 0, 1);
  addProcessor(2, 0, 0);
  addProcessor(10, 1, 0);
  write("sys/devices/system/cpu/cpufreq/topology/core_id", "9");
  write("sys/devices/system/cpu/cpu/topology/core_id", "8");
  EXPECT_EQ(valueOf("hw.physicalcpu_max"), bytesOf<std::int32_t>(3));
}

TEST_F(SystemControlLinux, ProcessorsOfUnknownPlaceCountEach) {
  write("sys/devices/system/cpu/cpu0/online", "1");
  write("sys/devices/system/cpu/cpu1/topology/core_id", "nonsense");
  EXPECT_EQ(valueOf("hw.physicalcpu_max"), bytesOf<std::int32_t>(2));
}

TEST_F(SystemControlLinux, TheFrequencyIsThatOfTheFastestProcessorInHertz) {
  write("sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq", "2400000\n");
  write("sys/devices/system/cpu/cpu1/cpufreq/cpuinfo_max_freq", "3100000\n");
  write("proc/cpuinfo", "cpu MHz\t\t: 800.000\n");
  EXPECT_EQ(valueOf("hw.cpufrequency_max"), bytesOf<std::int64_t>(3100000000));
}

TEST_F(SystemControlLinux, WithoutALimitTheListedFrequencyCounts) {
  write("proc/cpuinfo",
        "processor\t: 0\ncpu MHz\t\t: 2249.998\n\nprocessor\t: 1\ncpu MHz\t\t: 1500.5\ncpu MHz");
  EXPECT_EQ(valueOf("hw.cpufrequency_max"), bytesOf<std::int64_t>(2249998000));
  write("proc/cpuinfo", "cpu MHz\t\t:\ncpu family\t: 23\n");
  EXPECT_EQ(valueOf("hw.cpufrequency_max"), "unknown");
}

TEST_F(SystemControlLinux, ABufferThatIsTooSmallIsRefused) {
  write("sys/class/dmi/id/product_name", "20XW004A");
  char buffer[4] = "???";
  std::size_t length = sizeof buffer;
  EXPECT_EQ(control().valueByName("hw.model", buffer, &length), ENOMEM);
  EXPECT_STREQ(buffer, "???");
}

TEST_F(SystemControlLinux, ProcessesAreListedByTheirRealUser) {
  addProcess("1", "/usr/lib/systemd/systemd", 0);
  addProcess("20", "/usr/bin/mail", 1000);
  addProcess("21", "/usr/bin/other", 1001);
  addProcess("22", "/opt/app/bin/app", 1000);
  EXPECT_EQ(processesOf(1000), (Names{"app", "mail"}));
  EXPECT_EQ(processesOf(0), (Names{"systemd"}));
  EXPECT_EQ(processesOf(5), Names{});
}

TEST_F(SystemControlLinux, AProcessHasTheNameOfItsExecutableCutTo16Bytes) {
  addProcess("1", "/usr/bin/ExactlySixteen16", 7);
  addProcess("2", "/usr/bin/MoreThanSixteen17", 7);
  addProcess("3", "/usr/bin/removed (deleted)", 7);
  addProcess("4", "", 7);  // no executable to be seen
  EXPECT_EQ(processesOf(7), (Names{"ExactlySixteen16", "MoreThanSixteen1", "removed", "short"}));
}

TEST_F(SystemControlLinux, WhatIsNoProcessIsPassedOver) {
  addProcess("1", "/bin/a", 7);
  addProcess("self", "/bin/b", 7);
  addProcess("1x", "/bin/c", 7);
  write("proc/2/comm", "ended\n");
  write("proc/3/status", "Name:\tx\nUid:");
  write("proc/4/status", "Name:\tx\nUid:\tx\n");
  EXPECT_EQ(processesOf(7), Names{"a"});
}

TEST_F(SystemControlLinux, TheSizeLeavesRoomForProcessesThatStartMeanwhile) {
  addProcess("1", "/bin/a", 7);
  const int name[] = {CTL_KERN, KERN_PROC, KERN_PROC_RUID, 7};
  std::size_t length = 0;
  ASSERT_EQ(control().value(name, nullptr, &length), 0);
  std::vector<char> buffer(length);
  addProcess("2", "/bin/b", 7);
  EXPECT_EQ(control().value(name, buffer.data(), &length), 0);
  EXPECT_EQ(length, 2 * 648u);
  for (int i = 3; i < 10; ++i) addProcess(std::to_string(i), "/bin/c", 7);
  length = buffer.size();
  EXPECT_EQ(control().value(name, buffer.data(), &length), ENOMEM);
}

TEST_F(SystemControlLinux, OtherNumbersAreUnknown) {
  std::size_t length = 0;
  for (const auto& name : {std::vector<int>{},
                           {1, 14, 6},
                           {1, 14, 0, 0},
                           {2, 14, 6, 0},
                           {1, 15, 6, 0},
                           {1, 14, 6, 0, 0}})
    EXPECT_EQ(control().value(name, nullptr, &length), ENOENT);
}

TEST(SystemControl, TheProcessItselfIsAmongThoseOfItsUser) {
  const int name[] = {CTL_KERN, KERN_PROC, KERN_PROC_RUID, static_cast<int>(getuid())};
  std::size_t length = 0;
  ASSERT_EQ(sysctl(name, 4, nullptr, &length, nullptr, 0), 0);
  std::vector<kinfo_proc> records(length / sizeof(kinfo_proc) + 1000);
  length = records.size() * sizeof(kinfo_proc);
  ASSERT_EQ(sysctl(name, 4, records.data(), &length, nullptr, 0), 0);
  const std::string own = ProcessIdentity::current().processName().substr(0, 16);
  EXPECT_TRUE(std::any_of(records.begin(), records.end(),
                          [&own](const kinfo_proc& record) { return record.p_comm == own; }));
}

TEST(SystemControl, AFailingQueryLeavesItsReason) {
  FakeSystemControl control;
  control.sizeError = EIO;
  ScopedService<SystemControl> installed(control);
  std::size_t length = 0;
  const int name[] = {1};
  errno = 0;
  EXPECT_EQ(sysctl(name, 1, nullptr, &length, nullptr, 0), -1);
  EXPECT_EQ(errno, EIO);
  EXPECT_EQ(sysctlbyname("unknown", nullptr, &length, nullptr, 0), -1);
  EXPECT_EQ(errno, ENOENT);
  errno = 0;
  EXPECT_EQ(sysctlbyname(nullptr, nullptr, &length, nullptr, 0), -1);
  EXPECT_EQ(errno, ENOENT);
}

TEST(SystemControl, NothingCanBeSet) {
  std::size_t length = 0;
  const int name[] = {1};
  EXPECT_EQ(sysctl(name, 1, nullptr, &length, &length, sizeof length), -1);
  EXPECT_EQ(errno, EPERM);
  errno = 0;
  EXPECT_EQ(sysctlbyname("hw.model", nullptr, &length, "x", 1), -1);
  EXPECT_EQ(errno, EPERM);
}

}  // namespace
}  // namespace kbx
