// What CoreFoundation.h declares for plug-ins.
#include "platform/CoreFoundation.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/PlugInServices.h"

using namespace kbx;

CFPlugInRef CFPlugInCreate(CFAllocatorRef, CFURLRef bundle) {
  return leakToCF(PlugInServices::current().create(fromCF(bundle)));
}

CFArrayRef CFPlugInFindFactoriesForPlugInTypeInPlugIn(CFUUIDRef type, CFPlugInRef plugIn) {
  return leakToCF(PlugInServices::current().findFactories(fromCF(type), fromCF(plugIn)));
}

void* CFPlugInInstanceCreate(CFAllocatorRef, CFUUIDRef factory, CFUUIDRef type) {
  return PlugInServices::current().createInstance(fromCF(factory), fromCF(type));
}

void CFPlugInAddInstanceForFactory(CFUUIDRef factory) {
  PlugInServices::current().addInstance(fromCF(factory));
}

void CFPlugInRemoveInstanceForFactory(CFUUIDRef factory) {
  PlugInServices::current().removeInstance(fromCF(factory));
}
