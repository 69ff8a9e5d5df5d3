// NSObject(KBX): methods and classes found by name, listed, exchanged and copied.
//
// An exchange changes what dynamic calls find, not C++ calls. It is for the whole process and meant
// for start-up, before other threads use the classes. Where there is no receiver there is nothing:
// absent, or false, without an error.
#pragma once

#include "platform/objects/NSClass.h"
#include "platform/objects/NSError.h"

namespace kbx {

class NSArray;

/// The method that instances of the receiver have for a selector, inherited ones included.
/// (kbxInstanceMethod:error:)
///
/// receiver  a class; a metaclass for class methods
///
/// Absent, with error 1400, where there is none. The error lists the receiver's own methods.
Method* kbxInstanceMethod(NSClass* receiver, SEL selector, Ref<NSError>* error);

/// The registered class of that name; absent, with error 1401, where there is none.
/// (kbxClassFromString:error:)
NSClass* kbxClassFromString(NSString* name, Ref<NSError>* error);

/// Exchanges the bodies of two methods in one class. (kbxSwizzleInstance:method:toMethod:error:)
///
/// instance  whether instance methods or class methods are meant
///
/// Inherited methods become the class's own first, so that the superclass stays as it is. False,
/// with the error of kbxInstanceMethod(), when one of them does not exist.
bool kbxSwizzleInstance(NSClass* receiver, bool instance, SEL method, SEL toMethod,
                        Ref<NSError>* error);

/// Adds a method of the receiver to another class, under the same selector.
/// (kbxCopyInstance:method:toClass:error:)
///
/// instance  whether an instance method or a class method is meant, in both classes
///
/// False, with the error of kbxInstanceMethod(), when the receiver has no such method, and with
/// error 1402 when the destination defines one itself, which stays as it is, or is absent.
bool kbxCopyInstance(NSClass* receiver, bool instance, SEL method, NSClass* toClass,
                     Ref<NSError>* error);

/// Copies a method into the class of that name and exchanges it there with another one: calls of
/// the other selector run the receiver's body, which finds the earlier one under its own selector.
/// (kbxCopyInstance:method:toClassNamed:andSwizzleWithMethod:error:)
///
/// False with the error of the step that failed, passed on unchanged. When that is the exchange,
/// the copied method stays.
bool kbxCopyInstanceToClassNamed(NSClass* receiver, bool instance, SEL method,
                                 NSString* toClassNamed, SEL andSwizzleWithMethod,
                                 Ref<NSError>* error);

/// The names of the methods that the class itself defines, in the order of their definition;
/// absent, not empty, when it defines none. (kbxDirectInstanceMethodNames)
Ref<NSArray> kbxDirectInstanceMethodNames(NSClass* receiver);
/// The same of the class of an object; of a class, its own. (kbxDirectInstanceMethodNames)
Ref<NSArray> kbxDirectInstanceMethodNames(NSObject* object);

}  // namespace kbx
