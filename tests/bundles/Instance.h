// Instance: what an instance of a test bundle in C++ is made of.
#pragma once

#include "platform/plugins/MDImporter.h"

#define TEST_BUNDLE_EXPORT extern "C" __attribute__((visibility("default")))

using ImportURL = Boolean (*)(void* instance, CFMutableDictionaryRef attributes,
                              CFStringRef contentType, CFURLRef url);

struct Instance {
  const MDImporterURLInterfaceStruct* table;  // first: this is what callers see
  MDImporterURLInterfaceStruct functions;
  CFUUIDRef factory;
  ULONG count;
};

inline ULONG addReference(void* instance) { return ++static_cast<Instance*>(instance)->count; }

inline ULONG release(void* instance) {
  auto* self = static_cast<Instance*>(instance);
  if (--self->count > 0) return self->count;
  CFUUIDRef factory = self->factory;
  delete self;
  CFPlugInRemoveInstanceForFactory(factory);
  CFRelease(factory);
  return 0;
}

inline HRESULT queryInterface(void* instance, REFIID identifier, LPVOID* interface) {
  CFUUIDRef wanted = CFUUIDCreateFromUUIDBytes(kCFAllocatorDefault, identifier);
  const bool isOffered =
      static_cast<Instance*>(instance)->functions.ImporterImportURLData
          ? CFEqual(wanted, kMDImporterURLInterfaceID) || CFEqual(wanted, IUnknownUUID)
          : CFEqual(wanted, IUnknownUUID);
  CFRelease(wanted);
  *interface = isOffered ? instance : nullptr;
  if (!isOffered) return E_NOINTERFACE;
  addReference(instance);
  return S_OK;
}

/// An instance that offers the URL interface, or no interface when `import` is null. Keeps the
/// reference to the factory that it is given.
inline Instance* makeInstance(CFUUIDRef factory, ImportURL import) {
  auto* instance =
      new Instance{nullptr, {nullptr, queryInterface, addReference, release, import}, factory, 1};
  instance->table = &instance->functions;
  CFPlugInAddInstanceForFactory(factory);
  return instance;
}
