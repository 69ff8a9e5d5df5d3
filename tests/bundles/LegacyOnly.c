/* LegacyOnly: an importer in plain C that offers nothing but the import of paths. */
#include <stdlib.h>

#include "platform/plugins/MDImporter.h"

typedef struct {
  const MDImporterInterfaceStruct* table;
  CFUUIDRef factory;
  ULONG count;
} Instance;

static ULONG addReference(void* thisPointer) { return ++((Instance*)thisPointer)->count; }

static ULONG release(void* thisPointer) {
  Instance* instance = thisPointer;
  CFUUIDRef factory = instance->factory;
  if (--instance->count > 0) return instance->count;
  free(instance);
  CFPlugInRemoveInstanceForFactory(factory);
  CFRelease(factory);
  return 0;
}

static HRESULT queryInterface(void* thisPointer, REFIID identifier, LPVOID* interface) {
  CFUUIDRef wanted = CFUUIDCreateFromUUIDBytes(kCFAllocatorDefault, identifier);
  const Boolean isOffered =
      CFEqual(wanted, kMDImporterInterfaceID) || CFEqual(wanted, IUnknownUUID);
  CFRelease(wanted);
  *interface = isOffered ? thisPointer : NULL;
  if (!isOffered) return E_NOINTERFACE;
  addReference(thisPointer);
  return S_OK;
}

/* The text is the path, written out and read in again. */
static Boolean import(void* thisPointer, CFMutableDictionaryRef attributes, CFStringRef contentType,
                      CFStringRef path) {
  const CFIndex size =
      CFStringGetMaximumSizeForEncoding(CFStringGetLength(path), kCFStringEncodingUTF8) + 1;
  char* buffer = malloc((size_t)size);
  CFStringRef text = NULL;
  (void)thisPointer;
  if (buffer && CFStringGetCString(path, buffer, size, kCFStringEncodingUTF8))
    text = CFStringCreateWithCString(kCFAllocatorDefault, buffer, kCFStringEncodingUTF8);
  free(buffer);
  CFDictionarySetValue(attributes, kMDItemTextContent, text);
  CFDictionarySetValue(attributes, CFSTR("LegacyContentType"), contentType);
  if (text) CFRelease(text);
  return text != NULL;
}

static const MDImporterInterfaceStruct functions = {NULL, queryInterface, addReference, release,
                                                    import};

__attribute__((visibility("default"))) void* LegacyFactory(CFAllocatorRef allocator,
                                                           CFUUIDRef type) {
  Instance* instance;
  (void)allocator;
  if (!CFEqual(type, kMDImporterTypeID)) return NULL;
  instance = malloc(sizeof *instance);
  if (!instance) return NULL;
  instance->table = &functions;
  instance->factory =
      CFUUIDCreateFromString(kCFAllocatorDefault, CFSTR("5C0F1D2E-3A4B-4C5D-8E6F-0C9E3B1B6D03"));
  instance->count = 1;
  CFPlugInAddInstanceForFactory(instance->factory);
  return instance;
}
