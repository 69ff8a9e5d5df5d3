#include "host/import/ImporterBundle.h"

#include "platform/plugins/Bridge.h"
#include "platform/plugins/PlugInServices.h"
#include "platform/preferences/Preferences.h"

namespace kbx {

std::unique_ptr<ImporterBundle> ImporterBundle::load(NSURL* bundle, std::string* reason) {
  std::unique_ptr<ImporterBundle> loaded(new ImporterBundle);
  loaded->_plugIn = adoptCF(CFPlugInCreate(kCFAllocatorDefault, toCF(bundle)));
  if (loaded->_plugIn && loaded->makeInstance()) return loaded;
  *reason = PlugInServices::current().failureReason(bundle);
  if (reason->empty()) *reason = "the bundle holds no metadata importer";
  return nullptr;
}

bool ImporterBundle::makeInstance() {
  auto factories =
      adoptCF(CFPlugInFindFactoriesForPlugInTypeInPlugIn(kMDImporterTypeID, toCF(_plugIn.get())));
  if (!factories || factories->count() == 0) return false;
  setUpLogging();
  for (const auto& factory : *factories)
    if (useFactory(factory)) return true;
  return false;
}

void ImporterBundle::setUpLogging() {
  using SetUpLogging = void (*)(CFStringRef persistentDomainName);
  std::string ignored;  // many importers have no such function
  auto function = _plugIn->function("MetadataImporterSetUpLogging", &ignored);
  if (function) reinterpret_cast<SetUpLogging>(function)(toCF(applicationDomainName()));
}

bool ImporterBundle::useFactory(NSObject* factory) {
  const Owned<IUnknownVTbl> instance(static_cast<IUnknownVTbl**>(CFPlugInInstanceCreate(
      kCFAllocatorDefault, toCF(static_cast<NSUUID*>(factory)), kMDImporterTypeID)));
  if (!instance) return false;
  // An instance may have one place for its import function, which the last question fills; so the
  // second is asked only where the first had no answer.
  _urlInterface = query<MDImporterURLInterfaceStruct>(instance.get(), kMDImporterURLInterfaceID);
  if (!_urlInterface)
    _legacyInterface = query<MDImporterInterfaceStruct>(instance.get(), kMDImporterInterfaceID);
  return _urlInterface || _legacyInterface;
}

template <class Interface>
ImporterBundle::Owned<Interface> ImporterBundle::query(IUnknownVTbl** instance,
                                                       CFUUIDRef identifier) {
  void* found = nullptr;
  (*instance)->QueryInterface(instance, CFUUIDGetUUIDBytes(identifier), &found);
  return Owned<Interface>(static_cast<Interface**>(found));
}

bool ImporterBundle::importFile(NSURL* file, NSString* contentType,
                                NSMutableDictionary* attributes) {
  if (auto* interface = _urlInterface.get())
    return (*interface)
        ->ImporterImportURLData(interface, toCF(attributes), toCF(contentType), toCF(file));
  auto* interface = _legacyInterface.get();
  return (*interface)
      ->ImporterImportData(interface, toCF(attributes), toCF(contentType),
                           toCF(file->path().get()));
}

}  // namespace kbx
