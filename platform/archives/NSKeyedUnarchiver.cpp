#include "platform/archives/NSKeyedUnarchiver.h"

#include "platform/archives/ArchiveReader.h"
#include "platform/objects/NSException.h"
#include "platform/text/Format.h"

namespace kbx {

KBX_CLASS(NSKeyedUnarchiver)

namespace {

Ref<NSError> errorOf(const ArchiveReading& reading) {
  const bool isCorrupt = !reading.fault.empty();
  Ref<NSString> text =
      isCorrupt ? stringWithFormat("The archive couldn’t be read: %s."_ns, reading.fault.c_str())
                : Ref<NSString>("The archive has no root object."_ns);
  return NSError::errorWithDomain(
      NSCocoaErrorDomain(), isCorrupt ? NSCoderReadCorruptError : NSCoderValueNotFoundError,
      NSDictionary::dictionaryWithPairs({{NSLocalizedDescriptionKey(), text}}));
}

}  // namespace

Ref<NSObject> NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(NSData* data,
                                                                 Ref<NSError>* error) {
  auto reading = data ? readArchive(data->view()) : ArchiveReading{.fault = "there is no data"};
  if (!reading.hasRoot && error) *error = errorOf(reading);
  return reading.root;
}

Ref<NSObject> NSKeyedUnarchiver::unarchiveObjectWithData(NSData* data) {
  Ref<NSError> error;
  auto root = unarchiveTopLevelObjectWithData(data, &error);
  if (!error) return root;
  NSException::exceptionWithName(NSInvalidUnarchiveOperationException(),
                                 error->localizedDescription(), nullptr)
      ->raise();
}

}  // namespace kbx
