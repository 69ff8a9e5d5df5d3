// PlugInDeclaration: what a bundle's property list says about its factories.
#pragma once

#include <string>
#include <vector>

#include "platform/files/NSURL.h"
#include "platform/plugins/NSUUID.h"

namespace kbx {

struct PlugInDeclaration {
  struct Factory {
    Ref<NSUUID> identifier;
    std::string function;  // the exported function that makes instances
  };
  struct Type {
    Ref<NSUUID> identifier;
    std::vector<Ref<NSUUID>> factories;  // in the order of the list, each declared as a factory
  };

  std::string executable;  // a file name; empty when none is declared
  std::vector<Factory> factories;
  std::vector<Type> types;

  /// The factory, or null.
  const Factory* factory(NSUUID* identifier) const;
  /// The factories that serve the type; empty when there are none.
  std::vector<Ref<NSUUID>> factoriesForType(NSUUID* type) const;
};

/// Reads Contents/Info.plist of a bundle: CFBundleExecutable, CFPlugInFactories and CFPlugInTypes.
///
/// Entries of another form, and factories of a type that are not declared, are left out. Without a
/// readable list nothing is declared, and `reason` says why.
PlugInDeclaration readPlugInDeclaration(NSURL* bundle, std::string* reason);

}  // namespace kbx
