// NSError(KBX): constructors, decorators and queries of errors, and how a function fails.
//
// Errors never change: every decorator returns a new error of the same domain and code, and an
// absent one for an absent error. All of this may be called from any thread.
#pragma once

#include <cstdint>

#include "NSError+KBXKeys.h"
#include "platform/objects/NSError.h"

namespace kbx {

class NSClass;
class NSURL;

// ---- Constructors ------------------------------------------------------------------------

/// An error that names the code which failed.
/// (kbxErrorWithDomain:code:file:line:function:codeString:userInfo:)
///
/// file, function, codeString  UTF-8, stored as "KBXFile", "KBXFunction" and "KBXCodeString";
///                             raises NSInvalidArgumentException when one is null or malformed
/// line                        stored as "KBXLine"
/// userInfo                    what else to store, or absent; the four entries replace its own
Ref<NSError> kbxErrorWithDomain(NSString* domain, std::int64_t code, const char* file,
                                unsigned long line, const char* function, const char* codeString,
                                NSDictionary* userInfo);

/// Error 901 for a required argument or state. (kbxRequirementFailedError:)
///
/// requirement  its name; absent is stored as ""
Ref<NSError> kbxRequirementFailedError(NSString* requirement);

/// The same with other user info, or none. (kbxRequirementFailedError:userInfo:)
///
/// Sets the description and "KBXFailingObject"; where the exception class answers
/// kbxCurrentStackTrace, its text becomes the recovery suggestion.
Ref<NSError> kbxRequirementFailedError(NSString* requirement, NSDictionary* userInfo);

/// An error of the library's domain with "KBXFailingObject" alone.
/// (kbxErrorWithCode:failingObject:)
///
/// failingObject  absent is stored as "<nil>"
Ref<NSError> kbxErrorWithCode(std::int64_t code, NSObject* failingObject);

/// Error 1001: a resource key that means nothing for a URL. (kbxErrorWithUnsupportedKey:forURL:)
///
/// key  raises NSInvalidArgumentException when absent
/// url  its path is stored; absent is stored as "<nil>"
Ref<NSError> kbxErrorWithUnsupportedKey(NSString* key, NSURL* url);

/// Cocoa's error 259: a file does not hold what was expected.
/// (kbxErrorWithFailingObject:expectedClass:forURL:)
///
/// url  its path is stored; absent is stored as "<nil>"
Ref<NSError> kbxErrorWithFailingObject(NSObject* object, NSClass* expectedClass, NSURL* url);

/// Error 2000: a value is not the expected one. (kbxErrorWithActualValue:expectedValue:forKey:)
///
/// Each of the three is stored as "<nil>" when absent, and the description says "(null)".
Ref<NSError> kbxErrorWithActualValue(NSObject* actualValue, NSObject* expectedValue, NSString* key);

/// An error of the library's domain.
///
/// userInfo  absent is empty
Ref<NSError> KBXError1(std::int64_t code, NSDictionary* userInfo);

/// Whether two values are equal; fails with error 2000. Absent equals nothing, not even absent.
/// (kbxCheckValue:matchesValue:forKey:error:)
bool kbxCheckValue(NSObject* actualValue, NSObject* expectedValue, NSString* key,
                   Ref<NSError>* error);

// ---- Decorators --------------------------------------------------------------------------

/// The error with one user-info entry set. (kbxErrorBySettingObject:forKey:)
///
/// value  absent is stored as "<nil>"
/// key    absent gives an unchanged copy
Ref<NSError> kbxErrorBySettingObject(NSError* error, NSObject* value, NSString* key);

/// The error with each entry of a dictionary set; the very same error when the dictionary is empty
/// or absent. (kbxErrorByAddingUserInfo:)
Ref<NSError> kbxErrorByAddingUserInfo(NSError* error, NSDictionary* userInfo);

/// The error with a file mode in octal digits, such as "644". (kbxErrorBySettingMode:forKey:)
Ref<NSError> kbxErrorBySettingMode(NSError* error, std::uint32_t mode, NSString* key);

/// The error with the path of the file it is about. (kbxErrorBySettingFilePath:)
Ref<NSError> kbxErrorBySettingFilePath(NSError* error, NSString* path);
/// The same from a URL. (kbxErrorBySettingFileURL:)
Ref<NSError> kbxErrorBySettingFileURL(NSError* error, NSURL* url);
/// The same from bytes as system calls take them; null is absent. (kbxErrorBySettingCFilePath:)
Ref<NSError> kbxErrorBySettingCFilePath(NSError* error, const char* path);
/// The error with a URL object. (kbxErrorBySettingURL:)
Ref<NSError> kbxErrorBySettingURL(NSError* error, NSURL* url);
/// The error with the path of what was to be made. (kbxErrorBySettingDestinationFilePath:)
Ref<NSError> kbxErrorBySettingDestinationFilePath(NSError* error, NSString* path);

/// The error with a stack frame "function (line)" in front of those it has.
/// (kbxErrorByAddingStackFrame:line:)
///
/// function  full signature, UTF-8; null or malformed prints "(null)"
Ref<NSError> kbxErrorByAddingStackFrame(NSError* error, const char* function, unsigned long line);

/// The error with another description. (kbxErrorBySettingDescription:)
Ref<NSError> kbxErrorBySettingDescription(NSError* error, NSString* description);
/// The error with another recovery suggestion. (kbxErrorBySettingRecoverySuggestion:)
Ref<NSError> kbxErrorBySettingRecoverySuggestion(NSError* error, NSString* suggestion);
/// The error with the error behind it. (kbxErrorBySettingUnderlyingError:)
Ref<NSError> kbxErrorBySettingUnderlyingError(NSError* error, NSError* underlyingError);
/// The error with what is behind it where that is no error. (kbxErrorBySettingUnderlyingReason:)
Ref<NSError> kbxErrorBySettingUnderlyingReason(NSError* error, NSObject* reason);

/// The error with the object that failed; absent is stored as the null marker.
/// (kbxErrorBySettingFailingObject:)
Ref<NSError> kbxErrorBySettingFailingObject(NSError* error, NSObject* object);
/// The error with the object that failed, the class it should have and the class it has.
/// (kbxErrorBySettingFailingObject:expectedClass:)
///
/// object         absent: the null marker stands for it and for its class
/// expectedClass  absent is stored as "<nil>"
Ref<NSError> kbxErrorBySettingFailingObject(NSError* error, NSObject* object,
                                            NSClass* expectedClass);

/// The error with the arguments of the failed call; absent is stored as the null marker.
/// (kbxErrorBySettingArguments:)
Ref<NSError> kbxErrorBySettingArguments(NSError* error, NSObject* arguments);
/// The error with a place in the help book; absent is stored as "". (kbxErrorBySettingHelpAnchor:)
Ref<NSError> kbxErrorBySettingHelpAnchor(NSError* error, NSString* anchor);

// ---- Queries -----------------------------------------------------------------------------

/// Whether the error is this one. False for an absent error or domain. (kbxHasDomain:code:)
bool kbxHasDomain(NSError* error, NSString* domain, std::int64_t code);

/// Whether the error says that a permission is missing: Cocoa's 513, 512 and 13 and POSIX 13.
/// (kbxIsFilePermissionsError)
bool kbxIsFilePermissionsError(NSError* error);

// ---- How a function fails ----------------------------------------------------------------

/// The place named by a stack frame: the full signature and the number published for that site.
/// Both are part of the result; they are not positions in this source tree.
struct Frame {
  const char* function;
  unsigned long line;
};

/// Fails with the error that a callee left in *error: adds `frame`. Nothing without an `error`.
void passOn(Ref<NSError>* error, Frame frame);

/// Fails with a new error: stores make() with `frame` added. Makes nothing without an `error`.
template <class Make>
void fail(Ref<NSError>* error, Frame frame, Make&& make) {
  if (!error) return;
  *error = make();
  passOn(error, frame);
}

}  // namespace kbx

/// Leaves the function with an absent result when a required argument or state is missing.
/// `requirement` is a string literal: the text that the error names.
#define KBX_REQUIRE(condition, requirement, frame, error)   \
  do {                                                      \
    if (!(condition)) {                                     \
      ::kbx::fail((error), (frame), [] {                    \
        using namespace ::kbx;                              \
        return kbxRequirementFailedError(requirement##_ns); \
      });                                                   \
      return {};                                            \
    }                                                       \
  } while (false)
