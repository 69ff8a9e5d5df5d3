// OperatingSystem: what the system says about its own version, in four separate ways.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>

#include "platform/Export.h"
#include "platform/system/Service.h"

namespace kbx {

/// A version of the operating system, such as 10.15.7. Versions order by major, minor, patch.
struct NSOperatingSystemVersion {
  std::int64_t majorVersion = 0;
  std::int64_t minorVersion = 0;
  std::int64_t patchVersion = 0;

  friend auto operator<=>(const NSOperatingSystemVersion&,
                          const NSOperatingSystemVersion&) = default;
};

/// A four-character code: the characters from the highest byte to the lowest.
using OSType = std::uint32_t;
/// The result of a system call of the oldest kind; 0 is success.
using OSErr = std::int16_t;

constexpr OSType fourCharacterCode(const char (&text)[5]) {
  OSType code = 0;
  for (int i = 0; i < 4; ++i) code = (code << 8) | static_cast<unsigned char>(text[i]);
  return code;
}

inline constexpr OSType gestaltSystemVersionMajor = fourCharacterCode("sys1");
inline constexpr OSType gestaltSystemVersionMinor = fourCharacterCode("sys2");
inline constexpr OSType gestaltSystemVersionBugFix = fourCharacterCode("sys3");
inline constexpr OSErr gestaltUndefSelectorErr = -5551;

/// The answers of the operating system. Called from any thread.
///
/// The four questions are answered apart, because real systems disagree with themselves: one
/// reports an older version to programs built long ago, another knows no version query at all.
class KBX_PLATFORM OperatingSystem {
 public:
  virtual ~OperatingSystem();
  /// The version number of the Foundation framework, which rises with every release.
  virtual double foundationVersionNumber() = 0;
  /// The version that the process information reports.
  virtual NSOperatingSystemVersion version() = 0;
  /// The run-time availability check: whether what came with `version` can be used.
  virtual bool isAvailable(NSOperatingSystemVersion version) = 0;
  /// The value of a Gestalt selector; absent when the query fails.
  virtual std::optional<std::int32_t> gestalt(OSType selector) = 0;

  KBX_SERVICE_INTERFACE(OperatingSystem)
};

/// The version number of the Foundation framework in use. Any thread.
KBX_PLATFORM double NSFoundationVersionNumber();

/// Whether what came with a version of the system can be used: the run-time availability check.
/// Any thread.
KBX_PLATFORM bool isAvailable(NSOperatingSystemVersion version);

/// Stores the value of a selector in *response. Any thread.
///
/// Not 0, and *response untouched, when the system does not know the selector.
KBX_PLATFORM OSErr Gestalt(OSType selector, std::int32_t* response);

}  // namespace kbx
