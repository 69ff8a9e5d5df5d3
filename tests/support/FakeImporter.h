// FakeImporter: plug-in services whose instances do what a test wants.
#pragma once

#include <functional>
#include <utility>

#include "platform/plugins/Bridge.h"
#include "platform/plugins/PlugInServices.h"
#include "tests/bundles/Instance.h"
#include "tests/support/Bundles.h"

namespace kbx {

/// Installed while it lives. Bundles are found as ever; an instance that is made of one calls the
/// function of the test. One at a time, for one thread.
class FakeImporter final : public PlugInServices {
 public:
  using Import =
      std::function<bool(NSMutableDictionary* attributes, NSString* contentType, NSURL*)>;

  explicit FakeImporter(Import import) { _import = std::move(import); }

  /// A bundle with a factory.
  Ref<NSURL> bundle() const { return testBundle("SecondFactory"); }

  Ref<PlugIn> create(NSURL* bundle) override { return _loader.create(bundle); }
  Ref<NSArray> findFactories(NSUUID* type, PlugIn* plugIn) override {
    return _loader.findFactories(type, plugIn);
  }
  void* createInstance(NSUUID* factory, NSUUID*) override {
    return makeInstance(toCF(Ref<NSUUID>(factory).leak()), &call);
  }
  void addInstance(NSUUID* factory) override { _loader.addInstance(factory); }
  void removeInstance(NSUUID* factory) override { _loader.removeInstance(factory); }
  std::string failureReason(NSURL* bundle) override { return _loader.failureReason(bundle); }

 private:
  static Boolean call(void*, CFMutableDictionaryRef attributes, CFStringRef contentType,
                      CFURLRef url) {
    return _import(fromCF(attributes), fromCF(contentType), fromCF(url));
  }

  static inline Import _import;
  PlugInServices& _loader = PlugInServices::current();
  ScopedService<PlugInServices> _installed{*this};
};

}  // namespace kbx
