#include "NSError+KBXException.h"

#include "NSError+KBX.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/objects/NSNumber.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

/// What an optional method without arguments answers; absent where there is no such method.
Ref<NSObject> ask(NSObject* receiver, const char* selector) {
  const SEL question(selector);
  return receiver->respondsToSelector(question) ? performSelector(receiver, question) : nullptr;
}

/// The same for a method that answers a BOOL.
bool isTrue(NSObject* receiver, const char* selector) {
  Method* method = receiver->objectClass()->instanceMethod(SEL(selector));
  signed char answer = 0;
  if (method && method->types.starts_with('c')) invoke(receiver, *method, &answer, {});
  return answer;
}

Ref<NSObject> stackTrace(NSException* exception) {
  if (!exception->respondsToSelector(SEL("kbxStackTrace"))) return "<unknown>"_ns;
  Ref<NSObject> trace = ask(exception, "kbxStackTrace");
  return trace ? trace : ask(exception->objectClass(), "kbxCurrentStackTrace");
}

Ref<NSString> failureReason(NSException* exception, NSObject* trace) {
  return stringWithFormat("%@ - %@\nStack Trace: %@"_ns, exception->name(), exception->reason(),
                          trace);
}

/// Which edition of which kind of process raised it. The edition is a question to the object that
/// stands for the process, and without an answer to it the other one is not asked either: where
/// only the class answers, as it does here, nothing is added. This is wanted.
void addEdition(NSMutableDictionary* info) {
  NSClass* processInfo = NSClass::named("NSProcessInfo");
  if (!processInfo || !processInfo->instanceMethod(SEL("kbxIsMacAppStoreVersion"))) return;
  Ref<NSObject> process = ask(processInfo, "processInfo");
  if (process && isTrue(process, "kbxIsMacAppStoreVersion"))
    info->setObjectForKey(NSNumber::numberWithBool(true), isMacAppStoreVersionErrorKey());
  if (isTrue(processInfo, "kbxIsInAppSandbox"))
    info->setObjectForKey(NSNumber::numberWithBool(true), isInAppSandboxErrorKey());
}

}  // namespace

Ref<NSError> kbxErrorFromException(NSException* exception) {
  if (!exception) raiseInvalidArgument("+[NSError kbxErrorFromException:]: nil exception");
  Ref<NSMutableDictionary> info = exception->userInfo() ? exception->userInfo()->mutableCopy()
                                                        : NSMutableDictionary::dictionary();
  info->setObjectForKey(exception->name(), NSLocalizedDescriptionKey());
  info->setObjectForKey(failureReason(exception, stackTrace(exception)),
                        NSLocalizedFailureReasonErrorKey());
  if (exception->respondsToSelector(SEL("kbxShortStackTrace")))
    info->setObjectForKey(failureReason(exception, ask(exception, "kbxShortStackTrace")),
                          shortFailureReasonErrorKey());
  info->setObjectForKey(exception->reason(), NSLocalizedRecoverySuggestionErrorKey());
  addEdition(info);
  return KBXError1(kExceptionError, info);
}

}  // namespace kbx
