#include "NSError+KBXArchiving.h"

#include "platform/objects/NSClass.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

/// References to objects of other programs. They can be archived, but mean nothing afterwards, and
/// reading one may start the program.
constexpr const char* kLiveReferences[] = {"SBObject", "NSAppleEventDescriptor"};

Ref<NSObject> archivableValue(NSObject* original) {
  Ref<NSObject> value = original;
  if (auto* error = cast<NSError>(original)) value = kbxArchivableError(error);
  for (const char* name : kLiveReferences) {
    NSClass* reference = NSClass::named(name);
    if (reference && value->isKindOfClass(reference)) value = descriptionOf(value);
  }
  return value->conformsToProtocol("NSCoding") ? value : Ref<NSObject>(descriptionOf(value));
}

}  // namespace

Ref<NSError> kbxArchivableError(NSError* error) {
  if (!error) return nullptr;
  auto userInfo = NSMutableDictionary::dictionary();
  for (const auto& [key, value] : *error->userInfo())
    userInfo->setObjectForKey(archivableValue(value), key);
  return NSError::errorWithDomain(error->domain(), error->code(), userInfo);
}

}  // namespace kbx
