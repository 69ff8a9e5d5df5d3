// FileImporter: the attributes of a file, or why there are none.
#pragma once

#include <cstdint>

#include "host/import/ImportLog.h"
#include "host/import/ImporterBundle.h"
#include "host/import/Staging.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// The type identifier that a file's name has, whatever the name stands for; that of a message in a
/// Maildir (MessageNames). Never absent.
Ref<NSString> contentTypeOf(NSURL* file);

/// Asks an importer for one file after the other. Belongs to one thread at a time; the classic log
/// must be an ImportLog.
class FileImporter {
 public:
  /// usesMailImporter  false: the importer may answer with the raw text of a message
  /// staging           where the importer finds the files; nullptr for their own places
  FileImporter(ImporterBundle& importer, bool usesMailImporter, Staging* staging = nullptr)
      : _importer(importer), _usesMailImporter(usesMailImporter), _staging(staging) {}

  /// Absent when the file cannot be read, with the platform's error, or when the importer fails.
  ///
  /// contents  a copy to be read in the file's place, under the same name; nullptr for none
  /// error     required
  ///
  /// The importer is told the type that the file's name has, links not followed. Paths in what it
  /// finds and logs are those of the file, staged or not. Whether a message in a Maildir is read,
  /// flagged and answered is taken from its name (MaildirState).
  Ref<NSDictionary> attributesOfFile(NSURL* file, NSURL* contents, Ref<NSError>* error);

 private:
  Ref<NSMutableDictionary> stagedAttributes(NSURL* file, NSURL* contents, std::uint64_t size,
                                            Ref<NSError>* error);
  Ref<NSMutableDictionary> plainAttributes(NSURL* file, NSURL* contents, Ref<NSError>* error);
  Ref<NSMutableDictionary> import(NSURL* file, NSURL* place, const ImportLog::Recording& recording,
                                  Ref<NSError>* error);

  ImporterBundle& _importer;
  const bool _usesMailImporter;
  Staging* const _staging;
};

}  // namespace kbx
