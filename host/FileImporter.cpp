#include "host/FileImporter.h"

#include <exception>
#include <new>
#include <string>

#include "host/FerncaseErrors.h"
#include "host/ImportErrors.h"
#include "platform/files/ReadableFile.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSNumber.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/PlugInServices.h"
#include "platform/system/SystemRoot.h"

namespace kbx {
namespace {

/// What a caller puts into the attributes to have the mail importer used wherever it runs.
NSString* forceKey() { return "FoxTrot"_ns; }

/// Importers answer an unreadable file with an empty text, so the host looks first.
bool canBeOpened(NSURL* file, Ref<NSError>* error) { return ReadableFile(file, error).isOpen(); }

/// And last: what can be opened may yet fail while it is read.
bool canBeRead(NSURL* file, Ref<NSError>* error) {
  return NSData::dataWithContentsOfURL(file, NSDataReadingNone, error) != nullptr;
}

bool hasEmptyText(NSDictionary* attributes) {
  auto* text = cast<NSString>(attributes->objectForKey(fromCF(kMDItemTextContent)));
  return text && text->length() == 0;
}

/// Empty when nothing failed. The importer keeps the loader's reason to itself.
std::string mailImporterReason() {
  constexpr std::string_view kBundle = "/System/Library/Spotlight/Mail.mdimporter";
  auto bundle = NSURL::fileURLWithFileSystemRepresentation(kBundle, true);
  std::string reason = PlugInServices::current().failureReason(bundle);
  if (reason.empty()) return {};
  return "The mail importer " + pathBelowSystemRoot(kBundle) + " can’t be loaded: " + reason;
}

}  // namespace

Ref<NSDictionary> FileImporter::attributesOfFile(NSURL* file, Ref<NSError>* error) {
  if (!canBeOpened(file, error)) return nullptr;
  auto attributes = NSMutableDictionary::dictionary();
  if (_usesMailImporter) attributes->setObjectForKey(NSNumber::numberWithBool(true), forceKey());
  const ImportLog::Recording recording;
  try {
    if (_importer.importFile(file, attributes)) {
      attributes->removeObjectForKey(forceKey());
      const bool isDoubtful = !_usesMailImporter && hasEmptyText(attributes);
      return isDoubtful && !canBeRead(file, error) ? nullptr : attributes;
    }
    *error = importError(recording.lines(), _usesMailImporter ? mailImporterReason() : "");
  } catch (const std::bad_alloc&) {
    *error =
        ferncaseError(FerncaseImportFailedError, "The importer failed: there isn’t enough memory.");
  } catch (const std::exception& exception) {
    *error = ferncaseError(FerncaseImportFailedError,
                           std::string("The importer failed: ") + exception.what());
  }
  return nullptr;
}

}  // namespace kbx
