#include <mutex>
#include <string>

#include "KBXFunctions.h"
#include "NSProcessInfo+KBX.h"
#include "NSString+KBXComposedCharacters.h"
#include "NSURL+KBXFileBasics.h"
#include "platform/files/NSFileManager.h"

namespace kbx {
namespace {

constexpr std::size_t kLongestName = 255;  // in units

/// Component by component, so /a/b does not hold /a/bc. Neither path has a slash at its end.
bool isPathBelow(const std::string& path, const std::string& folder) {
  if (path.size() <= folder.size() || !path.starts_with(folder)) return false;
  return folder == "/" || path[folder.size()] == '/';
}

/// A path without links; standardised only, where it is a loop of them.
std::string physicalPath(NSURL* standardized) {
  return standardized->URLByResolvingSymlinksInPath()->fileSystemRepresentation();
}

/// A location taken apart where a number can be put in.
struct NameParts {
  Ref<NSURL> stem;
  Ref<NSString> extension;
};

NameParts partsOf(NSURL* url) {
  Ref<NSString> extension = kbxPathExtension(url);
  if (extension->rangeOfString(" "_ns).location != NSNotFound) return {url, NSString::string()};
  Ref<NSURL> stem = kbxBasenameURL(url);
  const Ref<NSString> inner = kbxPathExtension(stem);
  if (isEqual(inner, "tar"_ns) || isEqual(inner, "app"_ns)) {
    stem = kbxBasenameURL(stem);
    extension = stringWithFormat("%@.%@"_ns, inner, extension);
  }
  return {stem, extension};
}

Ref<NSURL> numbered(const NameParts& parts, int number) {
  Ref<NSString> suffix = stringWithFormat("-%d"_ns, number);
  if (parts.extension->length() > 0) suffix = stringWithFormat("%@.%@"_ns, suffix, parts.extension);
  return kbxChild(kbxParent(parts.stem),
                  kbxStringByAddingSuffix(kbxName(parts.stem), suffix, kLongestName));
}

}  // namespace

bool kbxContainsFileURL(NSURL* url, NSURL* other) {
  if (!url || !other) return false;
  const Ref<NSURL> folder = kbxStandardizedFileURL(url), item = kbxStandardizedFileURL(other);
  // The file manager follows the links of both, so they need not be resolved for it.
  NSURLRelationship relationship;
  if (kbxIsMacOSAtLeast10_10() &&
      NSFileManager::defaultManager()->getRelationship(&relationship, folder, item, nullptr))
    return relationship == NSURLRelationshipContains;
  return isPathBelow(physicalPath(item), physicalPath(folder));
}

bool kbxIsEqualToFileURL(NSURL* url, NSURL* other) {
  if (isEqual(url, other)) return true;
  if (!url || !other || !isEqual(kbxName(url), kbxName(other))) return false;
  return isEqual(url->path(), other->path()) ||
         isEqual(kbxAbsolutePath(url), kbxAbsolutePath(other));
}

Ref<NSURL> kbxSimilarNonExistentURL(NSURL* url) {
  if (!url) return nullptr;
  // Two threads must not find the same free name at once.
  static std::mutex& search = *new std::mutex;
  const std::lock_guard held(search);
  const NameParts parts = partsOf(url);
  Ref<NSURL> candidate = url;
  for (int number = 1; kbxPathExists(candidate); ++number) candidate = numbered(parts, number);
  return candidate;
}

Ref<NSURL> kbxSimilarNonExistentURLInDirectory(NSURL* url, NSURL* directory) {
  if (!url) return nullptr;
  KBX_PRECONDITION_TEXT(kbxDirectoryExists(directory), "[directory kbxDirectoryExists]",
                        Site("KBXFoundation/Source/NSURL+KBXFileBasics", 377, url,
                             "kbxSimilarNonExistentURLInDirectory:"));
  return kbxSimilarNonExistentURL(kbxChild(directory, kbxName(url)));
}

}  // namespace kbx
