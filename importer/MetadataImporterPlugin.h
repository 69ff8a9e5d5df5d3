// MetadataImporterPlugin: the bundle's entry points and its instances. C linkage throughout.
#pragma once

#include "platform/plugins/MDImporter.h"

#define IMPORTER_EXPORT __attribute__((visibility("default")))

extern "C" {

/// One instance. Its address is the interface: a pointer to the function table comes first.
///
/// The last slot of the table holds the import function that was asked for last, for paths or for
/// URLs; null before. Used by one thread at a time.
struct MetadataImporterPluginType {
  MDImporterURLInterfaceStruct* functionTable;  // the instance's own
  CFUUIDRef factoryID;                          // retained; may be absent
  UInt32 referenceCount;
};

/// An instance for the importer type, null for any other type; the allocator is not used.
IMPORTER_EXPORT void* MetadataImporterPluginFactory(CFAllocatorRef allocator, CFUUIDRef type);

/// An instance with one reference, counted for the factory; null without memory.
IMPORTER_EXPORT MetadataImporterPluginType* AllocMetadataImporterPluginType(CFUUIDRef factoryID);
/// Frees an instance and counts it no longer.
IMPORTER_EXPORT void DeallocMetadataImporterPluginType(MetadataImporterPluginType* instance);

/// S_OK and the instance with one more reference for IUnknown and the two importer interfaces, else
/// E_NOINTERFACE and null.
IMPORTER_EXPORT HRESULT MetadataImporterQueryInterface(void* instance, REFIID identifier,
                                                       LPVOID* interface);
/// The new count.
IMPORTER_EXPORT ULONG MetadataImporterPluginAddRef(void* instance);
/// The new count; at 0 the instance has gone.
IMPORTER_EXPORT ULONG MetadataImporterPluginRelease(void* instance);

/// The import function for URLs: whether attributes were found and added. The content type is
/// ignored; what goes wrong is told to the classic log.
IMPORTER_EXPORT Boolean GetMetadataForURL(void* instance, CFMutableDictionaryRef attributes,
                                          CFStringRef contentType, CFURLRef url);
/// The import function for paths; false for what cannot become a URL. Not exported.
Boolean LegacyGetMetadataForFile(void* instance, CFMutableDictionaryRef attributes,
                                 CFStringRef contentType, CFStringRef path);

/// Adds the attributes of a message, replacing those of the same names; false, and a line in the
/// classic log, when there are none. "FoxTrot" = true in the dictionary asks for the mail importer
/// even where it should not be loaded. Raises what the driver raises.
IMPORTER_EXPORT Boolean addMetadataForURLToAttributes(CFURLRef url,
                                                      CFMutableDictionaryRef attributes);

/// From now on the bundle logs what a domain of the user defaults asks for, as it is at this
/// moment; see docs/logging.md. An absent or unknown domain asks for nothing. Any number of times.
IMPORTER_EXPORT void MetadataImporterSetUpLogging(CFStringRef persistentDomainName);

}  // extern "C"
