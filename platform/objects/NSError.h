// NSError: what failed (domain and code) and what is known about it (user info).
#pragma once

#include <cstdint>

#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSString.h"

namespace kbx {

inline NSString* NSCocoaErrorDomain() { return "NSCocoaErrorDomain"_ns; }
inline NSString* NSPOSIXErrorDomain() { return "NSPOSIXErrorDomain"_ns; }
inline NSString* NSOSStatusErrorDomain() { return "NSOSStatusErrorDomain"_ns; }
inline NSString* NSXMLParserErrorDomain() { return "NSXMLParserErrorDomain"_ns; }

inline NSString* NSFilePathErrorKey() { return "NSFilePath"_ns; }
inline NSString* NSURLErrorKey() { return "NSURL"_ns; }
inline NSString* NSUnderlyingErrorKey() { return "NSUnderlyingError"_ns; }
inline NSString* NSLocalizedDescriptionKey() { return "NSLocalizedDescription"_ns; }
inline NSString* NSLocalizedFailureReasonErrorKey() { return "NSLocalizedFailureReason"_ns; }
inline NSString* NSLocalizedRecoverySuggestionErrorKey() {
  return "NSLocalizedRecoverySuggestion"_ns;
}
/// Which operation failed, an array of one word: "Remove" and the like.
inline NSString* NSUserStringVariantErrorKey() { return "NSUserStringVariant"_ns; }
inline NSString* NSHelpAnchorErrorKey() { return "NSHelpAnchor"_ns; }

/// Codes of NSCocoaErrorDomain that the platform makes.
enum NSCocoaErrorCode : std::int64_t {
  NSFileNoSuchFileError = 4,
  NSFileReadUnknownError = 256,
  NSFileReadNoPermissionError = 257,
  NSFileReadCorruptFileError = 259,
  NSFileReadNoSuchFileError = 260,
  NSFileReadTooLargeError = 263,
  NSFileReadUnknownStringEncodingError = 264,
  NSFileWriteUnknownError = 512,
  NSFileWriteNoPermissionError = 513,
  NSFileWriteFileExistsError = 516,
  NSFileWriteOutOfSpaceError = 640,
  NSFileWriteVolumeReadOnlyError = 642,
  NSPropertyListReadCorruptError = 3840,
  NSPropertyListReadUnknownVersionError = 3841,
  NSPropertyListReadStreamError = 3842,
  NSPropertyListWriteStreamError = 3851,
  NSPropertyListWriteInvalidError = 3852,
};

/// An immutable error. Everything that adds to it returns a new one. May be shared by threads.
class KBX_PLATFORM NSError final : public NSObject {
  KBX_OBJECT(NSError, NSObject)
 public:
  /// domain    required; raises NSInvalidArgumentException when absent
  /// userInfo  absent is empty; a mutable one is copied
  static Ref<NSError> errorWithDomain(NSString* domain, std::int64_t code, NSDictionary* userInfo);

  NSString* domain() const noexcept { return _domain; }
  std::int64_t code() const noexcept { return _code; }
  /// Never absent.
  NSDictionary* userInfo() const noexcept { return _userInfo; }

  /// The user info's description, else a sentence made of the failure reason, else "The operation
  /// couldn’t be completed. (DOMAIN error CODE.)". Never absent. (localizedDescription)
  Ref<NSString> localizedDescription() const;
  /// The user info's reason, else the platform's for the domain and code (the system's text for
  /// POSIX codes), else absent. (localizedFailureReason)
  Ref<NSString> localizedFailureReason() const;
  /// The user info's suggestion, or absent. (localizedRecoverySuggestion)
  Ref<NSString> localizedRecoverySuggestion() const;

  /// One line: Error Domain=D Code=N "description" UserInfo={key=value, …}, without the last part
  /// when the user info is empty. What comes behind 2^24 units prints as "...", and so does what
  /// takes too much work because the user info holds the same errors again and again.
  Ref<NSString> description() const override;
  bool isEqual(NSObject* other) const override;
  std::size_t hash() const override;

 private:
  NSError(NSString* domain, std::int64_t code, Ref<NSDictionary> userInfo);

  const Ref<NSString> _domain;
  const std::int64_t _code;
  const Ref<NSDictionary> _userInfo;
};

/// The error of a failed system call: NSPOSIXErrorDomain with the number (an `errno` value).
KBX_PLATFORM Ref<NSError> posixError(int number);

}  // namespace kbx
