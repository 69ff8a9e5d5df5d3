#include "host/import/FileImporter.h"

#include <exception>
#include <new>
#include <optional>
#include <string>

#include "host/console/FerncaseErrors.h"
#include "host/import/AnswerCheck.h"
#include "host/import/HTMLBody.h"
#include "host/import/ImportErrors.h"
#include "host/import/MaildirState.h"
#include "host/import/MessageNames.h"
#include "platform/files/FileNames.h"
#include "platform/files/ReadableFile.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSNumber.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/PlugInServices.h"
#include "platform/resources/TypeIdentifiers.h"
#include "platform/system/SystemRoot.h"

namespace kbx {
namespace {

/// What a caller puts into the attributes to have the mail importer used wherever it runs.
NSString* forceKey() { return "FoxTrot"_ns; }

/// In bytes. Importers answer an unreadable file with an empty text, so the host looks first.
std::optional<std::uint64_t> readableSize(NSURL* file, Ref<NSError>* error) {
  const ReadableFile readable(file, error);
  return readable.isOpen() ? std::optional(readable.size()) : std::nullopt;
}

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

Ref<NSString> contentTypeOf(NSURL* file) {
  const std::string& path = file->fileSystemRepresentation();
  if (isMaildirMessage(path)) return "com.apple.mail.email"_ns;
  const std::string_view name = path;
  return typeIdentifier(name.substr(name.rfind('/') + 1), false);
}

Ref<NSDictionary> FileImporter::attributesOfFile(NSURL* file, NSURL* contents,
                                                 Ref<NSError>* error) {
  if (!contents) contents = file;
  const auto size = readableSize(contents, error);
  if (!size) return nullptr;
  auto attributes = _staging ? stagedAttributes(file, contents, *size, error)
                             : plainAttributes(file, contents, error);
  const bool isDoubtful = attributes && !_usesMailImporter && hasEmptyText(attributes);
  return isDoubtful && !canBeRead(contents, error) ? nullptr : attributes;
}

Ref<NSMutableDictionary> FileImporter::plainAttributes(NSURL* file, NSURL* contents,
                                                       Ref<NSError>* error) {
  ImportLog::Recording recording;
  if (contents == file) return import(file, file, recording, error);
  auto folder = stringWithFileSystemRepresentation(folderOf(contents));
  auto originalFolder = stringWithFileSystemRepresentation(folderOf(file));
  recording.replacePath(folder, originalFolder);
  auto attributes = import(file, contents, recording, error);
  if (attributes) restorePaths(attributes, folder, originalFolder);
  return attributes;
}

Ref<NSMutableDictionary> FileImporter::stagedAttributes(NSURL* file, NSURL* contents,
                                                        std::uint64_t size, Ref<NSError>* error) {
  const StagedMessage staged(_staging->folderForSize(size), file, contents, error);
  if (!staged.url()) return nullptr;
  ImportLog::Recording recording;
  recording.replacePath(staged.folder(), staged.originalFolder());
  auto attributes = import(file, staged.url(), recording, error);
  if (attributes) restorePaths(attributes, staged.folder(), staged.originalFolder());
  return attributes;
}

Ref<NSMutableDictionary> FileImporter::import(NSURL* file, NSURL* place,
                                              const ImportLog::Recording& recording,
                                              Ref<NSError>* error) {
  auto attributes = NSMutableDictionary::dictionary();
  if (_usesMailImporter) attributes->setObjectForKey(NSNumber::numberWithBool(true), forceKey());
  try {
    const bool isImported = _importer.importFile(place, contentTypeOf(file), attributes);
    if (isImported && !tellsOfMailError(recording.lines())) {
      attributes->removeObjectForKey(forceKey());
      if (const auto fault = faultInAnswer(attributes)) {
        *error = ferncaseError(FerncaseImportFailedError,
                               "The importer’s answer can’t be used: " + *fault + ".");
        return nullptr;
      }
      addTextOfHTMLBody(attributes);
      if (auto state = maildirState(file->fileSystemRepresentation()))
        attributes->addEntriesFromDictionary(state);
      return attributes;
    }
    // The platform knows best why a file cannot be read, should it fail once more.
    if (canBeRead(file, error))
      *error = importError(recording.lines(), _usesMailImporter ? mailImporterReason() : "");
  } catch (const std::bad_alloc&) {
    *error =
        ferncaseError(FerncaseImportFailedError, "The importer failed: there isn’t enough memory.");
  } catch (const std::exception& exception) {
    *error = ferncaseError(FerncaseImportFailedError,
                           std::string("The importer failed: ") + exception.what());
  } catch (...) {
    *error = ferncaseError(FerncaseImportFailedError, "The importer failed: no reason is known.");
  }
  return nullptr;
}

}  // namespace kbx
