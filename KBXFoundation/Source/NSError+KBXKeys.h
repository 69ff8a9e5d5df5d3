// NSError(KBX): the domain, the codes and the user-info keys of the library's errors.
#pragma once

#include "platform/objects/NSError.h"

namespace kbx {

/// The domain of every error that the library makes itself.
inline NSString* KBXErrorDomain() { return "KBXErrorDomain"_ns; }

/// Codes of the library's domain. A caller of kbxErrorWithCode() or KBXError1() may choose others.
enum ErrorCode : std::int64_t {
  kExceptionError = 5,            // an exception turned into an error
  kDataNotDecodedError = 500,     // data could not be decoded to a string
  kStringNotEncodedError = 501,   // a string could not be encoded to data
  kRequirementFailedError = 901,  // a required argument or state is missing
  kUnexpectedClassError = 902,    // an object is not of the expected class
  kUnsupportedKeyError = 1001,    // a resource key is not supported for a URL
  kMethodNotFoundError = 1400,    // an instance method was not found
  kClassNotFoundError = 1401,     // no class of the given name
  kMethodNotAddedError = 1402,    // a method could not be added to a class
  kUnexpectedValueError = 2000,   // a value differs from the expected value
};

// Where an error was made: a source file's path, a line, a function and the failing code's text.
inline NSString* fileErrorKey() { return "KBXFile"_ns; }
inline NSString* lineErrorKey() { return "KBXLine"_ns; }
inline NSString* functionErrorKey() { return "KBXFunction"_ns; }
inline NSString* codeStringErrorKey() { return "KBXCodeString"_ns; }

/// An array of strings "signature (line)", outermost caller first.
inline NSString* stackFramesErrorKey() { return "KBXStackFrames"_ns; }

// What failed, and with what.
inline NSString* failingObjectErrorKey() { return "KBXFailingObject"_ns; }
inline NSString* expectedTypeErrorKey() { return "KBXExpectedType"_ns; }
inline NSString* actualTypeErrorKey() { return "KBXActualType"_ns; }
inline NSString* failingKeyErrorKey() { return "KBXFailingKey"_ns; }
inline NSString* actualValueErrorKey() { return "KBXActualValue"_ns; }
inline NSString* expectedValueErrorKey() { return "KBXExpectedValue"_ns; }
inline NSString* argumentsErrorKey() { return "KBXArguments"_ns; }
inline NSString* underlyingReasonErrorKey() { return "KBXUnderlyingReason"_ns; }

// What could not be converted, and the encoding as an unsigned number.
inline NSString* inputObjectErrorKey() { return "KBXInputObject"_ns; }
inline NSString* stringErrorKey() { return "KBXString"_ns; }
inline NSString* stringEncodingErrorKey() { return "KBXStringEncoding"_ns; }

// What an error made of an exception adds.
inline NSString* shortFailureReasonErrorKey() { return "KBXShortFailureReason"_ns; }
inline NSString* isMacAppStoreVersionErrorKey() { return "KBXIsMacAppStoreVersion"_ns; }
inline NSString* isInAppSandboxErrorKey() { return "KBXIsInAppSandbox"_ns; }

/// The path of the file that was to be made; NSFilePathErrorKey() is the one it was made from.
inline NSString* destinationFilePathErrorKey() { return "NSDestinationFilePath"_ns; }

}  // namespace kbx
