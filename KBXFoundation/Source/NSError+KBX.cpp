#include "NSError+KBX.h"

#include "platform/files/FileNames.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

// Three markers stand for an absent value, each in its place; readers tell them apart.
NSObject* orNil(NSObject* value) { return value ? value : "<nil>"_ns; }
NSObject* orEmpty(NSString* value) { return value ? value : ""_ns; }
NSObject* orNull(NSObject* value) { return value ? value : NSNull::null(); }

Ref<NSMutableDictionary> changeable(NSDictionary* userInfo) {
  return userInfo ? userInfo->mutableCopy() : NSMutableDictionary::dictionary();
}

Ref<NSError> withUserInfo(NSError* error, NSDictionary* userInfo) {
  return NSError::errorWithDomain(error->domain(), error->code(), userInfo);
}

/// A class is its own class here, as it is for whoever asks an object for its class.
NSObject* typeOf(NSObject* object) {
  return !object || object->isClassObject() ? object : object->objectClass();
}

/// The text of the exception class's optional hook; absent where nobody installed one.
Ref<NSObject> currentStackTrace() {
  static const SEL selector("kbxCurrentStackTrace");
  NSClass* exceptions = NSException::classObject();
  return exceptions->respondsToSelector(selector) ? performSelector(exceptions, selector) : nullptr;
}

Ref<NSString> pathOf(NSURL* url) { return url ? url->path() : nullptr; }

}  // namespace

// ---- Constructors ------------------------------------------------------------------------

Ref<NSError> kbxErrorWithDomain(NSString* domain, std::int64_t code, const char* file,
                                unsigned long line, const char* function, const char* codeString,
                                NSDictionary* userInfo) {
  Ref<NSMutableDictionary> info = changeable(userInfo);
  info->setObjectForKey(NSString::stringWithUTF8String(file), fileErrorKey());
  info->setObjectForKey(NSNumber::numberWithUnsignedInteger(line), lineErrorKey());
  info->setObjectForKey(NSString::stringWithUTF8String(function), functionErrorKey());
  info->setObjectForKey(NSString::stringWithUTF8String(codeString), codeStringErrorKey());
  return NSError::errorWithDomain(domain, code, info);
}

Ref<NSError> kbxRequirementFailedError(NSString* requirement) {
  return kbxRequirementFailedError(requirement, nullptr);
}

Ref<NSError> kbxRequirementFailedError(NSString* requirement, NSDictionary* userInfo) {
  Ref<NSMutableDictionary> info = changeable(userInfo);
  info->setObjectForKey(stringWithFormat("The requirement “%@” was not satisfied."_ns, requirement),
                        NSLocalizedDescriptionKey());
  info->setObjectForKey(orEmpty(requirement), failingObjectErrorKey());
  if (Ref<NSObject> trace = currentStackTrace())
    info->setObjectForKey(trace, NSLocalizedRecoverySuggestionErrorKey());
  return KBXError1(kRequirementFailedError, info);
}

Ref<NSError> kbxErrorWithCode(std::int64_t code, NSObject* failingObject) {
  return KBXError1(
      code, NSDictionary::dictionaryWithPairs({{failingObjectErrorKey(), orNil(failingObject)}}));
}

Ref<NSError> kbxErrorWithUnsupportedKey(NSString* key, NSURL* url) {
  auto info = NSDictionary::dictionaryWithPairs({{failingKeyErrorKey(), key}});
  return kbxErrorBySettingFileURL(KBXError1(kUnsupportedKeyError, info), url);
}

Ref<NSError> kbxErrorWithFailingObject(NSObject* object, NSClass* expectedClass, NSURL* url) {
  auto info = NSDictionary::dictionaryWithPairs({{NSFilePathErrorKey(), orNil(pathOf(url))}});
  auto error = NSError::errorWithDomain(NSCocoaErrorDomain(), NSFileReadCorruptFileError, info);
  return kbxErrorBySettingFailingObject(error, object, expectedClass);
}

Ref<NSError> kbxErrorWithActualValue(NSObject* actualValue, NSObject* expectedValue,
                                     NSString* key) {
  Ref<NSString> description = stringWithFormat(
      "The value for %@ was expected to be %@ but was %@."_ns, key, expectedValue, actualValue);
  return KBXError1(kUnexpectedValueError, NSDictionary::dictionaryWithPairs(
                                              {{actualValueErrorKey(), orNil(actualValue)},
                                               {expectedValueErrorKey(), orNil(expectedValue)},
                                               {failingKeyErrorKey(), orNil(key)},
                                               {NSLocalizedDescriptionKey(), description}}));
}

Ref<NSError> KBXError1(std::int64_t code, NSDictionary* userInfo) {
  return NSError::errorWithDomain(KBXErrorDomain(), code, userInfo);
}

bool kbxCheckValue(NSObject* actualValue, NSObject* expectedValue, NSString* key,
                   Ref<NSError>* error) {
  if (isEqual(actualValue, expectedValue)) return true;
  fail(error, {"+[NSError(KBX) kbxCheckValue:matchesValue:forKey:error:]", 332},
       [=] { return kbxErrorWithActualValue(actualValue, expectedValue, key); });
  return false;
}

// ---- Decorators --------------------------------------------------------------------------

