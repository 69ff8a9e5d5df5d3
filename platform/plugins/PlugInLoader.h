// PlugInLoader: the process's own plug-in services. docs/plugin-loader.md says what they promise.
#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <string>

#include "platform/plugins/FailureReasons.h"
#include "platform/plugins/PlugInServices.h"

namespace kbx {

/// Must live longer than every plug-in that it makes.
///
/// Its lock is never held while a bundle's code runs, a file is read or a plug-in dies, for all of
/// these may call the loader.
class PlugInLoader final : public PlugInServices {
 public:
  Ref<PlugIn> create(NSURL* bundle) override;
  Ref<NSArray> findFactories(NSUUID* type, PlugIn* plugIn) override;
  void* createInstance(NSUUID* factory, NSUUID* type) override;
  void addInstance(NSUUID* factory) override;
  void removeInstance(NSUUID* factory) override;
  std::string failureReason(NSURL* bundle) override;

  /// Called by a plug-in that dies.
  void forget(PlugIn* plugIn);

 private:
  struct Factory {
    PlugIn* plugIn;
    std::size_t instances = 0;
    Ref<PlugIn> kept;  // the plug-in, while there are instances
  };

  Ref<PlugIn> find(const std::string& path);
  Ref<PlugIn> findLocked(const std::string& path);
  Ref<PlugIn> enter(PlugIn* made, std::string* reason);
  Ref<PlugIn> plugInOfFactory(NSUUID* factory);
  bool isServed(NSUUID* type);
  void unloadScheduled();

  std::mutex _lock;
  // Plug-ins that are registered. Those that nobody holds any more leave when they die, so what is
  // found here must be asked whether it is alive.
  std::map<std::string, PlugIn*> _plugIns;  // by path
  std::map<NSUUID*, Factory> _factories;    // the plug-in's declaration holds the key
  // Without instances since the last release. They stay until another bundle is created, so that a
  // host which makes a plug-in for each file does not read and open it each time.
  std::map<PlugIn*, Ref<PlugIn>> _scheduled;
  FailureReasons _reasons;
};

}  // namespace kbx
