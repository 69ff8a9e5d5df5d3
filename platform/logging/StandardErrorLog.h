// StandardErrorLog: the classic log of a system whose lines go to standard error.
#pragma once

#include "platform/logging/NSLog.h"

namespace kbx {

/// Writes "2026-11-21 03:56:00.123 ferncase[12:34] message" and a line feed in one write, so that
/// lines of several threads and processes do not mix.
class KBX_PLATFORM StandardErrorLog final : public ClassicLog {
 public:
  void write(NSString* message) override;
};

}  // namespace kbx
