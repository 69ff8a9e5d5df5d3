// KBXFunctions: raising, asserting, logging, and typed values as text. Also brings the forms of
// preconditions and assertions.
#pragma once

#include "Assertions.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSString.h"
#include "platform/text/Format.h"

namespace kbx {

/// Class-level operations; there are no instances. Safe from any thread.
///
/// Where they take a file, a line, an object and a selector, the place is told as
/// "KBXEMLXFile:14 -initWithMessageData:properties:": the last path component of the file (UTF-8),
/// the line, and, when neither the object nor the selector is absent, "+" for a class or "-" for
/// any other object and the selector. Without these the text ends behind the blank.
class KBXFunctions final : public NSObject {
  KBX_OBJECT(KBXFunctions, NSObject)
 public:
  KBXFunctions() = delete;

  /// Raises a KBXException. (raiseFile:line:object:selector:name:userInfo:format:)
  ///
  /// name      absent is "KBXException"
  /// userInfo  what else to store beside the place, or absent
  /// format    with the arguments, the reason
  template <class... Arguments>
  [[noreturn]] static void raiseFile(const char* file, unsigned long line, NSObject* object,
                                     SEL selector, NSString* name, NSDictionary* userInfo,
                                     NSString* format, const Arguments&... arguments) {
    raise(location(file, line, object, selector), name, userInfo,
          stringWithFormat(format, arguments...));
  }

  /// Logs "PLACE: Assertion Failed: MESSAGE" and raises a KBXException named
  /// "KBXAssertionFailedException" with the message as its reason.
  /// (assertionFailedForFile:line:object:selector:format:)
  template <class... Arguments>
  static void assertionFailedForFile(const char* file, unsigned long line, NSObject* object,
                                     SEL selector, NSString* format,
                                     const Arguments&... arguments) {
    assertionFailed(location(file, line, object, selector), stringWithFormat(format, arguments...));
  }

  /// Logs "PLACE] MESSAGE"; the lone bracket is wanted. (logFile:line:object:selector:format:)
  template <class... Arguments>
  static void logFile(const char* file, unsigned long line, NSObject* object, SEL selector,
                      NSString* format, const Arguments&... arguments) {
    logString(stringWithFormat("%@] %@"_ns, location(file, line, object, selector),
                               stringWithFormat(format, arguments...)));
  }

  /// Logs "FUNCTION MESSAGE". (logFunction:format:)
  template <class... Arguments>
  static void logFunction(const char* function, NSString* format, const Arguments&... arguments) {
    logString(stringWithFormat("%@ %@"_ns, NSString::stringWithUTF8String(function),
                               stringWithFormat(format, arguments...)));
  }

  /// Hands the line to the delegate, or writes it to the classic log where there is none.
  /// (logString:)
  static void logString(NSString* string);

  /// Sets who gets the lines from now on; absent for nobody. (setLoggingDelegate:)
  ///
  /// delegate  answers logString: with one string; not owned, so it must be taken back before it
  ///           dies. Set before other threads log.
  static void setLoggingDelegate(NSObject* delegate);

  /// A value as text. (stringFromPointer:typeEncoding:)
  ///
  /// pointer       the address of the value, required
  /// typeEncoding  the value's type: c s S i I q Q f d D : # ^v * r* [12c] {_NSRange=QQ}
  ///               {CGPoint=dd} {CGSize=dd} {CGRect={CGPoint=dd}{CGSize=dd}} @ ^{__CFString=}
  ///               r^{__CFString=}; any other raises "Unhandled type encoding: …"
  ///
  /// A selector is found there as a SEL, a class as an NSClass*, an object as an NSObject*. Absent
  /// for an absent selector or class. Text in an array of a known size ends with the array at the
  /// latest.
  static Ref<NSString> stringFromPointer(const void* pointer, const char* typeEncoding);

 private:
  static Ref<NSString> location(const char* file, unsigned long line, NSObject* object,
                                SEL selector);
  [[noreturn]] static void raise(NSString* location, NSString* name, NSDictionary* userInfo,
                                 NSString* reason);
  // Raises; but the assertion forms do not rely on it, so it does not promise.
  static void assertionFailed(NSString* location, NSString* message);
};

}  // namespace kbx
