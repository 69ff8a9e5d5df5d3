#include "KBXEMLXFile.h"
#include "NSError+KBXDescription.h"
#include "importer/MetadataImporterPlugin.h"
#include "platform/logging/NSLog.h"
#include "platform/objects/NSException.h"
#include "platform/objects/NSNumber.h"
#include "platform/plugins/Bridge.h"

using namespace kbx;

namespace {

/// The boolean value of an entry; an absent one is false.
bool boolOf(NSObject* value) {
  if (!value) return false;
  if (auto* number = cast<NSNumber>(value)) return number->boolValue();
  if (auto* text = cast<NSString>(value)) return text->boolValue();
  raiseUnrecognizedSelector(value, "boolValue");
}

/// Adds what was found; nothing without a dictionary. C code can cast anything to the mutable type.
void addEntries(NSDictionary* target, NSDictionary* found) {
  auto* changeable = cast<NSMutableDictionary>(target);
  if (target && !changeable) raiseUnrecognizedSelector(target, "addEntriesFromDictionary:");
  if (changeable) changeable->addEntriesFromDictionary(found);
}

}  // namespace

Boolean LegacyGetMetadataForFile(void* instance, CFMutableDictionaryRef attributes,
                                 CFStringRef contentType, CFStringRef path) {
  // Said to be a folder although it is a file: wanted. Locations keep the mark beside the path, so
  // no trailing slash gets to the file system.
  Ref<NSURL> url =
      adoptCF(CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path, kCFURLPOSIXPathStyle, true));
  return url ? GetMetadataForURL(instance, attributes, contentType, toCF(url)) : false;
}

Boolean GetMetadataForURL(void*, CFMutableDictionaryRef attributes, CFStringRef, CFURLRef url) {
  try {
    return addMetadataForURLToAttributes(url, attributes);
  } catch (const Raised& raised) {
    NSLog("FerncaseSpotlightImporter exception: %@"_ns, raised.exception());
    return false;
  }
}

Boolean addMetadataForURLToAttributes(CFURLRef url, CFMutableDictionaryRef attributes) {
  NSURL* file = fromCF(url);
  NSDictionary* target = fromCF(static_cast<CFDictionaryRef>(attributes));
  const bool isForced = target && boolOf(target->objectForKey("FoxTrot"_ns));
  Ref<NSError> error;
  Ref<NSDictionary> found = KBXEMLXFile::metadataForEMLURL(file, isForced, &error);
  if (found) {
    addEntries(target, found);
    return true;
  }
  NSLog("FerncaseSpotlightImporter error %@ for file %@"_ns, kbxFullDescription(error),
        file ? file->path() : nullptr);
  return false;
}
