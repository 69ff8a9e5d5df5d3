#include "NSObject+KBX.h"

#include "NSError+KBX.h"

namespace kbx {
namespace {

/// A class is its own class here, as it is for whoever asks an object for its class.
NSObject* typeOf(NSObject* object) {
  return object->isClassObject() ? object : object->objectClass();
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

}  // namespace kbx
