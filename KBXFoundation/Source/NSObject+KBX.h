// NSObject(KBX): an object's class checked, deep copies, identity.
#pragma once

#include "platform/objects/NSClass.h"
#include "platform/objects/NSError.h"

namespace kbx {

class NSArray;
class NSData;
class NSDate;
class NSDictionary;

/// The object itself when it is of the class or of a subclass, else absent.
/// (kbxEnsureClass:error:)
///
/// Fails with error 902, which names the object and both classes. An absent object is answered by
/// nobody: the result is absent, and no error is stored.
Ref<NSObject> kbxEnsureClass(NSObject* object, NSClass* wantedClass, Ref<NSError>* error);

/// The object itself when it is of the platform's class, mutable ones included, else absent.
/// (kbxEnsureArray, kbxEnsureData, kbxEnsureDate, kbxEnsureDictionary, kbxEnsureString)
Ref<NSArray> kbxEnsureArray(NSObject* object);
Ref<NSData> kbxEnsureData(NSObject* object);
Ref<NSDate> kbxEnsureDate(NSObject* object);
Ref<NSDictionary> kbxEnsureDictionary(NSObject* object);
Ref<NSString> kbxEnsureString(NSObject* object);

/// A deep copy, by way of a keyed archive; absent for an absent object. (kbxArchiveAndUnarchive)
///
/// What was one object at several places is one object in the copy. Raises as
/// NSKeyedArchiver::archivedDataWithRootObject() does for what cannot be archived.
Ref<NSObject> kbxArchiveAndUnarchive(NSObject* object);

/// The object itself: a key that stands for its identity. (kbxObjectID)
Ref<NSObject> kbxObjectID(NSObject* object);

}  // namespace kbx
