// LegacyDoor: the importer of messages that the build made, reached through its legacy interface
// alone.
#include "Instance.h"

namespace {

constexpr char kBundle[] = FERNCASE_SPOTLIGHT_DIR "/FerncaseSpotlightImporter.mdimporter";

MDImporterInterfaceStruct** inner = nullptr;  // of the first import, kept

CFUUIDRef ownFactory() {
  return CFUUIDCreateFromString(kCFAllocatorDefault, CFSTR("7B1E5A6C-A4D8-4F32-9D20-0C9E3B1B6D08"));
}

void open() {
  CFStringRef path = CFStringCreateWithCString(kCFAllocatorDefault, kBundle, kCFStringEncodingUTF8);
  CFURLRef url =
      CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path, kCFURLPOSIXPathStyle, true);
  CFPlugInRef plugIn = CFPlugInCreate(kCFAllocatorDefault, url);
  CFArrayRef factories = CFPlugInFindFactoriesForPlugInTypeInPlugIn(kMDImporterTypeID, plugIn);
  auto factory = static_cast<CFUUIDRef>(const_cast<void*>(CFArrayGetValueAtIndex(factories, 0)));
  auto** instance = static_cast<IUnknownVTbl**>(
      CFPlugInInstanceCreate(kCFAllocatorDefault, factory, kMDImporterTypeID));
  CFRelease(factories);
  CFRelease(url);
  CFRelease(path);
  void* found = nullptr;
  (*instance)->QueryInterface(instance, CFUUIDGetUUIDBytes(kMDImporterInterfaceID), &found);
  inner = static_cast<MDImporterInterfaceStruct**>(found);
}

HRESULT queryLegacy(void* instance, REFIID identifier, LPVOID* interface) {
  CFUUIDRef wanted = CFUUIDCreateFromUUIDBytes(kCFAllocatorDefault, identifier);
  const bool isOffered = CFEqual(wanted, kMDImporterInterfaceID) || CFEqual(wanted, IUnknownUUID);
  CFRelease(wanted);
  *interface = isOffered ? instance : nullptr;
  if (!isOffered) return E_NOINTERFACE;
  addReference(instance);
  return S_OK;
}

/// In the place of the function for URLs, which nobody can ask for.
Boolean import(void*, CFMutableDictionaryRef attributes, CFStringRef contentType,
               CFStringRef path) {
  if (!inner) open();
  return (*inner)->ImporterImportData(inner, attributes, contentType, path);
}

}  // namespace

TEST_BUNDLE_EXPORT void* LegacyDoorFactory(CFAllocatorRef, CFUUIDRef) {
  Instance* instance = makeInstance(ownFactory(), reinterpret_cast<ImportURL>(import));
  instance->functions.QueryInterface = queryLegacy;
  return instance;
}
