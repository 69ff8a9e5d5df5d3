#include "KBXEMLXFile.h"

#include "KBXFunctions.h"
#include "KBXSpotlightImporter.h"
#include "NSData+KBX.h"
#include "NSError+KBX.h"
#include "NSProcessInfo+KBX.h"
#include "NSPropertyListSerialization+KBX.h"
#include "NSURL+KBXFileBasics.h"
#include "platform/files/NSFileManager.h"
#include "platform/logging/NSLog.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"
#include "platform/system/NSProcessInfo.h"
#include "platform/text/TextDetection.h"

namespace kbx {

KBX_CLASS(KBXEMLXFile)

namespace {

constexpr const char* kFile = "KBXFoundation/Source/KBXEMLXFile";
constexpr const char* kDriver = "+[KBXEMLXFile metadataForEMLURL:forceSpotlight:error:]";

/// The answer where the mail importer may not be loaded: the file as it is, headers and all.
Ref<NSDictionary> rawTextMetadata(NSURL* emlURL) {
  Ref<NSString> text = emlURL ? stringWithContentsOfURL(emlURL, nullptr, nullptr) : nullptr;
  if (!text) text = ""_ns;
  return NSDictionary::dictionaryWithPairs({{fromCF(kMDItemTextContent), text}});
}

/// A location beside the message that no other call in any process uses. The dot hides it.
Ref<NSURL> temporaryURLBeside(NSURL* emlURL) {
  Ref<NSString> name = stringWithFormat(".temp-KBXEMLXFile-%@.emlx"_ns,
                                        NSProcessInfo::processInfo()->globallyUniqueString());
  return kbxChild(kbxParent(emlURL), name);
}

Ref<NSDictionary> guardedMetadata(NSURL* emlxURL, Ref<NSError>* error) {
  try {
    return KBXEMLXFile::metadataForEMLXURL(emlxURL, error);
  } catch (const Raised& raised) {
    NSLog("KBXEMLXFile: Exception generating metadata: %@"_ns, raised.exception());
    return nullptr;
  }
}

void removeTemporaryFile(NSURL* url) {
  Ref<NSError> error;
  if (!NSFileManager::defaultManager()->removeItemAtURL(url, &error))
    NSLog("KBXEMLXFile: Error removing temporary Spotlight file: %@"_ns, error);
}

/// Stores the error with the driver's frame where the caller wants to know.
void tell(Ref<NSError>* error, NSError* failure, unsigned long line) {
  if (error) *error = kbxErrorByAddingStackFrame(failure, kDriver, line);
}

}  // namespace

Ref<KBXEMLXFile> KBXEMLXFile::initWithMessageData(NSData* messageData, NSDictionary* properties) {
  auto file = Ref<KBXEMLXFile>::adopt(new KBXEMLXFile(messageData ? messageData->copy() : nullptr,
                                                      properties ? properties->copy() : nullptr));
  // Checked on the made object, because the location names it as the receiver.
  KBX_PRECONDITION(messageData, Site(kFile, 14, file, "initWithMessageData:properties:"));
  KBX_PRECONDITION(properties, Site(kFile, 15, file, "initWithMessageData:properties:"));
  return file;
}

Ref<KBXEMLXFile> KBXEMLXFile::initWithEMLURL(NSURL* emlURL, Ref<NSError>* error) {
  auto data = NSData::dataWithContentsOfURL(emlURL, NSDataReadingNone, error);
  if (!data) return nullptr;
  return initWithMessageData(kbxDataByNormalizingLineBreaks(data), NSDictionary::dictionary());
}

bool KBXEMLXFile::writeToURL(NSURL* emlxURL, Ref<NSError>* error) {
  KBX_PRECONDITION(emlxURL, Site(kFile, 38, this, "writeToURL:error:"));
  Ref<NSData> list = kbxDataFromPropertyList(_properties, NSPropertyListXMLFormat_v1_0, error);
  if (!list) {
    passOn(error, {"-[KBXEMLXFile writeToURL:error:]", 42});
    return false;
  }
  const std::string count = std::to_string(_messageData->length()) + "\n";
  auto file =
      NSMutableData::dataWithCapacity(count.size() + _messageData->length() + list->length());
  file->appendBytes(count);
  file->appendData(_messageData);
  file->appendData(list);
  return file->writeToURL(emlxURL, NSDataWritingNone, error);
}

bool KBXEMLXFile::isInSpotlightSandbox() {
  if (kbxIsMacOSAtLeast10_8()) return true;
  // Older systems have no better sign of the metadata server than the framework that it injects.
  Ref<NSDictionary> environment = NSProcessInfo::processInfo()->environment();
  auto* inserted = cast<NSString>(environment->objectForKey("DYLD_INSERT_LIBRARIES"_ns));
  return inserted && inserted->rangeOfString("Metadata.framework"_ns).location != NSNotFound;
}

bool KBXEMLXFile::shouldDisableMailImporter() {
  if (isInSpotlightSandbox()) return true;
  return NSProcessInfo::processInfo()->processName()->hasPrefix("Curio"_ns);
}

Ref<NSDictionary> KBXEMLXFile::metadataForEMLURL(NSURL* emlURL, bool forceSpotlight,
                                                 Ref<NSError>* error) {
  const bool isDisabled = shouldDisableMailImporter();
  if (!forceSpotlight && isDisabled) return rawTextMetadata(emlURL);

  Ref<NSError> localError;
  Ref<KBXEMLXFile> file = initWithEMLURL(emlURL, &localError);
  if (!file) {
    tell(error, localError, 92);
    return nullptr;
  }
  Ref<NSURL> emlxURL = temporaryURLBeside(emlURL);
  if (!file->writeToURL(emlxURL, &localError)) {
    NSLog("KBXEMLXFile: Error writing .emlx file: %@"_ns, localError);
    tell(error, localError, 100);
    return nullptr;
  }
  file = nullptr;  // the importer needs the memory more than a written message does
  Ref<NSDictionary> metadata = guardedMetadata(emlxURL, error);
  removeTemporaryFile(emlxURL);
  // The importer's error went to the caller, who logs it; what is logged here is this level's own.
  if (!metadata) NSLog("KBXEMLXFile: Error indexing: %@"_ns, localError);
  return metadata;
}

Ref<NSDictionary> KBXEMLXFile::metadataForEMLXURL(NSURL* emlxURL, Ref<NSError>* error) {
  Ref<NSURL> importerURL = NSURL::fileURLWithPath("/System/Library/Spotlight/Mail.mdimporter"_ns);
  auto importer = KBXSpotlightImporter::initWithImporterURL(importerURL);
  return importer ? importer->metadataForURL(emlxURL, error) : nullptr;
}

}  // namespace kbx
