// LaunchServices: the older way to ask what an item is.
#pragma once

#include <cstdint>

#include "platform/CoreFoundation.h"
#include "platform/system/Service.h"

namespace kbx {

/// The result of a system call; 0 is success.
using OSStatus = std::int32_t;
using LSRequestedInfo = std::uint32_t;
using LSItemInfoFlags = std::uint32_t;

inline constexpr OSStatus fnfErr = -43;    // no such item
inline constexpr OSStatus paramErr = -50;  // an absent argument, or a request not known here
inline constexpr LSRequestedInfo kLSRequestBasicFlagsOnly = 0x00000004;

inline constexpr LSItemInfoFlags kLSItemInfoIsPlainFile = 0x00000001;
inline constexpr LSItemInfoFlags kLSItemInfoIsPackage = 0x00000002;
inline constexpr LSItemInfoFlags kLSItemInfoIsApplication = 0x00000004;
inline constexpr LSItemInfoFlags kLSItemInfoIsContainer = 0x00000008;  // a folder or a volume
inline constexpr LSItemInfoFlags kLSItemInfoIsSymlink = 0x00000010;
inline constexpr LSItemInfoFlags kLSItemInfoIsVolume = 0x00001000;

struct LSItemInfoRecord {
  LSItemInfoFlags flags = 0;
};

class NSURL;

/// What answers about items. Called from any thread.
class KBX_PLATFORM LaunchServices {
 public:
  virtual ~LaunchServices();
  /// Stores the basic flags of the item, a link at the end not followed; 0 or why not.
  virtual OSStatus basicFlags(NSURL* item, LSItemInfoFlags* flags) = 0;

  KBX_SERVICE_INTERFACE(LaunchServices)
};

/// Fills in what is requested of the item: the basic flags. Not 0, and *info untouched, when there
/// is no such item. Any thread.
KBX_PLATFORM OSStatus LSCopyItemInfoForURL(CFURLRef item, LSRequestedInfo what,
                                           LSItemInfoRecord* info);

}  // namespace kbx
