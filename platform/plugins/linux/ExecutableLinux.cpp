#include <dlfcn.h>

#include "platform/plugins/Executable.h"

namespace kbx {

const char* executableFolder() { return "Linux"; }

void* openExecutable(const std::string& path, std::string* reason) {
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (handle) return handle;
  const char* message = dlerror();  // kept by thread
  *reason = message ? message : "cannot be opened";
  return nullptr;
}

void closeExecutable(void* handle) { dlclose(handle); }

void* executableFunction(void* handle, const std::string& name) {
  return dlsym(handle, name.c_str());
}

}  // namespace kbx
