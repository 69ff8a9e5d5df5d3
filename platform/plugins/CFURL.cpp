// What CoreFoundation.h declares for file URLs.
#include <cstring>
#include <string_view>

#include "platform/CoreFoundation.h"
#include "platform/plugins/Bridge.h"

using namespace kbx;

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef path, CFURLPathStyle style,
                                       Boolean isDirectory) {
  if (style != kCFURLPOSIXPathStyle) return nullptr;
  return leakToCF(NSURL::fileURLWithPath(fromCF(path), isDirectory));
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style) {
  if (!url || style != kCFURLPOSIXPathStyle) return nullptr;
  return leakToCF(fromCF(url)->path());
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean, UInt8* buffer, CFIndex size) {
  if (!url || !buffer || size <= 0) return false;
  const std::string& path = fromCF(url)->fileSystemRepresentation();
  if (path.size() >= static_cast<std::size_t>(size)) return false;
  std::memcpy(buffer, path.c_str(), path.size() + 1);
  return true;
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const UInt8* path, CFIndex length,
                                                 Boolean isDirectory) {
  if (!path || length <= 0) return nullptr;
  const std::string_view bytes(reinterpret_cast<const char*>(path),
                               static_cast<std::size_t>(length));
  return leakToCF(NSURL::fileURLWithFileSystemRepresentation(bytes, isDirectory));
}

void CFURLClearResourcePropertyCacheForKey(CFURLRef url, CFStringRef key) {
  if (url) fromCF(url)->removeCachedResourceValueForKey(fromCF(key));
}
