#include <ctime>

#include "host/search/LocalTime.h"

namespace kbx {
namespace {

class SystemLocalTime final : public LocalTime {
 public:
  double secondsOf(const CivilTime& time) override {
    std::tm parts{};
    parts.tm_year = static_cast<int>(time.year - 1900);
    parts.tm_mon = time.month - 1;
    parts.tm_mday = time.day;
    parts.tm_hour = time.hour;
    parts.tm_min = time.minute;
    parts.tm_sec = time.second;
    parts.tm_isdst = -1;
    return static_cast<double>(std::mktime(&parts));
  }

  CivilTime civilTime(double secondsSince1970) override {
    const auto seconds = static_cast<std::time_t>(secondsSince1970);
    std::tm parts{};
    if (!::localtime_r(&seconds, &parts)) return {1970, 1, 1};
    return {parts.tm_year + std::int64_t{1900},
            parts.tm_mon + 1,
            parts.tm_mday,
            parts.tm_hour,
            parts.tm_min,
            parts.tm_sec};
  }
};

}  // namespace

KBX_SERVICE(LocalTime, SystemLocalTime)

}  // namespace kbx
