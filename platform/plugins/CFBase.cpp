// What CoreFoundation.h declares for any object, and for collections.
#include "platform/CoreFoundation.h"
#include "platform/plugins/Bridge.h"

using namespace kbx;

const CFAllocatorRef kCFAllocatorDefault = nullptr;

CFTypeRef CFRetain(CFTypeRef object) {
  if (object) objectFromCF(object)->retain();
  return object;
}

void CFRelease(CFTypeRef object) {
  if (object) objectFromCF(object)->release();
}

Boolean CFEqual(CFTypeRef first, CFTypeRef second) {
  return isEqual(objectFromCF(first), objectFromCF(second));
}

CFIndex CFArrayGetCount(CFArrayRef array) {
  return array ? static_cast<CFIndex>(fromCF(array)->count()) : 0;
}

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
  if (index < 0 || index >= CFArrayGetCount(array)) return nullptr;
  return toCFType(fromCF(array)->objectAtIndex(static_cast<std::size_t>(index)));
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
  return dictionary ? static_cast<CFIndex>(fromCF(dictionary)->count()) : 0;
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
  return dictionary ? toCFType(fromCF(dictionary)->objectForKey(objectFromCF(key))) : nullptr;
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
  // C code can cast anything to the mutable type.
  auto* target = cast<NSMutableDictionary>(objectFromCF(dictionary));
  if (target && key && value) target->setObjectForKey(objectFromCF(value), objectFromCF(key));
}
