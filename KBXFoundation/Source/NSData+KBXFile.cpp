#include "NSData+KBXFile.h"

#include "NSError+KBX.h"

namespace kbx {
namespace {

/// Whether there is a location. No frame: callers add theirs, as for any error of the platform.
bool isThere(NSURL* url, Ref<NSError>* error) {
  if (!url && error) *error = kbxRequirementFailedError("url"_ns);
  return url;
}

}  // namespace

Ref<NSData> kbxReadFromURL(NSURL* url, Ref<NSError>* error) {
  if (!isThere(url, error)) return nullptr;
  return NSData::dataWithContentsOfURL(url, NSDataReadingNone, error);
}

bool kbxWriteToURL(NSData* data, NSURL* url, Ref<NSError>* error) {
  return data && isThere(url, error) && data->writeToURL(url, NSDataWritingAtomic, error);
}

}  // namespace kbx
