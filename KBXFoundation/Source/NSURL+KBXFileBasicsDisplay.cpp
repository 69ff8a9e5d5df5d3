#include "NSURL+KBXFileBasics.h"
#include "platform/files/NSFileManager.h"
#include "platform/objects/NSArray.h"

namespace kbx {
namespace {

Ref<NSArray> displayComponents(NSURL* url) {
  const Ref<NSURL> standardized = kbxStandardizedFileURL(url);
  auto names = NSFileManager::defaultManager()->componentsToDisplayForPath(standardized->path());
  return names ? names : standardized->pathComponents();
}

Ref<NSArray> arrayFromIndex(NSArray* array, std::size_t index) {
  return NSArray::arrayWithElements(
      NSArray::Elements(array->begin() + static_cast<std::ptrdiff_t>(index), array->end()));
}

Ref<NSString> nameOfRootVolume() {
  const Ref<NSURL> root = NSURL::fileURLWithPath("/"_ns, true);
  Ref<NSObject> name = kbxResourceValueForKey(root, NSURLVolumeLocalizedNameKey(), nullptr);
  return cast<NSString>(name);
}

/// What to show of the components of a path where nothing is.
Ref<NSArray> componentsOfMissingPath(NSArray* components) {
  const std::size_t count = components->count();
  const bool isAbsolute = count > 0 && isEqual(components->objectAtIndex(0), "/"_ns);
  if (!isAbsolute) return components;
  if (count >= 3 && isEqual(components->objectAtIndex(1), "Volumes"_ns))
    return arrayFromIndex(components, 2);
  const Ref<NSString> volume = nameOfRootVolume();
  if (!volume) return components;
  NSArray::Elements names(components->begin(), components->end());
  names[0] = volume;
  return NSArray::arrayWithElements(std::move(names));
}

}  // namespace

Ref<NSString> kbxDisplayNameWithExtension(NSURL* url) {
  return url ? kbxName(url)->stringByReplacingOccurrences(":"_ns, "/"_ns) : nullptr;
}

Ref<NSString> kbxDisplayName(NSURL* url) {
  if (!kbxPathExists(url)) return kbxName(url);
  Ref<NSObject> name = url->resourceValueForKey(NSURLLocalizedNameKey(), nullptr);
  auto* text = cast<NSString>(name);
  return text ? Ref<NSString>(text) : kbxName(url);
}

Ref<NSString> kbxDisplayPath(NSURL* url) {
  if (!url) return nullptr;
  Ref<NSArray> components = displayComponents(url);
  if (!kbxPathExists(url)) components = componentsOfMissingPath(components);
  return components->componentsJoinedByString(" ‣ "_ns);
}

}  // namespace kbx
