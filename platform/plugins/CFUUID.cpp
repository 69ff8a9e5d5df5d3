// What CoreFoundation.h declares for UUIDs.
#include <bit>

#include "platform/CoreFoundation.h"
#include "platform/plugins/Bridge.h"

using namespace kbx;

CFUUIDRef CFUUIDCreate(CFAllocatorRef) { return leakToCF(NSUUID::UUID()); }

CFUUIDRef CFUUIDCreateFromUUIDBytes(CFAllocatorRef, CFUUIDBytes bytes) {
  return leakToCF(NSUUID::UUIDWithBytes(std::bit_cast<NSUUID::Bytes>(bytes)));
}

CFUUIDRef CFUUIDCreateFromString(CFAllocatorRef, CFStringRef text) {
  return leakToCF(NSUUID::UUIDWithString(fromCF(text)));
}

CFUUIDRef CFUUIDGetConstantUUIDWithBytes(CFAllocatorRef, UInt8 byte0, UInt8 byte1, UInt8 byte2,
                                         UInt8 byte3, UInt8 byte4, UInt8 byte5, UInt8 byte6,
                                         UInt8 byte7, UInt8 byte8, UInt8 byte9, UInt8 byte10,
                                         UInt8 byte11, UInt8 byte12, UInt8 byte13, UInt8 byte14,
                                         UInt8 byte15) {
  return toCF(NSUUID::constant({byte0, byte1, byte2, byte3, byte4, byte5, byte6, byte7, byte8,
                                byte9, byte10, byte11, byte12, byte13, byte14, byte15}));
}

CFStringRef CFUUIDCreateString(CFAllocatorRef, CFUUIDRef uuid) {
  return uuid ? leakToCF(fromCF(uuid)->UUIDString()) : nullptr;
}

CFUUIDBytes CFUUIDGetUUIDBytes(CFUUIDRef uuid) {
  return uuid ? std::bit_cast<CFUUIDBytes>(fromCF(uuid)->bytes()) : CFUUIDBytes{};
}
