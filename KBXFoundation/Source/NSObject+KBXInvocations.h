// NSObject(KBX): calls by selector, with typed arguments and results, and for each of many.
//
// An absent receiver answers nothing, false or 0. What the receiver does not answer raises
// NSInvalidArgumentException, "-[Widget label]: unrecognized selector sent to instance 0x…".
#pragma once

#include <cstdint>
#include <initializer_list>

#include "platform/objects/NSClass.h"

namespace kbx {

class NSArray;

/// The four-character code that stands for no answer: "Unin".
inline constexpr std::uint32_t kUninitializedOSType = 0x556E696E;

/// Calls a method and stores its result. (kbxGetReturnValue:selector:argumentAddresses:)
///
/// returnValue        where to store the result, in the width of its type, or nullptr to drop it;
///                    an object result goes into the Ref<NSObject> found there, and nothing is
///                    stored for void
/// argumentAddresses  where to find each argument, in the width of its type. The method's types
///                    say how many are read; further ones are not looked at. Only the first may be
///                    absent: that argument is zero then
///
/// Raises NSInvalidArgumentException when there are too few addresses, or another one is absent.
void kbxGetReturnValue(NSObject* object, void* returnValue, SEL selector,
                       std::initializer_list<const void*> argumentAddresses);

/// What a method answers as a BOOL; false when its result is void. (kbxPerformBOOLSelector:)
///
/// Here and below: raises NSInvalidArgumentException, without a call, when the result does not fit
/// into the one that is asked for or the argument is wider than the one that is given.
bool kbxPerformBOOLSelector(NSObject* object, SEL selector);
/// The same with an object, which may be absent. (kbxPerformBOOLSelector:withObject:)
bool kbxPerformBOOLSelector(NSObject* object, SEL selector, NSObject* withObject);
/// What a method answers as a four-character code; kUninitializedOSType when its result is void.
/// (kbxPerformOSTypeSelector:)
std::uint32_t kbxPerformOSTypeSelector(NSObject* object, SEL selector);

/// Calls a method with one value and drops its result. (kbxPerformVoidSelector:withBool:)
void kbxPerformVoidSelectorWithBool(NSObject* object, SEL selector, bool withBool);
/// The same for a four-character code. (kbxPerformVoidSelector:withOSType:)
void kbxPerformVoidSelectorWithOSType(NSObject* object, SEL selector, std::uint32_t withOSType);
/// The same for an integer of 64 bits. (kbxPerformVoidSelector:withLongLong:)
void kbxPerformVoidSelectorWithLongLong(NSObject* object, SEL selector, std::int64_t withLongLong);

/// Calls a method with each member of an array, or each key of a dictionary, in their order.
/// (kbxDo:withEach:)
///
/// withEach  absent has no members; raises NSInvalidArgumentException for no collection, and
///           NSGenericException when it changes meanwhile
void kbxDo(NSObject* object, SEL selector, NSObject* withEach);
/// The same; what the calls answer, in their order. (kbxCollect:withEach:)
///
/// Raises NSInvalidArgumentException when a call answers no object. Absent for an absent receiver
/// only.
Ref<NSArray> kbxCollect(NSObject* object, SEL selector, NSObject* withEach);

}  // namespace kbx
