#include "KBXFunctions.h"

#include <atomic>

#include "KBXException.h"
#include "platform/logging/NSLog.h"

namespace kbx {

KBX_CLASS(KBXFunctions)

namespace {

// Not owned: whoever sets it takes it back.
std::atomic<NSObject*> loggingDelegate{nullptr};

void callLogString(NSObject* delegate, NSString* string) {
  static const SEL selector("logString:");
  performSelector(delegate, selector, string);
}

Ref<NSString> place(const char* file, unsigned long line) {
  Ref<NSString> path = NSString::stringWithUTF8String(file);
  return path ? stringWithFormat("%@:%lu"_ns, path->lastPathComponent(), line) : nullptr;
}

Ref<NSString> method(NSObject* object, SEL selector) {
  if (!object || !selector) return NSString::string();
  return stringWithFormat("%c%s"_ns, object->isClassObject() ? '+' : '-', selector.name());
}

}  // namespace

Ref<NSString> KBXFunctions::location(const char* file, unsigned long line, NSObject* object,
                                     SEL selector) {
  return stringWithFormat("%@ %@"_ns, place(file, line), method(object, selector));
}

void KBXFunctions::raise(NSString* location, NSString* name, NSDictionary* userInfo,
                         NSString* reason) {
  Ref<NSMutableDictionary> info =
      userInfo ? userInfo->mutableCopy() : NSMutableDictionary::dictionary();
  info->setObjectForKey(location, exceptionLocationKey());
  KBXException::exceptionWithName(name ? name : "KBXException"_ns, reason, info)->raise();
}

void KBXFunctions::assertionFailed(NSString* location, NSString* message) {
  logString(stringWithFormat("%@: Assertion Failed: %@"_ns, location, message));
  raise(location, "KBXAssertionFailedException"_ns, nullptr, message);
}

void KBXFunctions::logString(NSString* string) {
  if (NSObject* delegate = loggingDelegate.load())
    callLogString(delegate, string);
  else
    NSLog("%@"_ns, string);
}

void KBXFunctions::setLoggingDelegate(NSObject* delegate) { loggingDelegate.store(delegate); }

}  // namespace kbx
