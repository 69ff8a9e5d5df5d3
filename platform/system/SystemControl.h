// SystemControl: the kernel's values by name, and its records of processes.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "platform/Export.h"
#include "platform/system/Service.h"

namespace kbx {

/// The kernel's record of one process. Nothing but the name in it is filled in.
struct kinfo_proc {
  char reserved1[243];
  char p_comm[17];  // the executable's name: at most 16 bytes and a zero
  char reserved2[388];
};
static_assert(sizeof(kinfo_proc) == 648);

inline constexpr int CTL_KERN = 1;
inline constexpr int KERN_PROC = 14;
inline constexpr int KERN_PROC_RUID = 6;

/// Answers queries for values of the kernel. Called from any thread.
///
/// buffer  where to store the value, or nullptr to ask for its size alone
/// length  in: the size of the buffer; out: the size of the value, or of what was stored
///
/// 0, or an errno value: ENOENT for a name that is not known, ENOMEM for a buffer that is too
/// small. The size of a value that changes may be answered too large, never too small.
class KBX_PLATFORM SystemControl {
 public:
  virtual ~SystemControl();
  /// A value by its name, such as "hw.model": text with its zero, or an integer of 4 or 8 bytes.
  virtual int valueByName(std::string_view name, void* buffer, std::size_t* length) = 0;
  /// A value by numbers. {CTL_KERN, KERN_PROC, KERN_PROC_RUID, user} is a kinfo_proc for each
  /// process whose real user is that one.
  virtual int value(std::span<const int> name, void* buffer, std::size_t* length) = 0;

  KBX_SERVICE_INTERFACE(SystemControl)

 protected:
  /// Answers a query with a value that is at hand.
  static int answer(std::string_view value, void* buffer, std::size_t* length);
};

/// Asks for a value by numbers: 0, or -1 with the reason in errno. Values cannot be set: a
/// `newValue` gives EPERM. Any thread.
KBX_PLATFORM int sysctl(const int* name, unsigned nameLength, void* oldValue,
                        std::size_t* oldLength, const void* newValue, std::size_t newLength);

/// The same by name; an absent name is not known. Any thread.
KBX_PLATFORM int sysctlbyname(const char* name, void* oldValue, std::size_t* oldLength,
                              const void* newValue, std::size_t newLength);

}  // namespace kbx
