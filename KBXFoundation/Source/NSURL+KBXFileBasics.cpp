#include "NSURL+KBXFileBasics.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>

#include "KBXFunctions.h"
#include "NSProcessInfo+KBX.h"
#include "NSString+KBXSearching.h"
#include "platform/files/FileNames.h"
#include "platform/plugins/Bridge.h"

namespace kbx {

Ref<NSString> kbxAbsolutePath(NSURL* url) {
  return url ? kbxStandardizedFileURL(url)->path() : nullptr;
}

Ref<NSURL> kbxStandardizedFileURL(NSURL* url) {
  return url ? url->URLByStandardizingPath() : nullptr;
}

std::string kbxFileSystemRepresentation(NSURL* url) {
  if (!url) return "";
  if (kbxIsMacOSAtLeast10_9()) return url->fileSystemRepresentation();
  return fileSystemRepresentation(url->path()).value_or("");
}

bool kbxGetFileSystemRepresentation(NSURL* url, char* buffer, std::size_t maxLength) {
  constexpr std::size_t kLargest = std::numeric_limits<CFIndex>::max();
  return CFURLGetFileSystemRepresentation(toCF(url), true, reinterpret_cast<UInt8*>(buffer),
                                          static_cast<CFIndex>(std::min(maxLength, kLargest)));
}

Ref<NSURL> kbxURLWithFileSystemRepresentation(const char* path) {
  const std::string_view bytes = path ? path : "";
  return adoptCF(CFURLCreateFromFileSystemRepresentation(
      kCFAllocatorDefault, reinterpret_cast<const UInt8*>(bytes.data()),
      static_cast<CFIndex>(bytes.size()), false));
}

Ref<NSURL> kbxParent(NSURL* url) { return url ? url->URLByDeletingLastPathComponent() : nullptr; }

Ref<NSString> kbxName(NSURL* url) { return url ? url->lastPathComponent() : nullptr; }

Ref<NSURL> kbxBasenameURL(NSURL* url) { return url ? url->URLByDeletingPathExtension() : nullptr; }

Ref<NSString> kbxBasename(NSURL* url) { return kbxName(kbxBasenameURL(url)); }

Ref<NSString> kbxPathExtension(NSURL* url) { return url ? url->pathExtension() : nullptr; }

bool kbxHasExtension(NSURL* url, NSString* extension) {
  return extension && kbxCaseInsensitiveIsEqual(kbxPathExtension(url), extension);
}

Ref<NSURL> kbxWithExtension(NSURL* url, NSString* extension) {
  return url ? url->URLByAppendingPathExtension(extension) : nullptr;
}

Ref<NSURL> kbxChangeToExtension(NSURL* url, NSString* extension) {
  return kbxWithExtension(kbxBasenameURL(url), extension);
}

Ref<NSURL> kbxChild(NSURL* url, NSString* name) {
  if (!url) return nullptr;
  KBX_PRECONDITION(name, Site("KBXFoundation/Source/NSURL+KBXFileBasics", 180, url, "kbxChild:"));
  return url->URLByAppendingPathComponent(name);
}

}  // namespace kbx
