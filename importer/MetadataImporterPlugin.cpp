#include "importer/MetadataImporterPlugin.h"

#include <cstdlib>
#include <new>

namespace {

using ImportURL = decltype(MDImporterURLInterfaceStruct::ImporterImportURLData);

/// What the table of each instance is copied from.
const MDImporterURLInterfaceStruct testInterfaceFtbl = {nullptr, MetadataImporterQueryInterface,
                                                        MetadataImporterPluginAddRef,
                                                        MetadataImporterPluginRelease, nullptr};

MetadataImporterPluginType* instanceOf(void* interface) {
  return static_cast<MetadataImporterPluginType*>(interface);
}

/// Puts the import function of an importer interface into the table. Whether it is offered; the
/// base interface is, and leaves the table as it was.
bool offerInterface(MetadataImporterPluginType* instance, CFUUIDRef identifier) {
  // One slot for both on purpose: the function that was asked for last is found through both.
  ImportURL& slot = instance->functionTable->ImporterImportURLData;
  if (CFEqual(identifier, kMDImporterInterfaceID)) {
    slot = reinterpret_cast<ImportURL>(&LegacyGetMetadataForFile);
    return true;
  }
  if (CFEqual(identifier, kMDImporterURLInterfaceID)) {
    slot = &GetMetadataForURL;
    return true;
  }
  return CFEqual(identifier, IUnknownUUID);
}

}  // namespace

void* MetadataImporterPluginFactory(CFAllocatorRef, CFUUIDRef type) {
  if (!CFEqual(type, kMDImporterTypeID)) return nullptr;
  CFUUIDRef factoryID =
      CFUUIDCreateFromString(kCFAllocatorDefault, CFSTR("1843614B-4490-4511-8F2A-F82385D11CD7"));
  void* instance = AllocMetadataImporterPluginType(factoryID);
  CFRelease(factoryID);
  return instance;
}

MetadataImporterPluginType* AllocMetadataImporterPluginType(CFUUIDRef factoryID) {
  void* record = std::malloc(sizeof(MetadataImporterPluginType));
  void* table = std::malloc(sizeof testInterfaceFtbl);
  if (!record || !table) {
    std::free(table);
    std::free(record);
    return nullptr;
  }
  auto* functions = new (table) MDImporterURLInterfaceStruct(testInterfaceFtbl);
  auto* instance = new (record)
      MetadataImporterPluginType{functions, static_cast<CFUUIDRef>(CFRetain(factoryID)), 1};
  CFPlugInAddInstanceForFactory(factoryID);
  return instance;
}

void DeallocMetadataImporterPluginType(MetadataImporterPluginType* instance) {
  CFUUIDRef factoryID = instance->factoryID;
  std::free(instance->functionTable);
  std::free(instance);
  if (!factoryID) return;
  CFPlugInRemoveInstanceForFactory(factoryID);
  CFRelease(factoryID);
}

HRESULT MetadataImporterQueryInterface(void* instance, REFIID identifier, LPVOID* interface) {
  CFUUIDRef wanted = CFUUIDCreateFromUUIDBytes(kCFAllocatorDefault, identifier);
  const bool isOffered = offerInterface(instanceOf(instance), wanted);
  CFRelease(wanted);
  *interface = isOffered ? instance : nullptr;
  if (!isOffered) return E_NOINTERFACE;
  instanceOf(instance)->functionTable->AddRef(instance);
  return S_OK;
}

ULONG MetadataImporterPluginAddRef(void* instance) {
  return ++instanceOf(instance)->referenceCount;
}

ULONG MetadataImporterPluginRelease(void* instance) {
  const UInt32 count = --instanceOf(instance)->referenceCount;
  if (count == 0) DeallocMetadataImporterPluginType(instanceOf(instance));
  return count;
}