Ref<NSError> kbxErrorBySettingObject(NSError* error, NSObject* value, NSString* key) {
  if (!error) return nullptr;
  if (!key) return withUserInfo(error, error->userInfo());
  Ref<NSMutableDictionary> info = changeable(error->userInfo());
  info->setObjectForKey(orNil(value), key);
  return withUserInfo(error, info);
}

Ref<NSError> kbxErrorByAddingUserInfo(NSError* error, NSDictionary* userInfo) {
  if (!error || !userInfo || userInfo->count() == 0) return error;
  Ref<NSMutableDictionary> info = changeable(error->userInfo());
  info->addEntriesFromDictionary(userInfo);
  return withUserInfo(error, info);
}

Ref<NSError> kbxErrorBySettingMode(NSError* error, std::uint32_t mode, NSString* key) {
  return kbxErrorBySettingObject(error, stringWithFormat("%o"_ns, mode), key);
}

Ref<NSError> kbxErrorBySettingFilePath(NSError* error, NSString* path) {
  return kbxErrorBySettingObject(error, path, NSFilePathErrorKey());
}

Ref<NSError> kbxErrorBySettingFileURL(NSError* error, NSURL* url) {
  return kbxErrorBySettingFilePath(error, pathOf(url));
}

Ref<NSError> kbxErrorBySettingCFilePath(NSError* error, const char* path) {
  return kbxErrorBySettingFilePath(error,
                                   path ? stringWithFileSystemRepresentation(path) : nullptr);
}

Ref<NSError> kbxErrorBySettingURL(NSError* error, NSURL* url) {
  return kbxErrorBySettingObject(error, url, NSURLErrorKey());
}

Ref<NSError> kbxErrorBySettingDestinationFilePath(NSError* error, NSString* path) {
  return kbxErrorBySettingObject(error, path, destinationFilePathErrorKey());
}

Ref<NSError> kbxErrorByAddingStackFrame(NSError* error, const char* function, unsigned long line) {
  if (!error) return nullptr;
  auto frames = NSMutableArray::array();
  frames->addObject(
      stringWithFormat("%@ (%lu)"_ns, NSString::stringWithUTF8String(function), line));
  if (auto* earlier = cast<NSArray>(error->userInfo()->objectForKey(stackFramesErrorKey())))
    frames->addObjectsFromArray(earlier);
  return kbxErrorBySettingObject(error, frames->copyObject(), stackFramesErrorKey());
}

Ref<NSError> kbxErrorBySettingDescription(NSError* error, NSString* description) {
  return kbxErrorBySettingObject(error, description, NSLocalizedDescriptionKey());
}

Ref<NSError> kbxErrorBySettingRecoverySuggestion(NSError* error, NSString* suggestion) {
  return kbxErrorBySettingObject(error, suggestion, NSLocalizedRecoverySuggestionErrorKey());
}

Ref<NSError> kbxErrorBySettingUnderlyingError(NSError* error, NSError* underlyingError) {
  return kbxErrorBySettingObject(error, underlyingError, NSUnderlyingErrorKey());
}

Ref<NSError> kbxErrorBySettingUnderlyingReason(NSError* error, NSObject* reason) {
  return kbxErrorBySettingObject(error, reason, underlyingReasonErrorKey());
}

Ref<NSError> kbxErrorBySettingFailingObject(NSError* error, NSObject* object) {
  return kbxErrorBySettingObject(error, orNull(object), failingObjectErrorKey());
}

Ref<NSError> kbxErrorBySettingFailingObject(NSError* error, NSObject* object,
                                            NSClass* expectedClass) {
  Ref<NSError> result = kbxErrorBySettingFailingObject(error, object);
  result = kbxErrorBySettingObject(result, expectedClass, expectedTypeErrorKey());
  return kbxErrorBySettingObject(result, orNull(typeOf(object)), actualTypeErrorKey());
}

Ref<NSError> kbxErrorBySettingArguments(NSError* error, NSObject* arguments) {
  return kbxErrorBySettingObject(error, orNull(arguments), argumentsErrorKey());
}

Ref<NSError> kbxErrorBySettingHelpAnchor(NSError* error, NSString* anchor) {
  return kbxErrorBySettingObject(error, orEmpty(anchor), NSHelpAnchorErrorKey());
}

// ---- Queries -----------------------------------------------------------------------------

bool kbxHasDomain(NSError* error, NSString* domain, std::int64_t code) {
  return error && error->code() == code && isEqual(error->domain(), domain);
}

bool kbxIsFilePermissionsError(NSError* error) {
  // Any failure to write counts, and so does the system's number in the wrong domain; a file that
  // must not be read does not. All three are wanted.
  constexpr std::int64_t kPermissionDenied = 13;
  return kbxHasDomain(error, NSCocoaErrorDomain(), NSFileWriteNoPermissionError) ||
         kbxHasDomain(error, NSCocoaErrorDomain(), NSFileWriteUnknownError) ||
         kbxHasDomain(error, NSPOSIXErrorDomain(), kPermissionDenied) ||
         kbxHasDomain(error, NSCocoaErrorDomain(), kPermissionDenied);
}

// ---- How a function fails ----------------------------------------------------------------

void passOn(Ref<NSError>* error, Frame frame) {
  if (error) *error = kbxErrorByAddingStackFrame(*error, frame.function, frame.line);
}

}  // namespace kbx
