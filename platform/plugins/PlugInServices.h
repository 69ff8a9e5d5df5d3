// PlugInServices: what is behind the plug-in functions of CoreFoundation.h.
#pragma once

#include <string>

#include "platform/objects/NSArray.h"
#include "platform/plugins/PlugIn.h"
#include "platform/system/Service.h"

namespace kbx {

/// Finds bundles, registers their factories and makes instances. Called from any thread.
class KBX_PLATFORM PlugInServices {
 public:
  virtual ~PlugInServices();

  /// CFPlugInCreate.
  virtual Ref<PlugIn> create(NSURL* bundle) = 0;
  /// CFPlugInFindFactoriesForPlugInTypeInPlugIn: an array of NSUUID, or absent.
  virtual Ref<NSArray> findFactories(NSUUID* type, PlugIn* plugIn) = 0;
  /// CFPlugInInstanceCreate: an instance or null. What the bundle's code raises passes through.
  virtual void* createInstance(NSUUID* factory, NSUUID* type) = 0;
  /// CFPlugInAddInstanceForFactory; a factory that nobody has registered counts nothing.
  virtual void addInstance(NSUUID* factory) = 0;
  /// CFPlugInRemoveInstanceForFactory.
  virtual void removeInstance(NSUUID* factory) = 0;

  /// Why the bundle gave no plug-in, no factories or no instance the last time, in words for
  /// people; empty when nothing failed or nothing was asked. UTF-8 except for what paths hold.
  virtual std::string failureReason(NSURL* bundle) = 0;

  KBX_SERVICE_INTERFACE(PlugInServices)
};

}  // namespace kbx
