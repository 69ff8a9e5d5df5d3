#include "KBXException.h"

#include "platform/objects/NSClass.h"
#include "platform/text/Format.h"

namespace kbx {

KBX_CLASS(KBXException)

namespace {

[[maybe_unused]] const bool answersReasons =
    addMethod<&KBXException::reason>(KBXException::classObject(), "reason") &&
    addMethod<&KBXException::kbxReason>(KBXException::classObject(), "kbxReason");

}  // namespace

Ref<KBXException> KBXException::exceptionWithName(NSString* name, NSString* reason,
                                                  NSDictionary* userInfo) {
  return Ref<KBXException>::adopt(new KBXException(name, reason, userInfo));
}

Ref<NSString> KBXException::reason() const {
  NSObject* location = userInfo() ? userInfo()->objectForKey(exceptionLocationKey()) : nullptr;
  return stringWithFormat("%@ at %@"_ns, kbxReason(), location);
}

Ref<NSString> KBXException::kbxReason() const { return NSException::reason(); }

}  // namespace kbx
