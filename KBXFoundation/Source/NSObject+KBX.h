// NSObject(KBX): operations on every object.
#pragma once

#include "platform/objects/NSClass.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// The object itself when it is of the class or of a subclass, else absent.
/// (kbxEnsureClass:error:)
///
/// Fails with error 902, which names the object and both classes. An absent object is answered by
/// nobody: the result is absent, and no error is stored.
Ref<NSObject> kbxEnsureClass(NSObject* object, NSClass* wantedClass, Ref<NSError>* error);

}  // namespace kbx
