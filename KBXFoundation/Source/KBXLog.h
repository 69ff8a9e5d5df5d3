// KBX_LOG and KBX_LOG_AREA: how code logs through the shared logger.
#pragma once

#include "KBXLogger.h"

namespace kbx {

/// The published place of a logging site. Like the places of errors and assertions, its texts and
/// number are part of the result, not positions in this source tree.
struct LogSite {
  const char* file;      // "KBXFoundation/Source/KBXSpotlightImporter"
  unsigned long line;    // 73
  const char* function;  // "-[KBXSpotlightImporter metadataForURL:contentType:error:]"

  constexpr LogSite(const char* siteFile, unsigned long siteLine, const char* signature)
      : file(siteFile), line(siteLine), function(signature) {}
};

namespace detail {

/// What one logging site remembers: for which shared logger its area is off.
class LogSwitch {
 public:
  constexpr LogSwitch() = default;

  /// Whether the area is off for the shared logger of this moment. False when not known.
  bool isKnownToBeOff() const noexcept {
    return _offFor.load(std::memory_order_relaxed) ==
           sharedLoggerNumber.load(std::memory_order_relaxed);
  }
  /// The shared logger, when the area is on for it. Remembers when it is off.
  Ref<KBXLogger> enabledLogger(NSString* area);

 private:
  std::atomic<std::uint64_t> _offFor{0};  // a number that no shared logger has
};

template <class... Arguments>
void logAt(const LogSite& site, KBXLogger* logger, NSString* area, NSString* format,
           const Arguments&... arguments) {
  logger->logFileFormat(site.file, site.line, site.function, area, format, arguments...);
}

}  // namespace detail
}  // namespace kbx

/// Logs a format string with its arguments, as a message of no area:
/// KBX_LOG(LogSite("KBXFoundation/Source/X", 73, "-[X name]"), "No file: %@"_ns, path);
#define KBX_LOG(site, ...)                                                     \
  do {                                                                         \
    ::kbx::Ref<::kbx::KBXLogger> kbxLogger = ::kbx::KBXLogger::sharedLogger(); \
    if (kbxLogger->isEnabledForArea(nullptr))                                  \
      ::kbx::detail::logAt(site, kbxLogger, nullptr, __VA_ARGS__);             \
  } while (false)

/// The same as a message of an area, a string literal: KBX_LOG_AREA("Area", site, format, …);
///
/// Where the area is off, neither the site nor the arguments are evaluated, and nothing is asked
/// but whether another shared logger was set since it was seen to be off.
#define KBX_LOG_AREA(area, site, ...)                                                \
  do {                                                                               \
    static constinit ::kbx::detail::LogSwitch kbxSwitch;                             \
    if (!kbxSwitch.isKnownToBeOff()) [[unlikely]] {                                  \
      ::kbx::NSString* const kbxArea = ::kbx::operator""_ns<"" area>();              \
      if (::kbx::Ref<::kbx::KBXLogger> kbxLogger = kbxSwitch.enabledLogger(kbxArea)) \
        ::kbx::detail::logAt(site, kbxLogger, kbxArea, __VA_ARGS__);                 \
    }                                                                                \
  } while (false)
