#include "platform/objects/NSAssertionHandler.h"

#include "platform/logging/NSLog.h"
#include "platform/objects/NSException.h"

namespace kbx {

KBX_CLASS(NSAssertionHandler)

namespace {

Ref<NSString> orElse(const char* text, NSString* substitute) {
  Ref<NSString> string = NSString::stringWithUTF8String(text);
  return string ? string : Ref<NSString>(substitute);
}

[[noreturn]] void raiseInconsistency(NSString* reason) {
  NSException::exceptionWithName(NSInternalInconsistencyException(), reason, nullptr)->raise();
}

}  // namespace

NSAssertionHandler* NSAssertionHandler::currentHandler() {
  static auto* const handler = new NSAssertionHandler;
  return handler;
}

void NSAssertionHandler::failInMethod(SEL selector, NSObject* object, NSString* file,
                                      std::int64_t lineNumber, NSString* reason) {
  const bool isClass = object && object->isClassObject();
  NSObject* named = isClass || !object ? object : object->objectClass();
  NSLog("*** Assertion failure in %s[%@ %s], %@:%ld"_ns, isClass ? "+" : "-", named,
        selector.name(), file, lineNumber);
  raiseInconsistency(reason);
}

void NSAssertionHandler::failInFunction(NSString* function, NSString* file, std::int64_t lineNumber,
                                        NSString* reason) {
  NSLog("*** Assertion failure in %@, %@:%ld"_ns, function, file, lineNumber);
  raiseInconsistency(reason);
}

void failParameterInMethod(SEL selector, NSObject* object, const char* file,
                           std::int64_t lineNumber, const char* condition) {
  NSAssertionHandler::currentHandler()->handleFailureInMethod(
      selector, object, orElse(file, "<Unknown File>"_ns), lineNumber,
      "Invalid parameter not satisfying: %@"_ns, NSString::stringWithUTF8String(condition));
}

void failParameterInFunction(const char* function, const char* file, std::int64_t lineNumber,
                             const char* condition) {
  NSAssertionHandler::currentHandler()->handleFailureInFunction(
      orElse(function, "<Unknown Function>"_ns), orElse(file, "<Unknown File>"_ns), lineNumber,
      "Invalid parameter not satisfying: %@"_ns, NSString::stringWithUTF8String(condition));
}

}  // namespace kbx
