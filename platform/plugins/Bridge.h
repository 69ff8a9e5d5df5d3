// Bridge: crossings between the C references of the plug-in border and our objects.
//
// Here both are the same address. Where they are not, this is the file to change.
#pragma once

#include "platform/CoreFoundation.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSString.h"
#include "platform/plugins/NSUUID.h"
#include "platform/plugins/PlugIn.h"

namespace kbx {

// fromCF  the object behind a reference, borrowed
// toCF    the reference of an object, borrowed
#define KBX_BRIDGE(Object, Reference)                                                    \
  inline Object* fromCF(Reference reference) {                                           \
    return static_cast<Object*>(const_cast<void*>(static_cast<const void*>(reference))); \
  }                                                                                      \
  inline Reference toCF(Object* object) {                                                \
    return static_cast<Reference>(static_cast<void*>(object));                           \
  }

KBX_BRIDGE(NSString, CFStringRef)
KBX_BRIDGE(NSArray, CFArrayRef)
KBX_BRIDGE(NSDictionary, CFDictionaryRef)
KBX_BRIDGE(NSMutableDictionary, CFMutableDictionaryRef)
KBX_BRIDGE(NSURL, CFURLRef)
KBX_BRIDGE(NSUUID, CFUUIDRef)
KBX_BRIDGE(PlugIn, CFPlugInRef)
#undef KBX_BRIDGE

/// The object behind a reference of unknown class, borrowed.
inline NSObject* objectFromCF(CFTypeRef reference) {
  return static_cast<NSObject*>(const_cast<void*>(reference));
}
/// The reference of any object, borrowed.
inline CFTypeRef toCFType(NSObject* object) { return object; }

/// Takes over the reference that a Create or Copy function has given.
template <class Reference>
auto adoptCF(Reference reference) {
  auto* object = fromCF(reference);
  return Ref<std::remove_pointer_t<decltype(object)>>::adopt(object);
}
/// Gives the caller of a Create or Copy function its reference.
template <class Object>
auto leakToCF(Ref<Object> object) {
  return toCF(object.leak());
}

}  // namespace kbx
