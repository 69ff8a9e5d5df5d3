// String encodings: their numbers. Charsets.h knows the rest.
#pragma once

#include <cstdint>

namespace kbx {

/// The platform's numbers of encodings. The charsets beyond these have numbers as well, made of the
/// bit kExternalEncoding and their number in the older registry; a charset that nobody here knows
/// has 0.
enum NSStringEncoding : std::uint64_t {
  NSUnknownStringEncoding = 0,
  NSASCIIStringEncoding = 1,
  NSJapaneseEUCStringEncoding = 3,
  NSUTF8StringEncoding = 4,
  NSISOLatin1StringEncoding = 5,
  NSNonLossyASCIIStringEncoding = 7,
  NSShiftJISStringEncoding = 8,
  NSISOLatin2StringEncoding = 9,
  NSUnicodeStringEncoding = 10,
  NSWindowsCP1251StringEncoding = 11,
  NSWindowsCP1252StringEncoding = 12,
  NSWindowsCP1253StringEncoding = 13,
  NSWindowsCP1254StringEncoding = 14,
  NSWindowsCP1250StringEncoding = 15,
  NSISO2022JPStringEncoding = 21,
  NSMacOSRomanStringEncoding = 30,
  NSUTF32StringEncoding = 0x8c000100,
  NSUTF16BigEndianStringEncoding = 0x90000100,
  NSUTF16LittleEndianStringEncoding = 0x94000100,
  NSUTF32BigEndianStringEncoding = 0x98000100,
  NSUTF32LittleEndianStringEncoding = 0x9c000100,
};

inline constexpr std::uint64_t kExternalEncoding = 0x80000000;

}  // namespace kbx
