// KBXLogWriter: what puts log entries into a system log; the base of all such writers.
#pragma once

#include "platform/objects/NSString.h"

namespace kbx {

/// Used from any thread.
class KBXLogWriter : public NSObject {
  KBX_OBJECT(KBXLogWriter, NSObject)
 public:
  /// A writer that knows whether the process runs under the development environment: whether the
  /// environment variable "KBXIsInXcode" reads as true now. (init)
  static Ref<KBXLogWriter> init();

  /// Prefix, one blank, message; an empty prefix leaves a leading blank.
  /// (combinePrefix:andMessage:)
  Ref<NSString> combinePrefix(NSString* prefix, NSString* message) const;

  /// Writes one entry. Every writer has its own; this one raises the platform's exception for an
  /// unrecognized selector. (writePrefix:message:area:)
  ///
  /// area  absent for an entry of no area
  virtual void writePrefix(NSString* prefix, NSString* message, NSString* area);

 protected:
  KBXLogWriter();
  ~KBXLogWriter() override;

  const bool _isInXcode;
};

}  // namespace kbx
