// KBXLogger: the one diagnostic logger of the library, with areas and options.
#pragma once

#include <atomic>
#include <cstdint>

#include "KBXLogWriter.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"
#include "platform/text/Format.h"

namespace kbx {

namespace detail {
/// Counts the loggers that were installed as the shared one. A logging site (KBXLog.h) that knows
/// its area to be off for one number need not ask again until it changes.
inline constinit std::atomic<std::uint64_t> sharedLoggerNumber{1};
}  // namespace detail

/// Decides whether a message's area is on, puts a prefix of what the options ask for before it, and
/// hands both to a log writer.
///
/// Options and areas are keys of the defaults that a logger is made with; docs/logging.md lists the
/// options. A number that is not zero and a text that reads as true switch on; nothing else does. A
/// logger never changes after it is made, so any thread may use it. Code does not call it, but logs
/// with KBX_LOG and KBX_LOG_AREA (KBXLog.h).
class KBXLogger final : public NSObject {
  KBX_OBJECT(KBXLogger, NSObject)
 public:
  /// The logger that was set last. Where there is none, a new disposable one in every call, which
  /// is not kept: ask once and use that one for the test and the message. (sharedLogger)
  static Ref<KBXLogger> sharedLogger();
  /// Any number of times; absent for none. (setSharedLogger:)
  static void setSharedLogger(KBXLogger* logger);
  /// Sets a new shared logger with the values of a domain. (setUpWithPersistentDomainName:)
  static void setUpWithPersistentDomainName(NSString* name);

  /// With the standard user defaults of all domains, as the application sees them. (init)
  static Ref<KBXLogger> init();
  /// With one domain of the standard user defaults; an unknown one leaves the built-in values.
  /// (initWithPersistentDomainName:)
  static Ref<KBXLogger> initWithPersistentDomainName(NSString* name);
  /// With every area on. (initDisposableLogger)
  static Ref<KBXLogger> initDisposableLogger();
  /// With the built-in values and, over them, those given; absent gives none.
  /// (initWithDefaultsDictionary:)
  static Ref<KBXLogger> initWithDefaultsDictionary(NSDictionary* defaults);

  /// Whether messages of the area are wanted. An absent area is always on. (isEnabledForArea:)
  bool isEnabledForArea(NSString* area) const;
  /// The value of an option; false when absent. (isOptionEnabled:)
  bool isOptionEnabled(NSString* key) const;

  /// Logs a format string with its arguments, whether or not the area is on.
  /// (logFile:line:function:area:format:)
  ///
  /// file, function  UTF-8
  /// area            absent for a message of no area
  template <class... Arguments>
  void logFileFormat(const char* file, unsigned long line, const char* function, NSString* area,
                     NSString* format, const Arguments&... arguments) {
    const FormatArgument list[] = {FormatArgument(arguments)..., FormatArgument(nullptr)};
    logFileFormat(file, line, function, area, format, FormatArguments(list, sizeof...(arguments)));
  }
  /// (logFile:line:function:area:format:arguments:)
  void logFileFormat(const char* file, unsigned long line, const char* function, NSString* area,
                     NSString* format, FormatArguments arguments);
  /// Logs a finished message, in which "%" means nothing. (logFile:line:function:area:message:)
  void logFileMessage(const char* file, unsigned long line, const char* function, NSString* area,
                      NSString* message);
  /// Hands a message to the writer; raises the platform's exception for an absent prefix.
  /// (logPrefix:message:area:)
  void logPrefix(NSString* prefix, NSString* message, NSString* area);

 private:
  explicit KBXLogger(NSDictionary* defaults);
  ~KBXLogger() override;
  Ref<NSArray> prefixComponents(const char* file, unsigned long line, const char* function,
                                NSString* area) const;

  const Ref<NSMutableDictionary> _defaultsDictionary;  // never written after it is filled
  const Ref<KBXLogWriter> _writer;
};

}  // namespace kbx
