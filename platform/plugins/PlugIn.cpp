#include "platform/plugins/PlugIn.h"

#include "platform/objects/NSClass.h"
#include "platform/plugins/Executable.h"
#include "platform/plugins/PlugInLoader.h"

namespace kbx {

KBX_CLASS(PlugIn)

PlugIn::PlugIn(PlugInLoader& loader, std::string path, PlugInDeclaration declaration)
    : _loader(loader), _path(std::move(path)), _declaration(std::move(declaration)) {}

PlugIn::~PlugIn() {
  _loader.forget(this);
  if (void* executable = _executable.load()) closeExecutable(executable);
}

void* PlugIn::open(std::string* reason) {
  if (void* executable = _executable.load()) return executable;
  if (_declaration.executable.empty()) {
    *reason = "Contents/Info.plist names no executable";
    return nullptr;
  }
  // Nothing is locked meanwhile: the code's own start-up may call the loader.
  void* opened = openExecutable(
      _path + "/Contents/" + executableFolder() + "/" + _declaration.executable, reason);
  void* earlier = nullptr;
  if (!opened || _executable.compare_exchange_strong(earlier, opened)) return opened;
  closeExecutable(opened);
  return earlier;
}

PlugIn::Function PlugIn::function(const std::string& name, std::string* reason) {
  void* executable = open(reason);
  if (!executable) return nullptr;
  void* function = executableFunction(executable, name);
  if (!function) *reason = "the executable has no function " + name;
  return reinterpret_cast<Function>(function);
}

Ref<NSString> PlugIn::description() const {
  return NSString::stringWithLossyUTF8("<PlugIn " + _path + ">");
}

}  // namespace kbx
