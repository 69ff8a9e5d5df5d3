// MailImporter: the bundle's one entry point, its instances and its import functions.
#include <new>

#include "mail/ImportMessage.h"
#include "platform/logging/NSLog.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"

using namespace kbx;

namespace {

using ImportURL = decltype(MDImporterURLInterfaceStruct::ImporterImportURLData);

/// One instance. Its address is the interface: a pointer to the function table comes first. Used by
/// one thread at a time; imports of different instances run side by side.
struct Instance {
  MDImporterURLInterfaceStruct* table;
  CFUUIDRef factory;
  UInt32 count;
  MDImporterURLInterfaceStruct functions;  // its own, because a query changes the last one
};

Instance* instanceOf(void* interface) { return static_cast<Instance*>(interface); }

ULONG addReference(void* interface) { return ++instanceOf(interface)->count; }

ULONG release(void* interface) {
  Instance* instance = instanceOf(interface);
  if (--instance->count > 0) return instance->count;
  CFUUIDRef factory = instance->factory;
  delete instance;
  CFPlugInRemoveInstanceForFactory(factory);
  CFRelease(factory);
  return 0;
}

Boolean importURL(void*, CFMutableDictionaryRef attributes, CFStringRef contentType, CFURLRef url) {
  if (!attributes || !url) return false;
  // Whoever hosts importers may hold nothing but C: no exception leaves.
  try {
    Ref<NSError> error;
    if (importMessage(fromCF(url), fromCF(contentType), fromCF(attributes), &error)) return true;
    NSLog("Mail error: %@"_ns, error->localizedDescription());
  } catch (const std::bad_alloc&) {
  }
  return false;
}

Boolean importPath(void* interface, CFMutableDictionaryRef attributes, CFStringRef contentType,
                   CFStringRef path) {
  Ref<NSURL> url = adoptCF(
      CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path, kCFURLPOSIXPathStyle, false));
  return importURL(interface, attributes, contentType, toCF(url));
}

HRESULT queryInterface(void* interface, REFIID identifier, LPVOID* result) {
  CFUUIDRef wanted = CFUUIDCreateFromUUIDBytes(kCFAllocatorDefault, identifier);
  ImportURL& slot = instanceOf(interface)->functions.ImporterImportURLData;
  bool isOffered = true;
  // One slot for both import functions: the one that was asked for last is found through both.
  if (CFEqual(wanted, kMDImporterInterfaceID))
    slot = reinterpret_cast<ImportURL>(&importPath);
  else if (CFEqual(wanted, kMDImporterURLInterfaceID))
    slot = &importURL;
  else
    isOffered = CFEqual(wanted, IUnknownUUID);
  CFRelease(wanted);
  *result = isOffered ? interface : nullptr;
  if (!isOffered) return E_NOINTERFACE;
  addReference(interface);
  return S_OK;
}

}  // namespace

/// An instance for the importer type, null for any other type and without memory.
extern "C" __attribute__((visibility("default"))) void* MailImporterFactory(CFAllocatorRef,
                                                                            CFUUIDRef type) {
  if (!CFEqual(type, kMDImporterTypeID)) return nullptr;
  auto* instance = new (std::nothrow) Instance{};
  if (!instance) return nullptr;
  instance->functions = {nullptr, queryInterface, addReference, release, nullptr};
  instance->table = &instance->functions;
  instance->factory =
      CFUUIDCreateFromString(kCFAllocatorDefault, CFSTR("6F0A3C52-9D1B-4E57-8C0E-2B7A41D95E36"));
  instance->count = 1;
  CFPlugInAddInstanceForFactory(instance->factory);
  return instance;
}
