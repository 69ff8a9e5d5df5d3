// DynamicCalls: asking objects and names for what the method tables know of them.
#pragma once

#include "platform/objects/NSClass.h"
#include "platform/runtime/NSMethodSignature.h"

namespace kbx {

/// The registered class of a name; absent for an absent name and where there is none.
KBX_PLATFORM NSClass* NSClassFromString(NSString* name);
/// The selector's name; absent for an absent selector.
KBX_PLATFORM Ref<NSString> NSStringFromSelector(SEL selector);

/// The signature of what a dynamic call of the selector finds; absent where it finds nothing and
/// for an absent receiver. (methodSignatureForSelector:)
///
/// Raises NSInvalidArgumentException when the types of the method cannot be read.
KBX_PLATFORM NSMethodSignature* methodSignatureForSelector(NSObject* receiver, SEL selector);
/// The signature of a method; raises NSInvalidArgumentException when its types cannot be read.
KBX_PLATFORM NSMethodSignature* signatureOf(const Method& method);

/// The body of a method at this moment: another thread may be exchanging it.
KBX_PLATFORM IMP implementationOf(const Method& method);

/// Tells the receiver that it does not know a selector. (doesNotRecognizeSelector:)
///
/// A dynamic call of "doesNotRecognizeSelector:". What the root class has there raises
/// NSInvalidArgumentException with "-[NSNumber length]: unrecognized selector sent to instance
/// 0x…"; a class with a method of its own may return.
KBX_PLATFORM void doesNotRecognizeSelector(NSObject* receiver, SEL selector);

}  // namespace kbx
