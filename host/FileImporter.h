// FileImporter: the attributes of a file, or why there are none.
#pragma once

#include "host/ImporterBundle.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// Asks an importer for one file after the other. Belongs to one thread at a time; the classic log
/// must be an ImportLog.
class FileImporter {
 public:
  /// usesMailImporter  false: the importer may answer with the raw text of a message
  FileImporter(ImporterBundle& importer, bool usesMailImporter)
      : _importer(importer), _usesMailImporter(usesMailImporter) {}

  /// Absent when the file cannot be read, with the platform's error, or when the importer fails.
  ///
  /// error  required
  Ref<NSDictionary> attributesOfFile(NSURL* file, Ref<NSError>* error);

 private:
  ImporterBundle& _importer;
  const bool _usesMailImporter;
};

}  // namespace kbx
