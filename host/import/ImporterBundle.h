// ImporterBundle: a metadata importer, loaded.
#pragma once

#include <memory>
#include <string>

#include "platform/files/NSURL.h"
#include "platform/objects/NSDictionary.h"
#include "platform/plugins/MDImporter.h"
#include "platform/plugins/PlugIn.h"

namespace kbx {

/// One instance of an importer, reached through the plug-in loader alone. Belongs to one thread at
/// a time.
class ImporterBundle {
 public:
  /// Absent when the bundle gives no importer; then the reason says why, in UTF-8 but for paths.
  ///
  /// A bundle that logs (docs/logging.md) is told first to do so as the program's own domain of the
  /// user's defaults says at this moment.
  static std::unique_ptr<ImporterBundle> load(NSURL* bundle, std::string* reason);

  /// Lets the importer add what it finds out about a file, and answers what it answers.
  ///
  /// contentType  the type identifier that it is told; may be absent
  ///
  /// Exceptions of the importer pass through.
  bool importFile(NSURL* file, NSString* contentType, NSMutableDictionary* attributes);

 private:
  struct Release {
    template <class Interface>
    void operator()(Interface** interface) const {
      (*interface)->Release(interface);
    }
  };
  /// An owned interface: the address of a pointer to its function table.
  template <class Interface>
  using Owned = std::unique_ptr<Interface*, Release>;

  ImporterBundle() = default;
  bool makeInstance();
  void setUpLogging();
  bool useFactory(NSObject* factory);
  template <class Interface>
  static Owned<Interface> query(IUnknownVTbl** instance, CFUUIDRef identifier);

  Ref<PlugIn> _plugIn;  // held longer than the instances
  Owned<MDImporterURLInterfaceStruct> _urlInterface;
  Owned<MDImporterInterfaceStruct> _legacyInterface;  // only without the other one
};

}  // namespace kbx
