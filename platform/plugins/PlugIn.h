// PlugIn: a bundle that the loader knows.
#pragma once

#include <atomic>
#include <string>

#include "platform/CoreFoundation.h"
#include "platform/plugins/PlugInDeclaration.h"

namespace kbx {

class PlugInLoader;

/// What CFPlugInCreate answers. Its factories are registered while somebody holds it. Safe from
/// any thread.
class KBX_PLATFORM PlugIn final : public NSObject {
  KBX_OBJECT(PlugIn, NSObject)
 public:
  /// A function of a type that only the caller knows.
  using Function = void (*)();

  /// The bundle's folder, absolute, links followed.
  const std::string& path() const noexcept { return _path; }
  const PlugInDeclaration& declaration() const noexcept { return _declaration; }
  /// The exported function of that name; opens the executable when it is not open yet. Null, with
  /// the reason, when there is no executable, when it cannot be opened, or without the function.
  Function function(const std::string& name, std::string* reason);

  /// The class and the path.
  Ref<NSString> description() const override;

 private:
  friend class PlugInLoader;
  PlugIn(PlugInLoader& loader, std::string path, PlugInDeclaration declaration);
  ~PlugIn() override;
  void* open(std::string* reason);

  PlugInLoader& _loader;
  const std::string _path;
  const PlugInDeclaration _declaration;
  std::atomic<void*> _executable{nullptr};
};

}  // namespace kbx
