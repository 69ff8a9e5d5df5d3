#include "NSObject+KBX.h"

#include "NSError+KBX.h"
#include "platform/archives/NSKeyedArchiver.h"
#include "platform/archives/NSKeyedUnarchiver.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"

namespace kbx {
namespace {

/// A class is its own class here, as it is for whoever asks an object for its class.
NSObject* typeOf(NSObject* object) {
  return object->isClassObject() ? object : object->objectClass();
}

template <class T>
Ref<T> ensured(NSObject* object) {
  return cast<T>(kbxEnsureClass(object, T::classObject(), nullptr));
}

}  // namespace

Ref<NSObject> kbxEnsureClass(NSObject* object, NSClass* wantedClass, Ref<NSError>* error) {
  if (!object || object->isKindOfClass(wantedClass)) return object;
  fail(error, {"-[NSObject(KBX) kbxEnsureClass:error:]", 34}, [&] {
    auto userInfo = NSDictionary::dictionaryWithPairs({
        {failingObjectErrorKey(), object},
        {expectedTypeErrorKey(), wantedClass},
        {actualTypeErrorKey(), typeOf(object)},
    });
    return KBXError1(kUnexpectedClassError, userInfo);
  });
  return nullptr;
}

Ref<NSArray> kbxEnsureArray(NSObject* object) { return ensured<NSArray>(object); }
Ref<NSData> kbxEnsureData(NSObject* object) { return ensured<NSData>(object); }
Ref<NSDate> kbxEnsureDate(NSObject* object) { return ensured<NSDate>(object); }
Ref<NSDictionary> kbxEnsureDictionary(NSObject* object) { return ensured<NSDictionary>(object); }
Ref<NSString> kbxEnsureString(NSObject* object) { return ensured<NSString>(object); }

Ref<NSObject> kbxArchiveAndUnarchive(NSObject* object) {
  if (!object) return nullptr;
  return NSKeyedUnarchiver::unarchiveObjectWithData(
      NSKeyedArchiver::archivedDataWithRootObject(object));
}

Ref<NSObject> kbxObjectID(NSObject* object) { return object; }

}  // namespace kbx
