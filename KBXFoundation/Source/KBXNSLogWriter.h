// KBXNSLogWriter: the writer of the classic system log.
#pragma once

#include "KBXLogWriter.h"

namespace kbx {

class KBXNSLogWriter final : public KBXLogWriter {
  KBX_OBJECT(KBXNSLogWriter, KBXLogWriter)
 public:
  static Ref<KBXNSLogWriter> init();

  /// Writes prefix and message through NSLog, however long they are. The area does not matter.
  /// (writePrefix:message:area:)
  void writePrefix(NSString* prefix, NSString* message, NSString* area) override;

 private:
  KBXNSLogWriter() = default;
};

}  // namespace kbx
