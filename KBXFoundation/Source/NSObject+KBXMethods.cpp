#include "NSObject+KBXMethods.h"

#include "NSError+KBX.h"
#include "platform/objects/NSArray.h"
#include "platform/runtime/DynamicCalls.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

/// An error without any user info yet.
Ref<NSError> bareError(ErrorCode code) {
  return NSError::errorWithDomain(KBXErrorDomain(), code, nullptr);
}

Ref<NSError> methodNotFoundError(NSClass* searched, SEL selector) {
  auto name = NSStringFromSelector(selector);
  auto error = bareError(kMethodNotFoundError);
  error = kbxErrorBySettingObject(error, searched, failingObjectErrorKey());
  error = kbxErrorBySettingObject(error, name, failingKeyErrorKey());
  error =
      kbxErrorBySettingObject(error, kbxDirectInstanceMethodNames(searched), actualValueErrorKey());
  // The class in the first text, the selector in the second: both are wanted so.
  error = kbxErrorBySettingDescription(
      error, stringWithFormat("The %@ method was not found."_ns, searched));
  return kbxErrorBySettingRecoverySuggestion(
      error, stringWithFormat("The method %@ is missing."_ns, name));
}

Ref<NSError> classNotFoundError(NSString* name) {
  auto error = kbxErrorBySettingObject(bareError(kClassNotFoundError), name, failingKeyErrorKey());
  return kbxErrorBySettingDescription(error, "No class found."_ns);
}

Ref<NSError> methodNotAddedError(NSClass* destination, SEL selector) {
  auto error = bareError(kMethodNotAddedError);
  error = kbxErrorBySettingObject(error, NSStringFromSelector(selector), failingKeyErrorKey());
  error = kbxErrorBySettingObject(error, destination, failingObjectErrorKey());
  return kbxErrorBySettingDescription(error, "Could not add method."_ns);
}

/// The class that holds the instance methods, or the class methods, of a class.
NSClass* holderOf(NSClass* receiver, bool instance) {
  return instance || !receiver ? receiver : receiver->objectClass();
}

bool addCopy(NSClass* destination, const Method& method) {
  return destination &&
         destination->addMethod(method.selector, implementationOf(method), method.types);
}

}  // namespace

Method* kbxInstanceMethod(NSClass* receiver, SEL selector, Ref<NSError>* error) {
  if (!receiver) return nullptr;
  if (Method* method = receiver->instanceMethod(selector)) return method;
  fail(error, {"+[NSObject(KBX) kbxInstanceMethod:error:]", 76},
       [&] { return methodNotFoundError(receiver, selector); });
  return nullptr;
}

NSClass* kbxClassFromString(NSString* name, Ref<NSError>* error) {
  if (NSClass* found = NSClassFromString(name)) return found;
  fail(error, {"+[NSObject(KBX) kbxClassFromString:error:]", 88},
       [&] { return classNotFoundError(name); });
  return nullptr;
}

bool kbxSwizzleInstance(NSClass* receiver, bool instance, SEL method, SEL toMethod,
                        Ref<NSError>* error) {
  NSClass* target = holderOf(receiver, instance);
  const Method* first = kbxInstanceMethod(target, method, error);
  const Method* second = first ? kbxInstanceMethod(target, toMethod, error) : nullptr;
  if (!second) return false;
  // Nothing happens where the target has its own already.
  addCopy(target, *first);
  addCopy(target, *second);
  NSClass::exchangeImplementations(target->instanceMethod(method),
                                   target->instanceMethod(toMethod));
  return true;
}

bool kbxCopyInstance(NSClass* receiver, bool instance, SEL method, NSClass* toClass,
                     Ref<NSError>* error) {
  const Method* found = kbxInstanceMethod(holderOf(receiver, instance), method, error);
  if (!found) return false;
  NSClass* destination = holderOf(toClass, instance);
  if (addCopy(destination, *found)) return true;
  fail(error, {"+[NSObject(KBX) kbxCopyInstance:method:toClass:error:]", 137},
       [&] { return methodNotAddedError(destination, method); });
  return false;
}

bool kbxCopyInstanceToClassNamed(NSClass* receiver, bool instance, SEL method,
                                 NSString* toClassNamed, SEL andSwizzleWithMethod,
                                 Ref<NSError>* error) {
  if (!receiver) return false;
  NSClass* destination = kbxClassFromString(toClassNamed, error);
  return destination && kbxCopyInstance(receiver, instance, method, destination, error) &&
         kbxSwizzleInstance(destination, instance, method, andSwizzleWithMethod, error);
}

Ref<NSArray> kbxDirectInstanceMethodNames(NSClass* receiver) {
  if (!receiver) return nullptr;
  NSArray::Elements names;
  for (SEL selector : receiver->directSelectors()) names.push_back(NSStringFromSelector(selector));
  return names.empty() ? nullptr : NSArray::arrayWithElements(std::move(names));
}

Ref<NSArray> kbxDirectInstanceMethodNames(NSObject* object) {
  if (!object) return nullptr;
  auto* receiver = cast<NSClass>(object);
  return kbxDirectInstanceMethodNames(receiver ? receiver : object->objectClass());
}

}  // namespace kbx
